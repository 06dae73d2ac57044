#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "driver/vm6drv.hpp"
#include "driver_samples.hpp"
#include "fixtures/host_recorder.hpp"

namespace drv = kerfline::driver;
using kerfline::test::sample_lookup;

namespace {

// Valid files: the sample document with a plain header, and with an
// extended header that is followed by the DWORD 0.
std::vector<std::string> valid_files() {
  std::vector<std::string> files;
  for (const bool extended : {false, true}) {
    drv::CVm6Drv doc(sample_lookup());
    kerfline::test::fill_sample_document(doc, false);
    if (extended) doc.Header = {true, "encoded", "note", true};
    doc.WriteToBytes();
    files.push_back(doc.WriteToBytes());
  }
  return files;
}

TEST(MalformedDriver, EveryTruncationFailsCleanly) {
  kerfline::test::HostRecorder host;
  for (const std::string& file : valid_files()) {
    for (std::size_t size = 0; size < file.size(); ++size) {
      drv::CVm6Drv doc(sample_lookup());
      EXPECT_FALSE(doc.ReadFromBytes(std::string_view(file).substr(0, size))) << "cut at " << size;
      EXPECT_FALSE(doc.LastError().empty());
    }
    drv::CVm6Drv doc(sample_lookup());  // whole, and with bytes after the root group
    EXPECT_TRUE(doc.ReadFromBytes(file)) << doc.LastError();
    ASSERT_TRUE(doc.ReadFromBytes(file + std::string("\x01\x00\x00\x00\xFF\xFF", 6))) << doc.LastError();
    EXPECT_TRUE(doc.WriteToBytes() == file);
  }
  EXPECT_TRUE(host.boxes.empty());
}

TEST(MalformedDriver, ChangedBytesNeverBreakTheReader) {
  kerfline::test::HostRecorder host;
  for (const std::string& file : valid_files()) {
    for (std::size_t at = 0; at < file.size(); ++at) {
      for (const int value : {0x00, 0xFF}) {
        std::string changed = file;
        changed[at] = static_cast<char>(value);
        drv::CVm6Drv doc(sample_lookup());
        if (doc.ReadFromBytes(changed)) {
          // Whatever was read can be stored and read again.
          drv::CVm6Drv again(sample_lookup());
          EXPECT_TRUE(again.ReadFromBytes(doc.WriteToBytes())) << at << ": " << again.LastError();
        } else {
          EXPECT_FALSE(doc.LastError().empty());
        }
      }
    }
  }
}

}  // namespace
