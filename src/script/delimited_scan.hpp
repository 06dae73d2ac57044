// The scan the conditional and arithmetic passes share: each span between an
// opening and a closing mark is replaced by what the pass makes of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "script/limits.hpp"

namespace kerfline::script {

// The closing mark is looked for from the scan position, not from the
// opening mark, so a closing mark before the opening one gives an empty
// content. Nothing when a closing mark is missing or the output outgrows
// kMaxPassOutputBytes.
template <typename Replace>
std::optional<std::string> replace_delimited(std::string_view text, std::string_view open_mark,
                                             std::string_view close_mark, Replace&& replace) {
  std::string out;
  out.reserve(text.size());
  std::size_t scan = 0;
  while (true) {
    const std::size_t open = text.find(open_mark, scan);
    if (open == std::string_view::npos) break;
    const std::size_t close = text.find(close_mark, scan);
    if (close == std::string_view::npos) return std::nullopt;
    out.append(text.substr(scan, open - scan));
    const std::size_t inner = open + open_mark.size();
    out += replace(close >= inner ? text.substr(inner, close - inner) : std::string_view{});
    if (out.size() > kMaxPassOutputBytes) return std::nullopt;
    scan = close + close_mark.size();
  }
  out.append(text.substr(scan));
  return out;
}

}  // namespace kerfline::script
