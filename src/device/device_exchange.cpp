#include "device/device_exchange.hpp"

#include <algorithm>

#include "device/port_access.hpp"
#include "platform/clock.hpp"
#include "platform/host_hooks.hpp"
#include "platform/tcp_socket.hpp"

namespace kerfline::device {
namespace {

namespace port = platform::port;

constexpr std::uint32_t kSliceMs = 50;
constexpr std::uint32_t kConnectTimeoutMs = 5000;
constexpr std::size_t kMaxAnswer = 4096;

// A line end always ends an answer; the terminator, when given, too.
bool complete(const std::string& answer, char terminator) {
  return answer.find_first_of("\r\n") != std::string::npos ||
         (terminator != '\0' && answer.find(terminator) != std::string::npos);
}

// Collects an answer slice by slice; read(buffer, size, ms) returns the
// count, or -1 when the line is gone.
template <typename Read>
std::optional<std::string> collect(const script::DialogueRequest& request, const ExchangeWaits& waits,
                                   Read read) {
  const std::uint64_t deadline = platform::tick_ms64() + request.timeout_ms;
  std::string answer;
  char buf[512];
  while (answer.size() < kMaxAnswer && !(waits.cancelled && waits.cancelled())) {
    const std::uint64_t now = platform::tick_ms64();
    if (now >= deadline) break;
    const auto slice = static_cast<std::uint32_t>(std::min<std::uint64_t>(kSliceMs, deadline - now));
    const long n = read(buf, std::min(sizeof buf, kMaxAnswer - answer.size()), slice);
    if (n < 0) break;
    answer.append(buf, static_cast<std::size_t>(n));
    if (complete(answer, request.terminator)) return answer;
    if (request.pump_messages) platform::host::pump_messages();
  }
  if (answer.empty() || (waits.cancelled && waits.cancelled())) return std::nullopt;
  return answer;
}

std::optional<std::string> over_tcp(const PortSettings& settings, const script::DialogueRequest& request,
                                    const ExchangeWaits& waits) {
  if (settings.ip_address.empty() || settings.ip_port < 1 || settings.ip_port > 65535) return std::nullopt;
  const std::uint64_t deadline = platform::tick_ms64() + kConnectTimeoutMs;
  platform::ByteStream stream;
  // Short attempts, so that a cancel is seen; a refusal ends at once.
  while (!stream.is_open() && !(waits.cancelled && waits.cancelled())) {
    const std::uint64_t start = platform::tick_ms64();
    if (start >= deadline) return std::nullopt;
    const auto slice = static_cast<int>(std::min<std::uint64_t>(250, deadline - start));
    auto r = platform::tcp_connect(settings.ip_address, static_cast<std::uint16_t>(settings.ip_port), slice);
    if (r.ok()) {
      stream = std::move(r.value());
    } else if (platform::tick_ms64() - start + 20 < static_cast<std::uint64_t>(slice)) {
      return std::nullopt;
    }
  }
  if (!stream.is_open()) return std::nullopt;
  const auto written = stream.write(request.instruction.data(), request.instruction.size(), 1000);
  if (!written.ok() || written.value() != request.instruction.size()) return std::nullopt;
  return collect(request, waits, [&](char* buf, std::size_t size, std::uint32_t ms) -> long {
    const auto r = stream.read(buf, size, static_cast<int>(ms));
    if (!r.ok() || r.value().closed) return -1;
    return static_cast<long>(r.value().count);
  });
}

std::optional<std::string> over_handles(const VMV6DRV* drv, const std::string& device,
                                        const script::DialogueRequest& request, const ExchangeWaits& waits) {
  Handle read_handle = port::kInvalidHandle;
  Handle write_handle = port::kInvalidHandle;
  std::int32_t error = 1;
  if (OpenDevicePort(drv, device.c_str(), &error, &read_handle, &write_handle) != 0 ||
      !port::is_open_handle(read_handle) || !port::is_open_handle(write_handle)) {
    close_pair(read_handle, write_handle);
    return std::nullopt;
  }
  if (waits.port_query) return QueryDevice(read_handle, write_handle, request.instruction.c_str(), nullptr);
  std::optional<std::string> answer;
  port::purge(read_handle);
  if (port::write(write_handle, request.instruction.data(), request.instruction.size()).count ==
      request.instruction.size()) {
    answer = collect(request, waits, [&](char* buf, std::size_t size, std::uint32_t ms) -> long {
      const port::IoResult r = port::read(read_handle, buf, size, port::ReadTimeouts{20, ms});
      return r.ok ? static_cast<long>(r.count) : -1;
    });
  }
  close_pair(read_handle, write_handle);
  return answer;
}

}  // namespace

std::optional<std::string> exchange(const VMV6DRV* drv, const std::string& device,
                                    const script::DialogueRequest& request, const ExchangeWaits& waits) {
  if (platform::host::diagnostics_requested()) return ManualAnswer();
  if (request.instruction.empty() || device.empty()) return std::nullopt;
  LinkState& state = link_state();
  state.graphtec_request = false;
  state.no_flush = false;
  state.out_flag_4 = false;
  std::string usb_name;
  const EDeviceLink link = DecideDeviceLink(drv, device, usb_name);
  switch (link) {
    case LinkRdgUsb:
      return RdgQuery(usb_name, request.instruction);
    case LinkSlotReader:
      return SlotRead(usb_name);
    case LinkUsbApi:
      return UsbApiQuery(request.instruction);
    case LinkTcpIp:
      return over_tcp(read_port_settings(device), request, waits);
    case LinkGraphtecUsb:
      state.single_handle_request = true;
      state.graphtec_request = true;
      break;
    case LinkUsbPipeSingle:
      state.single_handle_request = true;
      state.no_flush = true;
      break;
    case LinkPort:
      break;
  }
  return over_handles(drv, device, request, waits);
}

}  // namespace kerfline::device
