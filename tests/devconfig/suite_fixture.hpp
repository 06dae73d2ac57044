// A temporary suite directory made the library's home for one test, with
// helpers to read back the lines of an INI section, and the device records
// of the host API.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "fixtures/temp_dir.hpp"
#include "kerfline/kerfline.h"
#include "platform/ini.hpp"
#include "platform/paths.hpp"

namespace kerfline::test {

// Name, port and driver path of a listed device.
using Listed = std::tuple<std::string, std::string, std::string>;

inline std::vector<Listed> list_all() {
  int32_t count = -1;
  std::unique_ptr<CUTDEVICE, void (*)(CUTDEVICE*)> list(GetCutDeviceList(&count), FreeCutDeviceList);
  EXPECT_NE(list, nullptr);
  EXPECT_GE(count, 0);
  std::vector<Listed> out;
  for (int32_t i = 0; i < count; ++i) {
    const CUTDEVICE& d = list.get()[i];
    out.emplace_back(d.szName, d.szPort, d.szDrvPath);
  }
  return out;
}

// A record for WriteCutDevice; an empty port removes the device.
inline CUTDEVICE record(const std::string& name, const std::string& port, const std::string& path = "") {
  CUTDEVICE d{};
  std::strncpy(d.szName, name.c_str(), sizeof d.szName - 1);
  std::strncpy(d.szPort, port.c_str(), sizeof d.szPort - 1);
  std::strncpy(d.szDrvPath, path.c_str(), sizeof d.szDrvPath - 1);
  return d;
}

class SuiteDir : public ::testing::Test {
 protected:
  SuiteDir() { platform::set_home_dir(dir_.str()); }
  ~SuiteDir() override { platform::set_home_dir(""); }

  [[nodiscard]] std::string home() const { return dir_.str(); }
  [[nodiscard]] std::string file(const std::string& leaf) const { return dir_.str(leaf); }
  // The section's lines ("key=value") in file order.
  [[nodiscard]] std::vector<std::string> lines(const std::string& section, const std::string& leaf) const {
    return platform::ini::read_section(section, file(leaf));
  }
  // Replaces "{HOME}" in a text by the suite directory.
  [[nodiscard]] std::string expand(std::string text) const {
    for (auto at = text.find("{HOME}"); at != std::string::npos; at = text.find("{HOME}")) {
      text = platform::native_separators(text.replace(at, 6, home()));
    }
    return text;
  }

  TempDir dir_;
};

}  // namespace kerfline::test
