// Configuration sets: named configurations, each with a description, a flag
// word and named variable values, kept as one flat text in which every field
// stands between two copies of the same tag:
//
//   <CfgMan><Count>1<Count><Cfg><Name>Test<Name><Desc>...<Desc><Flags>1<Flags>
//   <Vars>1<Vars><Var><VName>a<VName><Val>b<Val><VFlags>0<VFlags><Var>\r\n
//   <Cfg>\r\n<CfgMan>\r\n
//
// Texts are stored as they are: a value that contains a tag is not protected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kerfline::support {

struct CCfgVar {
  std::string VName;
  std::string Val;
  std::int32_t VFlags = 0;
};

struct CCfg {
  std::string Name;
  std::string Desc;
  std::int32_t Flags = 0;
  // Entries may be null: a null entry is counted but not written.
  std::vector<std::unique_ptr<CCfgVar>> Vars;
};

class CCfgMan {
 public:
  // Entries may be null, as for the variables of a configuration.
  std::vector<std::unique_ptr<CCfg>> configs;

  // The whole list as text.
  [[nodiscard]] std::string Write() const;

  // Appends the configurations read from the text. False at the first missing
  // mandatory tag pair; what was read before the failure stays appended.
  bool Read(std::string_view text);

  void Clear() { configs.clear(); }
};

// Text between the first `open` at or after `start` and the next `close`
// after it; `end` is set past `close`. Both missing tags give "" and leave
// `end` unchanged.
std::string extract_inner(std::string_view text, std::size_t start, std::string_view open,
                          std::string_view close, std::size_t& end);

// The same search, returning the span with both tags included.
std::string extract_span(std::string_view text, std::size_t start, std::string_view open,
                         std::string_view close, std::size_t& end);

// Reads the sample set that a driver initialisation runs through the reader
// and the writer once; returns the written text ("" when the read failed).
std::string config_set_self_test();

}  // namespace kerfline::support
