// A message as one line of JSON, for technicians' tools and logs. Texts are
// converted from Windows-1252 to UTF-8; binary data is shown in hex.
#pragma once

#include <string>

#include "kerfline/remote_messages.hpp"

namespace kerfline::remote {

// {"type":"State","state":1,"job":0} and the like.
std::string message_json(const CSocketDataObject& message);

}  // namespace kerfline::remote
