#include "driver/text_dictionary.hpp"

#include "driver/builtin_texts.hpp"

#include <memory>
#include <mutex>
#include <utility>

namespace kerfline::driver {

namespace {

// A string-table lookup starts from this text and keeps it when the table has
// nothing, so an answer equal to it is a miss, wherever it came from.
constexpr std::string_view kNotFound = "Dlx not found!";

// Resource strings are read into a buffer of 512 bytes with its terminator.
constexpr std::size_t kResourceTextMax = 511;

constexpr int kCutterTable = 0;
constexpr int kKerflineTable = 1;

std::mutex services_mutex;
std::shared_ptr<const TextServices> installed_services;

std::shared_ptr<const TextServices> current_services() {
  std::lock_guard lock(services_mutex);
  return installed_services;
}

std::optional<std::string> table_answer(const TextServices& services, int table, std::uint32_t id) {
  if (!services.resource_text) return std::nullopt;
  std::optional<std::string> text = services.resource_text(table, id);
  if (!text) return std::nullopt;
  // The string is taken as a C string of at most 511 bytes.
  const std::size_t end = text->find('\0');
  if (end != std::string::npos) text->resize(end);
  if (text->size() > kResourceTextMax) text->resize(kResourceTextMax);
  // An empty string-table entry cannot be told from a missing one.
  if (text->empty() || *text == kNotFound) return std::nullopt;
  if (services.translate) {
    if (std::optional<std::string> translated = services.translate(*text)) text = std::move(translated);
  }
  if (*text == kNotFound) return std::nullopt;
  return text;
}

}  // namespace

void install_text_services(TextServices services) {
  auto shared = std::make_shared<const TextServices>(std::move(services));
  std::lock_guard lock(services_mutex);
  installed_services = std::move(shared);
}

std::string dictionary_text(std::uint32_t id) {
  if (const auto text = builtin_text(id)) return std::string(*text);
  const auto services = current_services();
  if (!services) return {};
  for (const int table : {kCutterTable, kKerflineTable}) {
    if (auto text = table_answer(*services, table, id)) return std::move(*text);
  }
  return {};
}

std::string dictionary_description(std::uint32_t id) { return dictionary_text(id + 1); }

std::string kerfline_dictionary_text(std::uint32_t id) {
  const auto services = current_services();
  if (!services) return {};
  return table_answer(*services, kKerflineTable, id).value_or(std::string());
}

}  // namespace kerfline::driver
