// A driver opened through the C interface for one command, freed on exit.
#pragma once

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "driver/vm6drv.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::cli {

class OpenDriver {
 public:
  // Library mode: a command-line tool shows no dialogs.
  explicit OpenDriver(const std::string& path) {
    if (path.size() >= sizeof(record_.szFileName)) {
      std::fprintf(stderr, "kerfline: driver path too long (%zu characters, at most 259): %s\n", path.size(),
                   path.c_str());
      return;
    }
    std::memcpy(record_.szFileName, path.c_str(), path.size() + 1);
    record_.nAppMode = 0;
    const int32_t result = InitDrv(&record_);
    if (result != 1) {
      const std::string why = result == KERFLINE_FILE_UNREADABLE ? unreadable_because(path) : std::string();
      std::fprintf(stderr, "kerfline: cannot open driver %s (result %d)%s%s\n", path.c_str(), result,
                   why.empty() ? "" : ": ", why.c_str());
      return;
    }
    open_ = true;
  }
  ~OpenDriver() {
    if (open_) FreeDrv(&record_);
  }
  OpenDriver(const OpenDriver&) = delete;
  OpenDriver& operator=(const OpenDriver&) = delete;

  [[nodiscard]] bool ok() const { return open_; }
  VMV6DRV* record() { return &record_; }

 private:
  // Why the file's bytes are no driver (the C interface only says -4); empty
  // when they could not even be read, which InitDrv has reported already.
  static std::string unreadable_because(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    driver::CVm6Drv doc;
    if (!in.good() && !in.eof()) return {};
    return doc.ReadFromBytes(bytes) ? std::string() : doc.LastError();
  }

  VMV6DRV record_{};
  bool open_ = false;
};

}  // namespace kerfline::cli
