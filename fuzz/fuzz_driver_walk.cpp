// A driver file read from arbitrary bytes and then walked as hosts walk it:
// every variable loaded for templates (LoadEvalVars), the document dumped in
// its text form, and a host text put through ReplaceStringsFromDriver. Input:
// the host text, a zero byte, the driver file.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "driver/vm6drv.hpp"
#include "driver_text_form.hpp"
#include "frame/driver_handle.hpp"
#include "kerfline/kerfline.h"
#include "script/process_state.hpp"

namespace {

void check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 65536) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = input.find('\0');
  if (end == std::string_view::npos) return 0;
  const std::string text(input.substr(0, end));
  VMV6DRV rec{};
  std::strcpy(rec.szFileName, "fuzz.vmd");
  check(InitDrvQuick(&rec) == 1);
  kerfline::driver::CVm6Drv* doc = kerfline::frame::document_of(&rec);
  if (doc->ReadFromBytes(input.substr(end + 1))) {
    const std::int32_t loaded = LoadEvalVars(&rec, 0xFFFFFFFFu);
    check(loaded >= 0);
    // Loaded variables would pile up from one input to the next.
    kerfline::script::process_eval().shared_variables().clear();
    (void)kerfline::cli::driver_to_json(*doc);
    std::int32_t count = -1;
    char* replaced = ReplaceStringsFromDriver(&rec, text.c_str(), &count);
    check(replaced != nullptr && count >= 0);
    check(count > 0 || text == replaced);
    std::free(replaced);
  }
  check(FreeDrv(&rec) == 1);
  return 0;
}
