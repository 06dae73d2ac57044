#include "registration/scanner_bridge.hpp"

#include <mutex>

#include "devconfig/registration_run.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/clock.hpp"
#include "platform/dynlib.hpp"
#include "platform/host_hooks.hpp"
#include "platform/library_memory.hpp"

namespace kerfline::registration {
namespace {

using InitDigitizerEntry = std::int32_t(std::int32_t);
using PointerEntry = std::int32_t(void*);
using CommandEntry = std::int32_t(std::int32_t, std::int32_t, std::int32_t);
using PositionsEntry = std::int32_t(std::int32_t, DIGITIZERPOS*);
using PlainEntry = std::int32_t();
using HandleUIEntry = std::int32_t(void*, std::int32_t, std::int32_t, std::int32_t);

constexpr const char* kPluginName = "lumaprobe.dll";
constexpr std::uint32_t kBusyRecheckMs = 500;
constexpr std::uint32_t kSettleMs = 100;
constexpr std::uint32_t kSettlePumpMs = 10;
// A plug-in's count beyond this is taken as a fault, not as an allocation.
constexpr std::int32_t kMaxPositions = 1 << 20;

// The bridge is used from the host's UI thread; the lock only keeps a
// misbehaving host from tearing the state apart.
struct Bridge {
  std::recursive_mutex mutex;
  std::optional<platform::DynamicLibrary> plugin;
  PlainEntry* process = nullptr;
  PointerEntry* read = nullptr;
  HandleUIEntry* handle_ui = nullptr;

  void clear_cache() {
    process = nullptr;
    read = nullptr;
    handle_ui = nullptr;
  }

  // Loads the plug-in by name and keeps the new handle; false when it
  // cannot be loaded (the old one, if any, stays).
  bool load() {
    auto lib = platform::DynamicLibrary::open(kPluginName);
    if (!lib) return false;
    plugin.emplace(std::move(lib.value()));
    clear_cache();  // a new handle may be another file
    return true;
  }

  void unload() {
    clear_cache();
    plugin.reset();
  }

  template <typename Entry>
  Entry* lookup(const char* name) const {
    return plugin ? plugin->function<Entry>(name) : nullptr;
  }

  template <typename Entry>
  Entry* cached(Entry*& slot, const char* name) {
    if (slot == nullptr) slot = lookup<Entry>(name);
    return slot;
  }
};

Bridge& bridge() {
  static Bridge* b = new Bridge;  // never destroyed: exports may run during unload
  return *b;
}

using Lock = std::lock_guard<std::recursive_mutex>;

void pump_for(std::uint32_t ms) {
  const std::uint32_t start = platform::tick_ms();
  while (platform::tick_ms() - start < ms) {
    platform::host::pump_messages();
    platform::sleep_ms(kSettlePumpMs);
  }
}

std::int32_t scanner_init_digitizer(std::int32_t value) {
  Bridge& b = bridge();
  const Lock lock(b.mutex);
  if (!b.load()) return -4;
  auto* entry = b.lookup<InitDigitizerEntry>("ProbeInitDigitizer");
  return entry != nullptr ? entry(value) : 1;
}

std::int32_t scanner_init(void* data) {
  Bridge& b = bridge();
  const Lock lock(b.mutex);
  if (run_device_active_jobs() > 0) return -4;
  if (!b.load()) return -4;
  auto* entry = b.lookup<PointerEntry>("ProbeInit");
  return entry != nullptr ? entry(data) : 1;
}

std::int32_t scanner_positions(std::int32_t* count, DIGITIZERPOS** positions) {
  Bridge& b = bridge();
  const Lock lock(b.mutex);
  if (!b.plugin) return -4;
  if (count == nullptr || positions == nullptr) return KERFLINE_BAD_ARGUMENT;
  auto* entry = b.lookup<PositionsEntry>("ProbeGetDigitizerPos");
  if (entry == nullptr) return 0;
  *positions = nullptr;
  const std::int32_t n = entry(0, nullptr);
  *count = n;
  if (n < 1) return n;
  auto* array =
      n <= kMaxPositions
          ? static_cast<DIGITIZERPOS*>(platform::library_alloc(sizeof(DIGITIZERPOS) * std::size_t(n)))
          : nullptr;
  if (array == nullptr) {
    *count = 0;
    return KERFLINE_OUT_OF_MEMORY;
  }
  for (std::int32_t i = 0; i < n; ++i) array[i] = DIGITIZERPOS{0.0, 0.0};
  std::int32_t got = entry(n, array);
  if (got > n) got = n;  // never more than the array holds
  *count = got;
  if (got < 1) {
    platform::library_free(array);
  } else {
    *positions = array;
  }
  return got;
}

std::int32_t scanner_unload(const char* cleanup, std::int32_t missing, std::int32_t not_loaded) {
  Bridge& b = bridge();
  const Lock lock(b.mutex);
  if (!b.plugin) return not_loaded;
  auto* entry = b.lookup<PlainEntry>(cleanup);
  const std::int32_t result = entry != nullptr ? entry() : missing;
  b.unload();
  return result;
}

std::int32_t scanner_read(void* data) {
  Bridge& b = bridge();
  const Lock lock(b.mutex);
  if (!b.plugin || b.cached(b.read, "ProbeRead") == nullptr) return 0;
  bool waited = false;
  while (run_device_active_jobs() >= 1) {
    waited = true;
    platform::host::pump_messages();
    platform::sleep_ms(kBusyRecheckMs);
  }
  if (waited) pump_for(kSettleMs);
  // The host's pump may have unloaded the plug-in meanwhile.
  if (!b.plugin || b.cached(b.read, "ProbeRead") == nullptr) return 0;
  return b.read(data);
}

}  // namespace

std::int32_t run_device_active_jobs() {
  const auto device = devconfig::registration_run_device();
  return device ? devconfig::active_jobs_of(*device) : 0;
}

void reset_scanner_bridge() {
  const Lock lock(bridge().mutex);
  bridge().unload();
  devconfig::set_registration_run_device(std::nullopt);
}

}  // namespace kerfline::registration

namespace reg = kerfline::registration;
using kerfline::platform::guarded;
using kerfline::platform::guarded_as;

// The plug-in could not be loaded or used.
constexpr int32_t kScannerFailed = -4;

extern "C" {

KERFLINE_API int32_t LumaProbeInitDigitizer(int32_t value) noexcept {
  return guarded_as(kScannerFailed, [value] { return reg::scanner_init_digitizer(value); });
}

KERFLINE_API int32_t LumaProbeInit(void* data) noexcept {
  return guarded_as(kScannerFailed, [data] { return reg::scanner_init(data); });
}

KERFLINE_API int32_t LumaProbeDoCommand(int32_t a, int32_t b, int32_t c) noexcept {
  return guarded_as(0, [a, b, c] {
    reg::Bridge& br = reg::bridge();
    const reg::Lock lock(br.mutex);
    auto* entry = br.lookup<reg::CommandEntry>("ProbeDoCommand");
    return entry != nullptr ? entry(a, b, c) : 0;
  });
}

KERFLINE_API int32_t LumaProbeGetDigitizerPos(int32_t* count, DIGITIZERPOS** positions) noexcept {
  return guarded(kScannerFailed, [count, positions] { return reg::scanner_positions(count, positions); });
}

KERFLINE_API int32_t LumaProbeFreeDigitizerPos(DIGITIZERPOS** positions) noexcept {
  if (positions != nullptr) {
    kerfline::platform::library_free(*positions);
    *positions = nullptr;
  }
  return KERFLINE_SUCCESS;
}

KERFLINE_API int32_t LumaProbeFreeDigitizer(void) noexcept {
  return guarded_as(kScannerFailed,
                    [] { return reg::scanner_unload("ProbeFreeDigitizer", 1, kScannerFailed); });
}

KERFLINE_API int32_t LumaProbeRead(void* data) noexcept {
  return guarded_as(0, [data] { return reg::scanner_read(data); });
}

KERFLINE_API int32_t LumaProbeProcess(void) noexcept {
  return guarded_as(0, [] {
    reg::Bridge& br = reg::bridge();
    const reg::Lock lock(br.mutex);
    auto* entry = br.cached(br.process, "Process");
    return entry != nullptr ? entry() : 0;
  });
}

KERFLINE_API int32_t LumaProbeHandleUI(void* window, int32_t a, int32_t b, int32_t c) noexcept {
  return guarded_as(0, [window, a, b, c] {
    reg::Bridge& br = reg::bridge();
    const reg::Lock lock(br.mutex);
    auto* entry = br.cached(br.handle_ui, "HandleUI");
    return entry != nullptr ? entry(window, a, b, c) : 0;
  });
}

KERFLINE_API int32_t LumaProbeExit(void) noexcept {
  return guarded_as(0, [] {
    reg::Bridge& br = reg::bridge();
    const reg::Lock lock(br.mutex);
    if (!br.plugin) return 0;
    reg::scanner_unload("ProbeExit", 1, 0);
    return 1;
  });
}

}  // extern "C"
