#include "frame/var_names.hpp"

#include <cstdlib>
#include <cstring>

#include "driver/text_dictionary.hpp"
#include "frame/library_start.hpp"
#include "kerfline/kerfline.h"
#include "platform/c_boundary.hpp"
#include "platform/host_hooks.hpp"
#include "platform/library_memory.hpp"

namespace kerfline::frame {

std::size_t replace_all(std::string& text, const std::string& find, const std::string& replacement) {
  if (find.empty()) return 0;
  std::size_t at = text.find(find);
  if (at == std::string::npos) return 0;
  std::string out;
  out.reserve(text.size());
  std::size_t from = 0;
  std::size_t count = 0;
  for (; at != std::string::npos; at = text.find(find, from)) {
    out.append(text, from, at - from);
    out += replacement;
    from = at + find.size();
    ++count;
  }
  out.append(text, from, std::string::npos);
  text = std::move(out);
  return count;
}

std::string variable_name(std::uint32_t id, std::int32_t mode) {
  std::string name = driver::dictionary_text(id);
  // The dictionary writes integer variables as "%I..."; mode 1 is for hosts
  // that want the plain form.
  if (mode == 1) replace_all(name, "%I", "%");
  return name;
}

std::int32_t copy_variable_name(const std::string& name, char* buffer) {
  if (buffer == nullptr) return 1;
  if (name == kDlxNotFound) {
    if (platform::host::is_key_down(KERFLINE_VK_CONTROL) && platform::host::is_key_down(KERFLINE_VK_SHIFT)) {
      platform::host::message_box(std::string("GetVarName: DLX_NOT_FOUND") + buffer,
                                  "Kerfline:", KERFLINE_MB_OK);
    }
    return 0;
  }
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  return 1;
}

}  // namespace kerfline::frame

namespace {

char* malloc_copy(const std::string& text) {
  auto* block = static_cast<char*>(kerfline::platform::c_runtime_alloc(text.size() + 1));
  if (block != nullptr) std::memcpy(block, text.c_str(), text.size() + 1);
  return block;
}

}  // namespace

extern "C" {

KERFLINE_API int32_t GetVarName(uint32_t id, int32_t mode, char* buffer) noexcept {
  return kerfline::platform::guarded_as(0, [id, mode, buffer] {
    kerfline::frame::ensure_resources_loaded();
    return kerfline::frame::copy_variable_name(kerfline::frame::variable_name(id, mode), buffer);
  });
}

KERFLINE_API int32_t GetVarDesc(uint32_t id, int32_t mode, VARDESC* desc) noexcept {
  if (desc == nullptr) return 0;
  desc->pszName = nullptr;
  desc->pszDescription = nullptr;
  return kerfline::platform::guarded(KERFLINE_OUT_OF_MEMORY, [id, mode, desc] {
    kerfline::frame::ensure_resources_loaded();
    const std::string name = kerfline::frame::variable_name(id, mode);
    const std::string description = kerfline::driver::dictionary_description(id);
    char* name_block = malloc_copy(name);
    char* description_block = malloc_copy(description);
    if (name_block == nullptr || description_block == nullptr) {
      std::free(name_block);
      std::free(description_block);
      return KERFLINE_OUT_OF_MEMORY;
    }
    desc->pszName = name_block;
    desc->pszDescription = description_block;
    return KERFLINE_SUCCESS;
  });
}

KERFLINE_API int32_t FreeVarDesc(VARDESC* desc) noexcept {
  if (desc == nullptr) return 0;
  std::free(desc->pszName);
  std::free(desc->pszDescription);
  desc->pszName = nullptr;
  desc->pszDescription = nullptr;
  return 1;
}

}  // extern "C"
