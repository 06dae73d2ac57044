/* A C program using the installed library as any host would. */
#include <stdio.h>
#include <string.h>

#include <kerfline/kerfline.h>

static int failures = 0;

static void check(int ok, const char* what) {
  printf("%s: %s\n", ok ? "ok" : "FAILED", what);
  if (!ok) ++failures;
}

int main(int argc, char** argv) {
  const char* want_version = argc > 1 ? argv[1] : "";
  check(strcmp(KerflineGetVersion(), want_version) == 0, "version of the installed library");

  /* No Res/ beside this program and no KERFLINE_HOME: the installed tables. */
  check(InitKerflineDll() == 1, "start-up finds the installed string tables");

  check(InitEval(0, 0, NULL) == 1, "evaluator starts");
  char* out = DoEval("PU {[2 < 10][1200][0]},%[2*3.4]%;");
  check(out != NULL && strcmp(out, "PU 1200,7;") == 0, "template evaluated");
  FreeEval(out);
  ExitEval();
  return failures == 0 ? 0 : 1;
}
