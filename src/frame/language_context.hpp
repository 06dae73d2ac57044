// The language context: where the suite keeps its resources and language
// files, which languages "Lang/lang.ini" lists and which one is in force.
// Everything here derives from the suite directory and is rebuilt when that
// directory changes (KerflineSetHomeDir, KERFLINE_HOME).
#pragma once

#include <string>
#include <vector>

namespace kerfline::frame {

struct LanguageContext {
  std::string base_dir;                     // the suite directory, ending in the separator
  std::string resource_dir;                 // base + "Res/"
  std::string language_file;                // base + "Lang/lang.ini" (as found on disk)
  std::vector<std::string> language_names;  // key names of [Languages], in file order
};

// The context of the current suite directory.
LanguageContext language_context();

// base + "Lang/" + the language of [Default] Actual (default "Ger") + "/";
// read on first use and kept until the suite directory changes.
std::string language_directory();

// language_directory() + "plotman.hlp": the suite's help file.
std::string help_file_path();

// Forgets everything derived so far (tests).
void reset_language_context();

}  // namespace kerfline::frame
