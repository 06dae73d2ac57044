#include "frame/translation_store.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <string>

namespace kerfline::frame {
namespace {
using R = TranslationStartRecord;
static_assert(sizeof(R) == 816);
static_assert(offsetof(R, size) == 0);
static_assert(offsetof(R, translation_file) == 4);
static_assert(offsetof(R, library_dir) == 264);
static_assert(offsetof(R, field_524) == 524);
static_assert(offsetof(R, field_788) == 788);
static_assert(offsetof(R, field_796) == 796);
}  // namespace

TranslationStartRecord make_start_record(std::string_view translation_file, std::string_view library_dir) {
  TranslationStartRecord record;
  auto put = [](char* field, std::string_view text) {
    if (text.size() < TranslationStartRecord::kPathSize) std::memcpy(field, text.data(), text.size());
  };
  put(record.translation_file, translation_file);
  put(record.library_dir, library_dir);
  return record;
}

std::int32_t TranslationStore::start(const TranslationStartRecord& record) {
  if (record.size != sizeof(TranslationStartRecord)) return 0;
  const char* field = record.translation_file;
  const auto* nul = static_cast<const char*>(std::memchr(field, 0, TranslationStartRecord::kPathSize));
  if (nul == nullptr || nul == field) return 0;
  const auto length = static_cast<std::size_t>(nul - field);
  auto loaded = PoCatalog::load(std::string(record.translation_file, length));
  if (!loaded) return 0;
  std::unique_lock lock(mutex_);
  catalog_ = std::make_unique<PoCatalog>(std::move(loaded.value()));
  return 1;
}

std::int32_t TranslationStore::add_thread(std::uint32_t thread_id) {
  std::unique_lock lock(mutex_);
  if (!catalog_) return 0;
  if (std::find(threads_.begin(), threads_.end(), thread_id) == threads_.end()) threads_.push_back(thread_id);
  return 1;
}

std::int32_t TranslationStore::translate(const char* text, char* out, std::uint32_t out_size) const {
  if (text == nullptr || out == nullptr) return 0;
  std::shared_lock lock(mutex_);
  if (!catalog_) return 0;
  const std::string* found = catalog_->find(text);
  if (found == nullptr) return 0;
  const std::size_t needed = found->size() + 1;
  if (needed > out_size || needed > static_cast<std::size_t>(INT32_MAX)) {
    return needed > static_cast<std::size_t>(INT32_MAX) ? INT32_MIN : -static_cast<std::int32_t>(needed);
  }
  std::memcpy(out, found->c_str(), needed);
  return static_cast<std::int32_t>(found->size());
}

bool TranslationStore::started() const {
  std::shared_lock lock(mutex_);
  return catalog_ != nullptr;
}

void TranslationStore::reset() {
  std::unique_lock lock(mutex_);
  catalog_.reset();
  threads_.clear();
}

TranslationStore& translation_store() {
  static TranslationStore store;
  return store;
}

}  // namespace kerfline::frame
