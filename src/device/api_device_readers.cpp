// The device readers (one instruction, one answer) and the device the
// evaluator's dialogue functions talk to.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "device/device_exchange.hpp"
#include "device/port_access.hpp"
#include "platform/c_boundary.hpp"
#include "script/answer_format.hpp"
#include "script/process_state.hpp"
#include "script/vb_sections.hpp"

static_assert(sizeof(KERFLINE_DEVICE_ANSWER) == 208);
static_assert(offsetof(KERFLINE_DEVICE_ANSWER, nStatus) == 0);
static_assert(offsetof(KERFLINE_DEVICE_ANSWER, nCount) == 4);
static_assert(offsetof(KERFLINE_DEVICE_ANSWER, dValues) == 8);
static_assert(offsetof(KERFLINE_DEVICE_ANSWER, szAnswer) == 72);

namespace kerfline::device {
namespace {

constexpr std::size_t kMaxValues = std::size(KERFLINE_DEVICE_ANSWER{}.dValues);

// The evaluator's device: a driver record and a device name.
class EvalDevice final : public script::DeviceDialogue {
 public:
  EvalDevice(const VMV6DRV* drv, std::string device) : drv_(drv), device_(std::move(device)) {}
  std::optional<std::string> query(script::Evaluator& e, const script::DialogueRequest& request) override {
    return exchange(drv_, device_, request, {[&e] { return e.escaped(); }, false});
  }
  [[nodiscard]] std::string name() const override { return "device " + device_; }

 private:
  const VMV6DRV* drv_;
  std::string device_;
};

void fill_answer(KERFLINE_DEVICE_ANSWER& out, std::string_view text) {
  text = script::strip_line_end(text);
  const std::size_t n = std::min(text.size(), sizeof out.szAnswer - 1);
  std::memcpy(out.szAnswer, text.data(), n);
  out.szAnswer[n] = '\0';
}

std::int32_t read_string(VMV6DRV* drv, const char* device, const std::string& instruction, char terminator,
                         KERFLINE_DEVICE_ANSWER* out, std::string& answer) {
  if (out == nullptr) return -2;
  *out = KERFLINE_DEVICE_ANSWER{};
  out->nStatus = -2;
  if (device == nullptr) return -2;
  script::DialogueRequest request;
  request.instruction = instruction;
  request.terminator = terminator;
  const auto got = exchange(drv, device, request, {{}, true});
  out->nStatus = got ? 1 : 0;
  if (got) {
    answer = *got;
    fill_answer(*out, answer);
  }
  return out->nStatus;
}

std::string driver_value(const VMV6DRV* drv, const char* name, const char* fallback) {
  return driver_variable(drv, name).value_or(fallback);
}

}  // namespace
}  // namespace kerfline::device

using kerfline::device::read_string;

extern "C" {

KERFLINE_API int32_t ReadDeviceString(VMV6DRV* drv, const char* device, const char* instruction,
                                      KERFLINE_DEVICE_ANSWER* answer) noexcept {
  return kerfline::platform::guarded_as<int32_t>(0, [&]() -> int32_t {
    std::string text;
    if (instruction == nullptr) return answer != nullptr ? (answer->nStatus = -2) : -2;
    return read_string(drv, device, instruction, '\0', answer, text);
  });
}

KERFLINE_API int32_t ReadDeviceVals(VMV6DRV* drv, const char* device, const char* instruction,
                                    KERFLINE_DEVICE_ANSWER* answer) noexcept {
  return kerfline::platform::guarded_as<int32_t>(0, [&]() -> int32_t {
    std::string text;
    if (instruction == nullptr) return answer != nullptr ? (answer->nStatus = -2) : -2;
    const int32_t status = read_string(drv, device, instruction, '\0', answer, text);
    if (status != 1) return status;
    const char* p = answer->szAnswer;
    while (*p != '\0' && answer->nCount < static_cast<int32_t>(kerfline::device::kMaxValues)) {
      char* end = nullptr;
      const double v = std::strtod(p, &end);
      if (end == p) {
        ++p;
        continue;
      }
      answer->dValues[answer->nCount++] = v;
      p = end;
    }
    if (answer->nCount == 0) answer->nStatus = -1;
    return answer->nStatus;
  });
}

KERFLINE_API int32_t GetWidthFromDevice(VMV6DRV* drv, const char* device,
                                        KERFLINE_DEVICE_ANSWER* answer) noexcept {
  using kerfline::device::driver_value;
  return kerfline::platform::guarded_as<int32_t>(0, [&]() -> int32_t {
    // Sections are expanded with one engine per text, the driver's
    // %VBGlobalCode% as its global code.
    const std::string globals = driver_value(drv, "%VBGlobalCode%", "");
    auto expanded = [&](const char* name, const char* fallback) {
      return kerfline::script::expand_vb_sections(driver_value(drv, name, fallback), globals);
    };
    const std::string instruction = expanded("%Read%", "OH;");
    const std::string terminate = expanded("%ReadTerminate%", ";");
    const std::string format = expanded("%ReadFormat%", "%[!%s!]%,%[!%IMatWidth%!]%");
    std::string text;
    const char t = terminate.empty() ? '\0' : terminate.front();
    const int32_t status = read_string(drv, device, instruction, t, answer, text);
    if (status != 1) return status;
    if (t != '\0') text = text.substr(0, text.find(t));
    const auto m = kerfline::script::match_answer(format, text);
    answer->nStatus = -1;
    for (const auto& [name, value] : m.fields) {
      if (name != "%IMatWidth%" || value.empty()) continue;
      char* end = nullptr;
      answer->dValues[0] = std::strtod(value.c_str(), &end);
      if (end != value.c_str()) {
        answer->nCount = 1;
        answer->nStatus = 1;
      }
    }
    return answer->nStatus;
  });
}

KERFLINE_API int32_t SetEvalDevice(VMV6DRV* drv, const char* device) noexcept {
  return kerfline::platform::guarded_as<int32_t>(0, [&]() -> int32_t {
    kerfline::script::Evaluator* e = kerfline::script::process_eval().evaluator();
    if (e == nullptr) return 0;
    if (device == nullptr || *device == '\0') {
      e->set_device(nullptr);
    } else {
      e->set_device(std::make_shared<kerfline::device::EvalDevice>(drv, device));
    }
    return 1;
  });
}

}  // extern "C"
