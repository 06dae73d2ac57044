// A C++ program using the installed library's exported class.
#include <kerfline/job_statistics.hpp>

#include <cstdio>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  const std::string ini = std::string(argv[1]) + "/plotman.ini";
  {
    CJobStatistics stats;
    stats.SetIni(ini.c_str());
    stats.SetDevice("Cutter");
    stats.AddToolDist("Knife", 12.5);
    stats.AddToolDist("Pen", 3.0);
    stats.AddToolDist("Knife", 0.5);
    stats.SaveToolStat();
  }
  CJobStatistics again;
  again.SetIni(ini.c_str());
  again.SetDevice("Cutter");
  again.LoadToolStat();
  const TOOLDIST* knife = again.GetAt(0);
  const bool ok = again.GetSize() == 2 && knife != nullptr && std::strcmp(knife->szTool, "Knife") == 0 &&
                  knife->dDist == 13.0;
  std::printf("%s: tool totals saved and read back (%d tools)\n", ok ? "ok" : "FAILED", again.GetSize());
  return ok ? 0 : 1;
}
