// The readers that open a driver file only for one answer, on arbitrary
// bytes: GetDrvName and GetFlags, on an older fixed-layout file (".vdv") and
// on a current one. A name is copied only into a buffer that holds it, and
// the flags are found for every tool name the file's slots hold.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

#include "kerfline/kerfline.h"
#include "quiet_host.hpp"
#include "sandbox.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

std::string write_file(const char* name, std::string_view bytes) {
  const std::string path = (kerfline::fuzz::sandbox_dir("heads") / name).string();
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return path;
}

// A current file that does not read is shown in a message box: answered at once.
bool set_up() {
  kerfline::fuzz::answer_message_boxes_at_once();
  return true;
}

void read_name(const std::string& path) {
  const std::int32_t needed = GetDrvName(path.c_str(), nullptr, 0);
  check(needed < 0);
  const auto size = static_cast<std::size_t>(-needed) + 1;
  const auto buffer = std::make_unique<char[]>(size);
  check(GetDrvName(path.c_str(), buffer.get(), static_cast<std::int32_t>(size - 1)) == needed);
  check(GetDrvName(path.c_str(), buffer.get(), static_cast<std::int32_t>(size)) == -needed - 1);
  check(std::string_view(buffer.get()).size() == size - 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = set_up();
  (void)ready;
  if (size > 65536) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  for (const char* name : {"d.vdv", "d.vmd"}) {
    const std::string path = write_file(name, bytes);
    read_name(path);
    std::uint32_t flags = 0;
    (void)GetFlags(path.c_str(), nullptr, &flags);
    // Tool names as the slots of a fixed-layout file hold them (358 + 1532 * n).
    for (std::size_t at = 358; at < bytes.size() && at < 10209; at += 1532) {
      const std::string tool(bytes.substr(at, bytes.substr(at).find('\0')));
      (void)GetFlags(path.c_str(), tool.c_str(), &flags);
    }
    (void)GetFlags(path.c_str(), "Knife", &flags);
  }
  return 0;
}
