// Runs the built `kerfline-sim --remote 0 ...` as a child process and reads
// the port it gives when ready.
#pragma once

#include <cstdlib>
#include <string>
#include <vector>

#include "../sim/sim_process.hpp"

namespace kerfline::test {

class RemoteSim {
 public:
  explicit RemoteSim(std::vector<std::string> extra) : sim_(with_remote(std::move(extra))) {
    port_ = std::atoi(sim_.ready_line().c_str());
  }
  [[nodiscard]] int port() const { return port_; }

 private:
  static std::vector<std::string> with_remote(std::vector<std::string> extra) {
    extra.insert(extra.begin(), {"--remote", "0"});
    return extra;
  }
  SimProcess sim_;
  int port_ = 0;
};

}  // namespace kerfline::test
