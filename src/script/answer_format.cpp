#include "script/answer_format.hpp"

#include <algorithm>
#include <array>
#include <optional>

namespace kerfline::script {
namespace {

constexpr std::string_view kOpen = "%[";
constexpr std::string_view kClose = "]%";

bool is_field_end(char c) { return c == ',' || c == ';' || c == '\r' || c == '\n'; }

// A scanf-style character set; "a-z" ranges, a leading '^' negates, a '-'
// first or last is itself.
class CharSet {
 public:
  explicit CharSet(std::string_view slot) {
    if (!slot.empty() && slot.front() == '^') {
      negated_ = true;
      slot.remove_prefix(1);
    }
    for (std::size_t i = 0; i < slot.size(); ++i) {
      const auto lo = static_cast<unsigned char>(slot[i]);
      if (i + 2 < slot.size() && slot[i + 1] == '-') {
        const auto hi = static_cast<unsigned char>(slot[i + 2]);
        for (unsigned c = lo; c <= hi; ++c) in_[c] = true;
        i += 2;
      } else {
        in_[lo] = true;
      }
    }
  }
  [[nodiscard]] bool contains(char c) const { return in_[static_cast<unsigned char>(c)] != negated_; }

 private:
  std::array<bool, 256> in_{};
  bool negated_ = false;
};

}  // namespace

std::string_view strip_line_end(std::string_view answer) {
  while (!answer.empty() && (answer.back() == '\r' || answer.back() == '\n')) answer.remove_suffix(1);
  return answer;
}

AnswerMatch match_answer(std::string_view format, std::string_view answer) {
  AnswerMatch m;
  const std::size_t start = std::min(answer.find_first_not_of(" \t\r\n"), answer.size());
  std::size_t at = start;
  std::optional<std::string> first_set;
  std::size_t f = 0;
  bool any_slot = false;
  while (f < format.size()) {
    const std::size_t open = format.find(kOpen, f);
    const std::size_t close =
        open == std::string_view::npos ? open : format.find(kClose, open + kOpen.size());
    const std::string_view literal =
        format.substr(f, (close == std::string_view::npos ? format.size() : open) - f);
    if (answer.substr(at, literal.size()) != literal) return m;
    at += literal.size();
    if (close == std::string_view::npos) break;
    any_slot = true;
    const std::string_view slot = format.substr(open + kOpen.size(), close - open - kOpen.size());
    f = close + kClose.size();
    if (slot.size() >= 2 && slot.front() == '!' && slot.back() == '!') {
      const char next = f < format.size() && format.compare(f, kOpen.size(), kOpen) != 0 ? format[f] : '\0';
      std::size_t end = at;
      while (end < answer.size() && !is_field_end(answer[end]) && answer[end] != next) ++end;
      const std::string_view name = slot.substr(1, slot.size() - 2);
      if (name != "%s") m.fields.emplace_back(std::string(name), std::string(answer.substr(at, end - at)));
      at = end;
    } else {
      const CharSet set(slot);
      std::size_t end = at;
      while (end < answer.size() && set.contains(answer[end])) ++end;
      if (end == at) return m;
      if (!first_set) first_set = std::string(answer.substr(at, end - at));
      at = end;
    }
  }
  m.matched = true;
  if (first_set) {
    m.value = *first_set;
  } else if (!m.fields.empty()) {
    m.value = m.fields.front().second;
  } else if (!any_slot) {
    m.value = std::string(strip_line_end(answer.substr(start)));
  }
  return m;
}

}  // namespace kerfline::script
