// A driver opened through the C interface for one command, freed on exit.
#pragma once

#include <cstdio>
#include <cstring>
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
      // The C interface gives only a number; the reader knows why.
      driver::CVm6Drv reader;
      const std::string reason = reader.ReadDriverFile(path) ? std::string() : reader.LastError();
      std::fprintf(stderr, "kerfline: cannot open driver %s: %s (result %d)\n", path.c_str(),
                   reason.empty() ? "not readable" : reason.c_str(), result);
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
  VMV6DRV record_{};
  bool open_ = false;
};

}  // namespace kerfline::cli
