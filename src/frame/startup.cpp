// Start-up of the library: the string tables (InitKerflineDll), the
// translation service (InitKerflineDll2) and the start made when the library
// is loaded.
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "driver/text_dictionary.hpp"
#include "frame/language_context.hpp"
#include "frame/library_state.hpp"
#include "frame/resources.hpp"
#include "frame/string_table.hpp"
#include "frame/translation.hpp"
#include "frame/translation_store.hpp"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::frame {
namespace {

struct StartState {
  std::mutex mutex;
  // Loaded tables stay loaded for the life of the process.
  std::unique_ptr<StringTable> cutterx;
  std::unique_ptr<StringTable> kerfline;
  bool done = false;

  bool translation_tried = false;
  std::int32_t translation_result = 0;
  std::string translation_home;  // suite directory of the last attempt
  std::uint64_t translation_generation = 0;
};

StartState& state() {
  static StartState s;
  return s;
}

// Loads one table unless it is loaded already: the suite's own Res/ first,
// then the defaults installed with the library.
bool load_table(std::unique_ptr<StringTable>& slot, const std::string& resource_dir, const char* name) {
  if (slot) return true;
  // Only an existence check first: a missing table is an ordinary outcome.
  auto path = platform::resolve_case_insensitive(resource_dir + name);
  if (const std::string data = platform::data_dir(); !path && !data.empty()) {
    path = platform::resolve_case_insensitive(platform::join_path(data, "Res") + platform::path_separator() +
                                              name);
  }
  if (!path) return false;
  auto table = StringTable::load(*path);
  if (!table) return false;
  slot = std::make_unique<StringTable>(std::move(table.value()));
  return true;
}

std::int32_t init_locked(StartState& s) {
  if (s.done) return 1;
  // Numbers are formatted without the process locale, so none is set here.
  const LanguageContext context = language_context();
  (void)language_directory();
  if (!load_table(s.cutterx, context.resource_dir, "cutterx.dlx")) return -1;
  if (!load_table(s.kerfline, context.resource_dir, "kerfline.dlx")) return -2;
  s.done = true;
  return 1;
}

std::uint32_t current_thread_id() {
  return static_cast<std::uint32_t>(std::hash<std::thread::id>{}(std::this_thread::get_id()));
}

}  // namespace

TranslationStartRecord translation_start_record(const std::string& base) {
  const char sep = platform::path_separator();
  // base already ends in the separator; the doubled one is harmless.
  const std::string lang_ini = base + sep + "lang.ini";
  const std::string ini_file = platform::resolve_case_insensitive(lang_ini).value_or(lang_ini);
  char code[10] = {};
  const std::uint32_t length =
      platform::ini::get_string("Default", "Actual", "GER", code, sizeof(code), ini_file);
  const std::string language(code, length);

  const std::string leaf = "lang" + std::string(1, sep) + language + sep + "kerfline" + language + ".TRA";
  std::string translation_file = platform::resolve_case_insensitive(base + leaf).value_or("");
  // A suite that names its language but lacks the file gets the installed
  // one; a suite without lang.ini is not switched to German behind its back.
  if (const std::string data = platform::data_dir();
      translation_file.empty() && !data.empty() && platform::path_exists(ini_file)) {
    translation_file = platform::resolve_case_insensitive(data + leaf).value_or("");
  }
  const std::string library_dir = base + "lang" + sep + "dll";

  return make_start_record(translation_file, library_dir);
}

namespace {

std::int32_t attempt_translation_start(const std::string& base) {
  TranslationStore& store = translation_store();
  if (store.start(translation_start_record(base)) == 0) return 0;
  return store.add_thread(current_thread_id());
}

}  // namespace

std::int32_t init_library() {
  StartState& s = state();
  std::lock_guard lock(s.mutex);
  return init_locked(s);
}

std::int32_t start_translation() {
  StartState& s = state();
  std::lock_guard lock(s.mutex);
  const std::uint64_t generation = platform::home_dir_generation();
  const std::string base = platform::home_dir();
  if (s.translation_tried) {
    // Tried once per process; a start that failed for want of its files is
    // tried again once the host has pointed the library at another suite.
    const bool moved = generation != s.translation_generation || base != s.translation_home;
    if (s.translation_result != 0 || !moved) return s.translation_result;
  }
  s.translation_result = attempt_translation_start(base);
  s.translation_tried = true;
  s.translation_home = base;
  s.translation_generation = generation;
  return s.translation_result;
}

std::optional<std::string> resource_text(int table, std::uint32_t id) {
  if (table != kCutterxTable && table != kKerflineTable) return std::nullopt;
  StartState& s = state();
  std::lock_guard lock(s.mutex);
  std::unique_ptr<StringTable>& slot = table == kCutterxTable ? s.cutterx : s.kerfline;
  if (!slot) (void)init_locked(s);
  if (!slot) return std::nullopt;
  return slot->find(id);
}

void testing::reset_library_state() {
  StartState& s = state();
  {
    std::lock_guard lock(s.mutex);
    s.cutterx.reset();
    s.kerfline.reset();
    s.done = false;
    s.translation_tried = false;
    s.translation_result = 0;
    s.translation_home.clear();
    s.translation_generation = 0;
  }
  translation_store().reset();
  (void)exchange_translation_flags(0xFFFFFFFFu);
  reset_language_context();
}

namespace {

// What the library's application object did when a host loaded it: start the
// library and settle the help file (language directory + "plotman.hlp"). A
// host that sets the suite directory afterwards gets both rebuilt on next use.
struct StartOnLoad {
  StartOnLoad() noexcept {
    try {
      // The driver's text dictionary answers from our string tables, each
      // answer through the translation service.
      driver::install_text_services({&resource_text, &translate_text});
      (void)init_library();
      (void)help_file_path();
    } catch (...) {
      // Nothing may escape a load-time constructor; the next call retries.
    }
  }
};

const StartOnLoad start_on_load;

}  // namespace

}  // namespace kerfline::frame
