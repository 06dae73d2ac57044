#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "platform/standard_streams.hpp"

namespace kerfline::platform {

void binary_standard_streams() {
  std::fflush(stdout);
  std::fflush(stderr);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
}

}  // namespace kerfline::platform
