#include "driver/driver_file_format.hpp"

#include "driver/archive_reader.hpp"
#include "driver/archive_writer.hpp"

namespace kerfline::driver {

std::optional<std::string> read_header_tag(std::string_view bytes) {
  try {
    ArchiveReader ar(bytes);
    return ar.read_string();
  } catch (const ArchiveError&) {
    return std::nullopt;
  }
}

namespace {

struct Prefix {
  ExtendedHeader header;
  std::size_t body = 0;  // offset where the (optional DWORD and) title starts
};

Prefix read_prefix(std::string_view bytes) {
  ArchiveReader ar(bytes);
  const std::string tag = ar.read_string();
  Prefix p;
  if (tag == kExtendedTag) {
    p.header.Present = true;
    p.header.EncodedText = ar.read_string();
    p.header.Note = ar.read_string();
  } else if (tag != kPlainTag) {
    throw ArchiveError("not a current-format driver file");
  }
  p.body = ar.position();
  return p;
}

DriverFileContents read_body(std::string_view bytes, const TextDefinitions& texts, bool skip_dword) {
  ArchiveReader ar(bytes);
  ar.definitions = &texts;
  if (skip_dword) ar.read_dword();
  DriverFileContents out;
  out.title = ar.read_string();
  out.base_driver_flag = ar.read_dword();
  out.root = std::make_shared<CDrvItemList>();
  out.root->Serialize(ar);
  out.header.DwordFollows = skip_dword;
  return out;
}

// The DWORD 0 can only stand there when four zero bytes do.
bool dword_may_follow(std::string_view body) {
  return body.size() >= 4 && body.substr(0, 4) == std::string_view("\0\0\0\0", 4);
}

}  // namespace

DriverFileContents parse_driver_file(std::string_view bytes, const TextDefinitions& texts) {
  Prefix prefix = read_prefix(bytes);
  const std::string_view body = bytes.substr(prefix.body);
  DriverFileContents out;
  if (prefix.header.Present && dword_may_follow(body)) {
    try {
      out = read_body(body, texts, true);
    } catch (const ArchiveError&) {
      out = read_body(body, texts, false);
    }
  } else {
    out = read_body(body, texts, false);
  }
  const bool dword = out.header.DwordFollows;
  out.header = std::move(prefix.header);
  out.header.DwordFollows = dword;
  return out;
}

std::optional<std::string> parse_driver_title(std::string_view bytes, const TextDefinitions& texts) {
  try {
    const Prefix prefix = read_prefix(bytes);
    const std::string_view body = bytes.substr(prefix.body);
    if (prefix.header.Present && dword_may_follow(body)) {
      // Only the whole reading tells whether these zeros are the DWORD.
      return parse_driver_file(bytes, texts).title;
    }
    ArchiveReader ar(body);
    return ar.read_string();
  } catch (const ArchiveError&) {
    return std::nullopt;
  }
}

std::string write_driver_file(const ExtendedHeader& header, const std::string& title,
                              std::uint32_t base_driver_flag, CDrvItemList& root,
                              const TextDefinitions& texts) {
  ArchiveWriter ar;
  ar.definitions = &texts;
  if (header.Present) {
    ar.write_string(kExtendedTag);
    ar.write_string(header.EncodedText);
    ar.write_string(header.Note);
    if (header.DwordFollows) ar.write_dword(0);
  } else {
    ar.write_string(kPlainTag);
  }
  ar.write_string(title);
  ar.write_dword(base_driver_flag);
  root.Serialize(ar);
  return ar.take_bytes();
}

}  // namespace kerfline::driver
