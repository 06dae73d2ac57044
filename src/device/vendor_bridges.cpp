// The vendor USB libraries: usbapi.dll by ordinal, Roland's rdg77001.dll and
// RDUPSLT.DLL. Their answers come from a device, so every length they report
// is clamped to the buffer we gave them.
#include <algorithm>
#include <array>
#include <cstring>

#include "device/port_access.hpp"
#include "platform/dynlib.hpp"
#include "platform/host_hooks.hpp"

namespace kerfline::device {
namespace {

// Ordinal N of usbapi.dll is the export "usbapi_ordinal_N" of a POSIX build.
std::string usbapi_symbol(int ordinal) { return "usbapi_ordinal_" + std::to_string(ordinal); }

constexpr std::uint32_t kUsbApiReadSize = 1024;
constexpr int kRdgRounds = 10;
constexpr std::uint32_t kRdgReadSize = 1000;
// An empty read is not counted; this bounds a device that only ever says
// nothing.
constexpr int kRdgEmptyReadLimit = 100;

}  // namespace

std::optional<std::string> UsbApiQuery(const std::string& instruction) {
  auto library = platform::DynamicLibrary::open("usbapi.dll");
  if (!library) return std::nullopt;
  using Open = std::intptr_t();
  using Write = int(std::intptr_t, const char*, std::uint32_t);
  using Pending = int(std::intptr_t, std::uint32_t*);
  using Read = int(std::intptr_t, char*, std::uint32_t, std::uint32_t*);
  using Close = int(std::intptr_t);
  auto* open = library->function<Open>(usbapi_symbol(1).c_str());
  auto* write = library->function<Write>(usbapi_symbol(2).c_str());
  auto* read = library->function<Read>(usbapi_symbol(3).c_str());
  auto* close = library->function<Close>(usbapi_symbol(4).c_str());
  auto* pending = library->function<Pending>(usbapi_symbol(8).c_str());
  if (open == nullptr || write == nullptr || read == nullptr || close == nullptr || pending == nullptr) {
    return std::nullopt;
  }
  const std::intptr_t connection = open();
  write(connection, instruction.c_str(), static_cast<std::uint32_t>(instruction.size() + 1));
  wait_ms(100);
  std::uint32_t count = 16;
  pending(connection, &count);
  // The read is told 1024 bytes whatever the count said: the buffer holds
  // them, so a device that sends more than it announced overruns nothing.
  std::string buffer(std::max<std::uint32_t>(count, kUsbApiReadSize) + 1, '\0');
  wait_ms(100);
  std::uint32_t got = count;
  read(connection, buffer.data(), kUsbApiReadSize, &got);
  close(connection);
  buffer.resize(std::min<std::size_t>(got, kUsbApiReadSize));
  buffer.resize(std::strlen(buffer.c_str()));
  return buffer;
}

std::optional<std::string> RdgQuery(const std::string& usb_device_name, const std::string& instruction,
                                    const std::string& library_name) {
  auto library = platform::DynamicLibrary::open(library_name);
  if (!library) return std::nullopt;
  using Open = std::intptr_t(const char*);
  using Read = int(std::intptr_t, char*, int);
  using Write = int(std::intptr_t, const char*, int);
  using Close = int(std::intptr_t);
  auto* open = library->function<Open>("RDG_Open");
  auto* read = library->function<Read>("RDG_Read");
  auto* write = library->function<Write>("RDG_Write");
  auto* close = library->function<Close>("RDG_Close");
  if (open == nullptr || read == nullptr || write == nullptr || close == nullptr) return std::nullopt;
  const std::intptr_t connection = open(usb_device_name.c_str());
  if (connection == 0) return std::nullopt;
  // Roland's instructions are four bytes; the length is the library's.
  std::string padded = instruction;
  padded.resize(std::max<std::size_t>(padded.size(), 4), '\0');
  write(connection, padded.c_str(), 4);
  std::array<char, kRdgReadSize + 1> buffer{};
  int failed = 0;
  int empty = 0;
  while (failed < kRdgRounds && empty < kRdgEmptyReadLimit) {
    wait_ms(1000);
    buffer.fill('\0');
    if (read(connection, buffer.data(), static_cast<int>(kRdgReadSize)) == 0) {
      ++failed;
      continue;
    }
    if (buffer[0] != '\0') break;
    ++empty;
  }
  close(connection);
  buffer[kRdgReadSize] = '\0';
  return std::string(buffer.data());
}

std::optional<std::string> SlotRead(const std::string& usb_device_name) {
  auto library = platform::DynamicLibrary::open("RDUPSLT.DLL");
  if (!library) return std::nullopt;
  using Open =
      std::intptr_t(const char*, std::uint32_t, std::uint32_t, void*, std::uint32_t, std::uint32_t, void*);
  using ReadSlot = int(std::intptr_t, std::int32_t*, std::uint32_t, std::uint32_t*, int, int, int);
  using Close = int(std::intptr_t);
  auto* open = library->function<Open>("Open");
  auto* read_slot = library->function<ReadSlot>("ReadSlot");
  auto* close = library->function<Close>("Close");
  if (open == nullptr || read_slot == nullptr || close == nullptr) return std::nullopt;
  constexpr std::uint32_t kReadWrite = 0xC0000000u;  // GENERIC_READ | GENERIC_WRITE
  constexpr std::uint32_t kOpenExisting = 3;
  constexpr std::uint32_t kNormal = 0x80;
  const std::intptr_t connection =
      open(usb_device_name.c_str(), kReadWrite, 0, nullptr, kOpenExisting, kNormal, nullptr);
  if (connection == 0 || connection == -1) return std::nullopt;
  std::array<std::int32_t, 4> slot{};
  std::uint32_t bytes = 0;
  if (read_slot(connection, slot.data(), 16, &bytes, 0, 0, 8) == 0) return std::nullopt;
  char text[128];
  std::snprintf(text, sizeof text, "%ld,%ld,%ld,%ld", static_cast<long>(slot[0]), static_cast<long>(slot[1]),
                static_cast<long>(slot[2]), static_cast<long>(slot[3]));
  close(connection);
  return std::string(text);
}

std::optional<std::string> ManualAnswer() {
  auto typed = platform::host::prompt("Device answer", 255);
  if (!typed || typed->empty()) return std::nullopt;
  return typed;
}

}  // namespace kerfline::device
