#include "platform/codepage.hpp"

#include <array>

namespace kerfline::platform::cp1252 {
namespace {

// Code points of 0x80-0x9F; the rest of 1252 equals Latin-1.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

struct CaseTables {
  std::array<unsigned char, 256> upper{};
  std::array<unsigned char, 256> lower{};
};

constexpr CaseTables make_case_tables() {
  CaseTables t{};
  for (int i = 0; i < 256; ++i) {
    t.upper[i] = static_cast<unsigned char>(i);
    t.lower[i] = static_cast<unsigned char>(i);
  }
  auto pair = [&t](int up, int low) {
    t.upper[low] = static_cast<unsigned char>(up);
    t.lower[up] = static_cast<unsigned char>(low);
  };
  for (int c = 'A'; c <= 'Z'; ++c) pair(c, c + 32);
  for (int c = 0xC0; c <= 0xDE; ++c) {
    if (c != 0xD7) pair(c, c + 32);  // 0xD7 x and 0xF7 / are not letters
  }
  pair(0x8A, 0x9A);  // Š š
  pair(0x8C, 0x9C);  // Œ œ
  pair(0x8E, 0x9E);  // Ž ž
  pair(0x9F, 0xFF);  // Ÿ ÿ
  return t;
}

constexpr CaseTables kCase = make_case_tables();

// The 1252 byte for a code point, or '?' when 1252 has none.
char from_code_point(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<char>(cp);
  for (std::size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == cp) return static_cast<char>(0x80 + i);
  }
  return '?';
}

}  // namespace

unsigned char to_upper(unsigned char c) { return kCase.upper[c]; }
unsigned char to_lower(unsigned char c) { return kCase.lower[c]; }

std::string to_upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(to_upper(static_cast<unsigned char>(c)));
  return out;
}

std::string to_lower(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(to_lower(static_cast<unsigned char>(c)));
  return out;
}

int compare_no_case(std::string_view a, std::string_view b) {
  const std::size_t n = a.size() < b.size() ? a.size() : b.size();
  for (std::size_t i = 0; i < n; ++i) {
    const int ca = to_upper(static_cast<unsigned char>(a[i]));
    const int cb = to_upper(static_cast<unsigned char>(b[i]));
    if (ca != cb) return ca - cb;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool equals_no_case(std::string_view a, std::string_view b) {
  return a.size() == b.size() && compare_no_case(a, b) == 0;
}

std::string from_utf16(const char16_t* units, std::size_t count) {
  std::string out;
  out.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const char16_t u = units[i];
    const bool high = u >= 0xD800 && u <= 0xDBFF;
    const bool low = u >= 0xDC00 && u <= 0xDFFF;
    if (high && i + 1 < count && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      ++i;  // a pair is one character outside 1252
      out.push_back('?');
    } else if (high || low) {
      out.push_back('?');
    } else {
      out.push_back(from_code_point(u));
    }
  }
  return out;
}

std::string from_utf16(std::u16string_view units) { return from_utf16(units.data(), units.size()); }

std::string to_utf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char ch : text) {
    const char32_t cp = to_unicode(static_cast<unsigned char>(ch));
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

std::optional<std::string> from_utf8(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    char32_t cp = 0;
    std::size_t extra = 0;
    if (lead < 0x80) {
      cp = lead;
    } else if ((lead & 0xE0) == 0xC0) {
      cp = lead & 0x1F;
      extra = 1;
    } else if ((lead & 0xF0) == 0xE0) {
      cp = lead & 0x0F;
      extra = 2;
    } else if ((lead & 0xF8) == 0xF0) {
      cp = lead & 0x07;
      extra = 3;
    } else {
      return std::nullopt;
    }
    for (std::size_t k = 1; k <= extra; ++k) {
      if (i + k >= utf8.size()) return std::nullopt;
      const auto cont = static_cast<unsigned char>(utf8[i + k]);
      if ((cont & 0xC0) != 0x80) return std::nullopt;
      cp = (cp << 6) | (cont & 0x3F);
    }
    i += extra + 1;
    if ((extra == 1 && cp < 0x80) || (extra == 2 && cp < 0x800)) return std::nullopt;  // overlong
    const char byte = from_code_point(cp);
    if (byte == '?' && cp != U'?') return std::nullopt;
    out.push_back(byte);
  }
  return out;
}

char32_t to_unicode(unsigned char c) {
  if (c >= 0x80 && c <= 0x9F) return kHighControls[c - 0x80];
  return c;
}

}  // namespace kerfline::platform::cp1252
