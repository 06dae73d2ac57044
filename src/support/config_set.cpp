#include "support/config_set.hpp"

#include <charconv>
#include <limits>

namespace kerfline::support {
namespace {

constexpr std::string_view kCfgMan = "<CfgMan>";
constexpr std::string_view kCount = "<Count>";
constexpr std::string_view kCfg = "<Cfg>";
constexpr std::string_view kName = "<Name>";
constexpr std::string_view kDesc = "<Desc>";
constexpr std::string_view kFlags = "<Flags>";
constexpr std::string_view kVars = "<Vars>";
constexpr std::string_view kVar = "<Var>";
constexpr std::string_view kVName = "<VName>";
constexpr std::string_view kVal = "<Val>";
constexpr std::string_view kVFlags = "<VFlags>";

// Where the tag pair lies: [open_begin, inner_begin) is the opening tag,
// [inner_begin, inner_end) the text, [inner_end, close_end) the closing tag.
struct TagPair {
  std::size_t open_begin = 0;
  std::size_t inner_begin = 0;
  std::size_t inner_end = 0;
  std::size_t close_end = 0;
};

bool find_pair(std::string_view text, std::size_t start, std::string_view open, std::string_view close,
               TagPair& pair) {
  if (start > text.size()) return false;
  const std::size_t o = text.find(open, start);
  if (o == std::string_view::npos) return false;
  const std::size_t c = text.find(close, o + open.size());
  if (c == std::string_view::npos) return false;
  pair = {o, o + open.size(), c, c + close.size()};
  return true;
}

// Reads a decimal number the way the C library's atoi does: leading blanks,
// one sign, digits up to the first non-digit; no digits give 0. Values out of
// range are clamped.
std::int32_t to_int(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && (s[i] == ' ' || (s[i] >= '\t' && s[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
  std::int64_t value = 0;
  for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
    value = value * 10 + (s[i] - '0');
    if (value > static_cast<std::int64_t>(std::numeric_limits<std::int32_t>::max()) + 1) break;
  }
  if (negative) value = -value;
  if (value > std::numeric_limits<std::int32_t>::max()) return std::numeric_limits<std::int32_t>::max();
  if (value < std::numeric_limits<std::int32_t>::min()) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(value);
}

void append_int(std::string& out, std::int32_t value) {
  char buf[16];
  const auto [end, ec] = std::to_chars(buf, buf + sizeof(buf), value);
  out.append(buf, end);
}

void append_field(std::string& out, std::string_view tag, std::string_view text) {
  out.append(tag).append(text).append(tag);
}

void append_field(std::string& out, std::string_view tag, std::int32_t value) {
  out.append(tag);
  append_int(out, value);
  out.append(tag);
}

// A variable span: "<Var><VName>..<VName><Val>..<Val><VFlags>..<VFlags><Var>".
bool parse_variable(std::string_view span, CCfgVar& var) {
  std::size_t pos = 0;
  var.VName = extract_inner(span, pos, kVName, kVName, pos);
  var.Val = extract_inner(span, pos, kVal, kVal, pos);
  const std::string flags = extract_inner(span, pos, kVFlags, kVFlags, pos);
  if (flags.empty()) return false;
  var.VFlags = to_int(flags);
  return true;
}

// A configuration span; variables read before a failure stay appended.
bool parse_config(std::string_view span, CCfg& cfg) {
  std::size_t unused = 0;
  const std::string body = extract_inner(span, 0, kCfg, kCfg, unused);
  if (body.empty()) return false;
  std::size_t pos = 0;
  cfg.Name = extract_inner(body, pos, kName, kName, pos);
  cfg.Desc = extract_inner(body, pos, kDesc, kDesc, pos);
  const std::string flags = extract_inner(body, pos, kFlags, kFlags, pos);
  if (flags.empty()) return false;
  cfg.Flags = to_int(flags);
  const std::string vars = extract_inner(body, pos, kVars, kVars, pos);
  if (vars.empty()) return false;
  const std::int32_t count = to_int(vars);
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string var_span = extract_span(body, pos, kVar, kVar, pos);
    if (var_span.empty()) return false;
    auto var = std::make_unique<CCfgVar>();
    if (!parse_variable(var_span, *var)) return false;
    cfg.Vars.push_back(std::move(var));
  }
  return true;
}

}  // namespace

std::string extract_inner(std::string_view text, std::size_t start, std::string_view open,
                          std::string_view close, std::size_t& end) {
  TagPair pair;
  if (!find_pair(text, start, open, close, pair)) return {};
  end = pair.close_end;
  return std::string(text.substr(pair.inner_begin, pair.inner_end - pair.inner_begin));
}

std::string extract_span(std::string_view text, std::size_t start, std::string_view open,
                         std::string_view close, std::size_t& end) {
  TagPair pair;
  if (!find_pair(text, start, open, close, pair)) return {};
  end = pair.close_end;
  return std::string(text.substr(pair.open_begin, pair.close_end - pair.open_begin));
}

std::string CCfgMan::Write() const {
  std::string out;
  out.append(kCfgMan);
  append_field(out, kCount, static_cast<std::int32_t>(configs.size()));
  for (const auto& cfg : configs) {
    if (!cfg) continue;
    out.append(kCfg);
    append_field(out, kName, cfg->Name);
    append_field(out, kDesc, cfg->Desc);
    append_field(out, kFlags, cfg->Flags);
    append_field(out, kVars, static_cast<std::int32_t>(cfg->Vars.size()));
    for (const auto& var : cfg->Vars) {
      if (!var) continue;
      out.append(kVar);
      append_field(out, kVName, var->VName);
      append_field(out, kVal, var->Val);
      append_field(out, kVFlags, var->VFlags);
      out.append(kVar).append("\r\n");
    }
    out.append(kCfg).append("\r\n");
  }
  out.append(kCfgMan).append("\r\n");
  return out;
}

bool CCfgMan::Read(std::string_view text) {
  std::size_t unused = 0;
  const std::string body = extract_inner(text, 0, kCfgMan, kCfgMan, unused);
  if (body.empty()) return false;
  const std::string count_text = extract_inner(body, 0, kCount, kCount, unused);
  if (count_text.empty()) return false;
  const std::int32_t count = to_int(count_text);
  std::size_t pos = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string span = extract_span(body, pos, kCfg, kCfg, pos);
    if (span.empty()) return false;
    auto cfg = std::make_unique<CCfg>();
    parse_config(span, *cfg);  // kept whatever the parse found
    configs.push_back(std::move(cfg));
  }
  return true;
}

std::string config_set_self_test() {
  static constexpr std::string_view kSample =
      "<CfgMan><Count>1<Count><Cfg><Name>Test<Name><Desc>Beschr.<Desc><Flags>1234<Flags><Vars>2<Vars>"
      "<Var><VName>VName1<VName><Val>Val1<Val><VFlags>111<VFlags><Var>"
      "<Var><VName>VName2<VName><Val>Val2<Val><VFlags>2222<VFlags><Var><Cfg><CfgMan>";
  CCfgMan man;
  if (!man.Read(kSample)) return {};
  return man.Write();
}

}  // namespace kerfline::support
