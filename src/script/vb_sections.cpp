#include "script/vb_sections.hpp"

#include <optional>
#include <string_view>

#include "script/vb_bridge.hpp"

namespace kerfline::script {
namespace {
constexpr std::string_view kStart = "<VBStart>";
constexpr std::string_view kEnd = "<VBEnd>";
}  // namespace

std::string expand_vb_sections(const std::string& text, const std::string& global_code) {
  std::size_t start = text.find(kStart);
  if (start == std::string::npos) return text;
  std::unique_ptr<VbBridge> bridge = VbBridge::start(global_code);
  if (bridge == nullptr) return {};
  std::string expanded = text;
  for (int sections = 0; start != std::string::npos; start = expanded.find(kStart), ++sections) {
    const std::size_t end = expanded.find(kEnd);
    const std::size_t first = start + kStart.size();
    if (sections == kMaxVbSections || end == std::string::npos || end < first) return {};
    const std::optional<std::string> value =
        bridge->eval(std::string_view(expanded).substr(first, end - first));
    if (!value) return {};
    std::string next;
    next.reserve(start + value->size() + expanded.size() - end - kEnd.size());
    next.append(expanded, 0, start).append(*value).append(expanded, end + kEnd.size());
    if (next.size() > kMaxExpandedText) return {};
    expanded = std::move(next);
  }
  return expanded;
}

}  // namespace kerfline::script
