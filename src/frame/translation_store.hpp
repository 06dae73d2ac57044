// The translation store: the service behind the three operations the library
// has always used (start with a file, register a thread, translate a text
// into a buffer). The file is a PO catalogue (see po_catalog.hpp).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string_view>
#include <vector>

#include "frame/po_catalog.hpp"

namespace kerfline::frame {

// The start record, 816 bytes, laid out as the suite's translation start has
// always filled it. Fields whose meaning is unknown keep the values that were
// always passed.
struct TranslationStartRecord {
  static constexpr std::size_t kPathSize = 260;

  std::uint32_t size = sizeof(TranslationStartRecord);
  char translation_file[kPathSize] = {};  // full path, may be empty
  char library_dir[kPathSize] = {};       // suite dir + "lang/dll"
  std::uint32_t field_524 = 0;
  unsigned char reserved_528[260] = {};
  std::uint32_t field_788 = 1;
  std::uint32_t reserved_792 = 0;
  std::uint32_t field_796 = 0;
  unsigned char reserved_800[16] = {};
};

// Builds the record; a path that does not fit its 260-byte field (with the
// terminating zero) leaves the field empty.
TranslationStartRecord make_start_record(std::string_view translation_file, std::string_view library_dir);

class TranslationStore {
 public:
  // Loads the record's translation file. 1 started; 0 for a record of the
  // wrong size, an empty or unterminated path, or a file that cannot be read.
  // A failed start leaves the store as it was.
  std::int32_t start(const TranslationStartRecord& record);

  // Registers a thread; 1 once started, else 0. Translation does not depend
  // on it: every thread is served.
  std::int32_t add_thread(std::uint32_t thread_id);

  // Copies the translation of `text` with its terminating zero into `out`.
  // Returns its length (> 0) when found; 0 when not found or not started;
  // the negative of the size needed when `out` is too small (nothing copied).
  std::int32_t translate(const char* text, char* out, std::uint32_t out_size) const;

  [[nodiscard]] bool started() const;
  // Back to the state before any start (tests).
  void reset();

 private:
  mutable std::shared_mutex mutex_;
  std::unique_ptr<PoCatalog> catalog_;
  std::vector<std::uint32_t> threads_;
};

// The process-wide store.
TranslationStore& translation_store();

}  // namespace kerfline::frame
