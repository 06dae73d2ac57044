#include "platform/standard_streams.hpp"

namespace kerfline::platform {

void binary_standard_streams() {}

}  // namespace kerfline::platform
