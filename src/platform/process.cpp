#include "platform/process.hpp"

namespace kerfline::platform {
namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }

// The program name: quotes toggle and are dropped, backslashes are literal,
// a blank outside quotes ends it.
std::size_t take_program(std::string_view line, std::size_t i, std::string& out) {
  bool quoted = false;
  for (; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '"') {
      quoted = !quoted;
    } else if (is_blank(c) && !quoted) {
      break;
    } else {
      out += c;
    }
  }
  return i;
}

// One later argument with the backslash and quote rules.
std::size_t take_argument(std::string_view line, std::size_t i, std::string& out) {
  bool quoted = false;
  while (i < line.size()) {
    const char c = line[i];
    if (c == '\\') {
      std::size_t run = 0;
      while (i < line.size() && line[i] == '\\') {
        ++run;
        ++i;
      }
      if (i < line.size() && line[i] == '"') {
        out.append(run / 2, '\\');
        if (run % 2 == 1) {
          out += '"';
          ++i;
        }
        // An even run leaves the quote to the next round.
      } else {
        out.append(run, '\\');
      }
      continue;
    }
    if (c == '"') {
      if (quoted && i + 1 < line.size() && line[i + 1] == '"') {
        out += '"';  // "" inside quotes is a literal quote
        i += 2;
        continue;
      }
      quoted = !quoted;
      ++i;
      continue;
    }
    if (is_blank(c) && !quoted) break;
    out += c;
    ++i;
  }
  return i;
}

std::size_t skip_blanks(std::string_view line, std::size_t i) {
  while (i < line.size() && is_blank(line[i])) ++i;
  return i;
}

}  // namespace

std::vector<std::string> split_command_line(std::string_view line) {
  std::vector<std::string> args;
  std::size_t i = skip_blanks(line, 0);
  if (i >= line.size()) return args;
  args.emplace_back();
  i = skip_blanks(line, take_program(line, i, args.back()));
  while (i < line.size()) {
    args.emplace_back();
    i = skip_blanks(line, take_argument(line, i, args.back()));
  }
  return args;
}

std::string quote_command_argument(std::string_view argument) {
  std::string out = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '\\') {
      ++backslashes;
      continue;
    }
    // Backslashes before a quote are doubled, and the quote escaped.
    out.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
    backslashes = 0;
    out += c;
  }
  // ...and so are those before the closing quote.
  out.append(2 * backslashes, '\\');
  return out + "\"";
}

}  // namespace kerfline::platform
