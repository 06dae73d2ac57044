#include "remote/message_json.hpp"

#include <cstdio>

#include "platform/codepage.hpp"
#include "remote/payloads.hpp"

namespace kerfline::remote {

namespace {

std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : platform::cp1252::to_utf8(text)) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (u < 0x20) {
      char esc[8];
      std::snprintf(esc, sizeof esc, "\\u%04x", u);
      out += esc;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string hex(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string out;
  out.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    out += digits[static_cast<unsigned char>(c) >> 4];
    out += digits[static_cast<unsigned char>(c) & 15];
  }
  return out;
}

std::string field(const char* name, const std::string& json) {
  return std::string(",\"") + name + "\":" + json;
}

}  // namespace

std::string message_json(const CSocketDataObject& message) {
  auto* payload = CSocketDataObjectWire::payload(const_cast<CSocketDataObject&>(message));
  if (payload == nullptr) return "{\"type\":\"None\"}";
  std::string out = "{\"type\":";
  if (const auto* p = dynamic_cast<const StatePayload*>(payload)) {
    out += "\"State\"" + field("state", std::to_string(p->state)) + field("job", std::to_string(p->job));
  } else if (const auto* p = dynamic_cast<const MsgPayload*>(payload)) {
    out += "\"Msg\"" + field("text", quoted(p->text));
  } else if (const auto* p = dynamic_cast<const BinaryPayload*>(payload)) {
    out += "\"Binary\"" + field("size", std::to_string(p->bytes.size())) +
           field("data1", std::to_string(p->data1)) + field("data2", std::to_string(p->data2)) +
           field("text1", quoted(p->text1)) + field("text2", quoted(p->text2)) +
           field("data", "\"" + hex(p->bytes) + "\"");
  } else if (const auto* p = dynamic_cast<const StringListPayload*>(payload)) {
    std::string list = "[";
    for (std::size_t i = 0; i < p->texts.size(); ++i) list += (i > 0 ? "," : "") + quoted(p->texts[i]);
    out += "\"StringList\"" + field("strings", list + "]");
  } else if (const auto* p = dynamic_cast<const QueryPayload*>(payload)) {
    out += "\"Query\"" + field("query", std::to_string(p->number));
    if (p->number == 2 || p->number == 5) out += field("param", quoted(p->parm));
    if (p->number == 3) out += field("job", std::to_string(p->job));
  } else if (const auto* p = dynamic_cast<const IntPayload*>(payload)) {
    out += "\"Int\"" + field("value", std::to_string(p->value));
  }
  return out + "}";
}

}  // namespace kerfline::remote
