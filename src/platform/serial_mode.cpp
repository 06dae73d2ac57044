// Mode texts as BuildCommDCB reads them, so a "ports" profile written for
// Windows sets up the same line here.
#include <array>
#include <charconv>
#include <vector>

#include "platform/serial_port.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::platform::port {
namespace {

char lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lowered(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = lower(c);
  return out;
}

std::string_view trimmed(std::string_view text) { return trim(text, " \t"); }

std::optional<std::uint32_t> number(std::string_view text) {
  std::uint32_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

// The MODE command's two-digit abbreviations ("96" is 9600 baud).
std::optional<std::uint32_t> baud_rate(std::string_view text) {
  const auto value = number(text);
  if (!value || *value == 0) return std::nullopt;
  struct Short {
    std::uint32_t given, meant;
  };
  constexpr std::array<Short, 9> kShort{{{11, 110},
                                         {15, 150},
                                         {30, 300},
                                         {60, 600},
                                         {12, 1200},
                                         {24, 2400},
                                         {48, 4800},
                                         {96, 9600},
                                         {19, 19200}}};
  for (const Short& s : kShort) {
    if (s.given == *value) return s.meant;
  }
  return value;
}

bool set_parity(std::string_view text, LineSettings& s) {
  if (text.size() != 1) return false;
  const char p = lower(text[0]);
  if (p != 'n' && p != 'e' && p != 'o' && p != 'm' && p != 's') return false;
  s.parity = p;
  return true;
}

bool set_data(std::string_view text, LineSettings& s) {
  const auto bits = number(text);
  if (!bits || *bits < 5 || *bits > 8) return false;
  s.data_bits = static_cast<std::uint8_t>(*bits);
  return true;
}

bool set_stop(std::string_view text, LineSettings& s) {
  if (text == "1") {
    s.stop_bits = 10;
  } else if (text == "1.5") {
    s.stop_bits = 15;
  } else if (text == "2") {
    s.stop_bits = 20;
  } else {
    return false;
  }
  return true;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || text[i] == separator) {
      parts.push_back(text.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

// "9600,n,8,1,x": baud, then optional parity, data, stop and flow control.
std::optional<LineSettings> parse_short(std::string_view text) {
  const std::vector<std::string_view> fields = split(text, ',');
  if (fields.size() > 5) return std::nullopt;
  LineSettings s;
  const auto baud = baud_rate(trimmed(fields[0]));
  if (!baud) return std::nullopt;
  s.baud = *baud;
  for (std::size_t i = 1; i < fields.size(); ++i) {
    const std::string_view f = trimmed(fields[i]);
    if (f.empty()) continue;
    bool ok = true;
    switch (i) {
      case 1:
        ok = set_parity(f, s);
        break;
      case 2:
        ok = set_data(f, s);
        break;
      case 3:
        ok = set_stop(f, s);
        break;
      default: {
        const char flow = f.size() == 1 ? lower(f[0]) : '\0';
        ok = flow == 'x' || flow == 'p';
        s.xon_xoff = flow == 'x';
        s.rts_cts = flow == 'p';
      }
    }
    if (!ok) return std::nullopt;
  }
  return s;
}

std::optional<bool> on_off(std::string_view value) {
  if (value == "on") return true;
  if (value == "off") return false;
  return std::nullopt;
}

// "baud=9600 parity=N data=8 stop=1 [xon=on] [octs=on] [dtr=on|off|hs] ...".
std::optional<LineSettings> parse_long(std::string_view text) {
  LineSettings s;
  bool have_baud = false;
  for (std::string_view word : split(text, ' ')) {
    if (word.empty()) continue;
    const std::size_t eq = word.find('=');
    if (eq == std::string_view::npos) return std::nullopt;
    const std::string key = lowered(word.substr(0, eq));
    const std::string value = lowered(word.substr(eq + 1));
    bool ok = true;
    if (key == "baud") {
      const auto baud = baud_rate(value);
      ok = baud.has_value();
      if (ok) s.baud = *baud;
      have_baud = ok;
    } else if (key == "parity") {
      ok = set_parity(value, s);
    } else if (key == "data") {
      ok = set_data(value, s);
    } else if (key == "stop") {
      ok = set_stop(value, s);
    } else if (key == "xon") {
      const auto v = on_off(value);
      ok = v.has_value();
      if (ok) s.xon_xoff = *v;
    } else if (key == "octs") {
      const auto v = on_off(value);
      ok = v.has_value();
      if (ok) s.rts_cts = *v;
    } else if (key == "rts") {
      ok = value == "on" || value == "off" || value == "hs" || value == "tg";
      if (value == "hs") s.rts_cts = true;
    } else if (key == "dtr") {
      ok = value == "on" || value == "off" || value == "hs";
      s.dtr = value != "off";
    } else if (key == "to" || key == "odsr" || key == "idsr") {
      ok = on_off(value).has_value();
    } else {
      ok = false;
    }
    if (!ok) return std::nullopt;
  }
  if (!have_baud) return std::nullopt;
  return s;
}

}  // namespace

std::optional<LineSettings> parse_mode(std::string_view text) {
  text = trimmed(text);
  if (text.empty()) return std::nullopt;
  if (text.find('=') != std::string_view::npos) return parse_long(text);
  return parse_short(text);
}

std::optional<LineSettings> line_settings_for(std::string_view mode_text) {
  auto settings = parse_mode(mode_text);
  if (!settings) return std::nullopt;
  // The letters are looked for anywhere in the text, as the suite always
  // did: "parity=N" therefore asks for hardware flow control too.
  const bool x = mode_text.find('x') != std::string_view::npos;
  const bool p = mode_text.find('p') != std::string_view::npos;
  if (!x && !p) {
    settings->xon_xoff = false;
    settings->rts_cts = false;
  }
  if (x) settings->xon_xoff = true;
  if (p) settings->rts_cts = true;
  if (x || p) settings->dtr = true;
  return settings;
}

}  // namespace kerfline::platform::port
