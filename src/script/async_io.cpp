#include "platform/ini.hpp"
#include "script/process_state.hpp"

namespace kerfline::script {

bool is_async_io() { return platform::ini::read_int("CutterSettings", "AsyncIO", 0, "plotman.ini") == 1; }

}  // namespace kerfline::script
