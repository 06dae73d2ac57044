// `kerfline driver ...`: build, inspect and change driver files.
#include <cstdio>
#include <string>

#include "cli_io.hpp"
#include "commands.hpp"
#include "driver/drv_item_list.hpp"
#include "driver_text_form.hpp"
#include "platform/codepage.hpp"

namespace kerfline::cli {
namespace {

struct DriverOptions {
  std::string input;
  std::string output;
  bool json = false;
};

// Loads a binary driver file; a clear message on failure.
std::unique_ptr<driver::CVm6Drv> load_binary(const std::string& path) {
  const auto bytes = read_input(path, "driver");
  if (!bytes) return nullptr;
  auto doc = std::make_unique<driver::CVm6Drv>();
  doc->Path = path;
  if (!doc->ReadFromBytes(*bytes)) {
    std::fprintf(stderr, "kerfline: %s is not a driver file we can read: %s\n", path.c_str(),
                 doc->LastError().c_str());
    return nullptr;
  }
  return doc;
}

int run_build(const DriverOptions& o) {
  const auto text = read_input(o.input, "driver text form");
  if (!text) return kExitFailure;
  nlohmann::ordered_json form;
  try {
    form = nlohmann::ordered_json::parse(*text);
  } catch (const nlohmann::json::parse_error& e) {
    std::fprintf(stderr, "kerfline: %s is not valid JSON: %s\n", o.input.c_str(), e.what());
    return kExitFailure;
  }
  std::string error;
  auto doc = driver_from_json(form, error);
  if (!doc) {
    std::fprintf(stderr, "kerfline: %s: %s\n", o.input.c_str(), error.c_str());
    return kExitFailure;
  }
  if (o.output == "-") {
    Output out(o.output);
    out.write(doc->WriteToBytes());
    return out.finish() ? kExitOk : kExitFailure;
  }
  if (!doc->StoreDriver(o.output)) {
    std::fprintf(stderr, "kerfline: cannot write %s: %s\n", o.output.c_str(), doc->LastError().c_str());
    return kExitFailure;
  }
  return kExitOk;
}

void print_tree(const driver::CDrvItem& item, int depth) {
  const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
  const std::string name = platform::cp1252::to_utf8(item.Name);
  if (const auto* list = dynamic_cast<const driver::CDrvItemList*>(&item)) {
    std::printf("%s[%s]%s\n", indent.c_str(), name.c_str(),
                item.DictId != 0 ? (" #" + std::to_string(item.DictId)).c_str() : "");
    for (const auto& child : list->GetChildren()) print_tree(*child, depth + 1);
    return;
  }
  std::printf("%s%s = %s  (%s%s)\n", indent.c_str(), name.c_str(),
              platform::cp1252::to_utf8(item.ValueAsEscapedText()).c_str(), item.TypeName().c_str(),
              item.Linked != 0 ? ", linked" : "");
}

int run_dump(const DriverOptions& o) {
  auto doc = load_binary(o.input);
  if (!doc) return kExitFailure;
  if (o.json) {
    std::printf("%s\n", driver_to_json(*doc).dump(2).c_str());
    return kExitOk;
  }
  const driver::CDrvItem* name = doc->FindItem(driver::CVm6Drv::kDriverNameItem);
  std::printf("%s  %s\n", doc->Header.Present ? "VM6DRV$" : "VM6DRV",
              name != nullptr ? platform::cp1252::to_utf8(name->GetValue()).c_str() : "");
  for (const auto& child : doc->Root().GetChildren()) print_tree(*child, 1);
  return kExitOk;
}

}  // namespace

void register_driver(CLI::App& app, CommandList& commands) {
  CLI::App* driver = app.add_subcommand("driver", "Build, inspect and change driver files");
  driver->require_subcommand(1);
  auto options = std::make_shared<DriverOptions>();

  CLI::App* build = driver->add_subcommand("build", "Build a binary driver file from its JSON text form");
  build->add_option("json", options->input, "Driver in text form (.json)")->required();
  build->add_option("-o,--output", options->output, "Driver file to write (.vmd), - for standard output")
      ->required();
  commands.add(build, [options] { return run_build(*options); });

  CLI::App* dump = driver->add_subcommand("dump", "Show a driver's item tree");
  dump->add_option("file", options->input, "Driver file")->required();
  dump->add_flag("--json", options->json, "Print the JSON text form instead of the tree");
  commands.add(dump, [options] { return run_dump(*options); });

  register_driver_api(*driver, commands);
  register_driver_dialog(*driver, commands);
  register_driver_vocabulary(*driver, commands);
  register_driver_check(*driver, commands);
}

}  // namespace kerfline::cli
