// `kerfline driver check FILE`: warnings a host would otherwise meet as
// silently empty or wrong output.
#include <cstdio>
#include <memory>
#include <string>

#include "commands.hpp"
#include "driver_checks.hpp"
#include "open_driver.hpp"

namespace kerfline::cli {

void register_driver_check(CLI::App& driver, CommandList& commands) {
  auto file = std::make_shared<std::string>();
  CLI::App* sub = driver.add_subcommand(
      "check",
      "Warn about a missing base driver, unknown text numbers and values outside their type or range");
  sub->add_option("file", *file, "Driver file")->required();
  commands.add(sub, [file] {
    OpenDriver drv(*file);
    if (!drv.ok()) return kExitFailure;
    const auto warnings = driver_warnings(drv.record(), *file);
    for (const std::string& w : warnings) std::printf("warning: %s\n", w.c_str());
    return warnings.empty() ? kExitOk : kExitFailure;
  });
}

}  // namespace kerfline::cli
