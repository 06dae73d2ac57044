// Cut-data records: the job description a host builds before output.
#include <cstdint>
#include <cstring>

#include "kerfline/kerfline.h"
#include "platform/library_memory.hpp"

namespace {

namespace platform = kerfline::platform;
using platform::library_alloc;
using platform::library_free;

char* copy_text(const char* text) { return platform::library_strdup(text != nullptr ? text : ""); }

// The record has no capacity field, so the capacity follows from the count:
// the next power of two. Growing by doubling keeps n adds linear. A host
// that lowers the count only ever under-estimates the real capacity.
std::size_t capacity_for(std::size_t count) {
  std::size_t capacity = 1;
  while (capacity < count) capacity *= 2;
  return capacity;
}

// Room for one more element of T: the same block when it has room, else a
// block twice the size with the old entries moved over (the old block is
// released). Null, with the old block kept, when memory is short.
template <typename T>
T* with_room(T* old, std::int32_t old_count) {
  const auto count = static_cast<std::size_t>(old_count);
  if (old != nullptr && count > 0 && count < capacity_for(count)) return old;
  auto* grown = static_cast<T*>(library_alloc(sizeof(T) * capacity_for(count + 1)));
  if (grown == nullptr) return nullptr;
  if (old != nullptr && count > 0) {
    std::memcpy(grown, old, sizeof(T) * count);
    library_free(old);
  }
  return grown;
}

void release_variables(CUTVAR* vars, std::int32_t count) {
  if (vars == nullptr) return;
  for (std::int32_t i = 0; i < count; ++i) {
    library_free(vars[i].pszName);
    library_free(vars[i].pszValue);
  }
  library_free(vars);
}

}  // namespace

extern "C" {

KERFLINE_API int32_t InitCutData(CUTDATA* data) noexcept {
  if (data == nullptr) return 0;
  std::memset(data, 0, sizeof(*data));
  return 1;
}

KERFLINE_API int32_t AddVariable(CUTDATA* data, const CUTVAR* variable) noexcept {
  if (data == nullptr || variable == nullptr) return 0;
  const std::int32_t old_count = data->nVarCount < 0 ? 0 : data->nVarCount;
  char* value = copy_text(variable->pszValue);
  char* name = copy_text(variable->pszName);
  CUTVAR* vars = value != nullptr && name != nullptr ? with_room(data->pVars, old_count) : nullptr;
  if (vars == nullptr) {
    library_free(value);
    library_free(name);
    return KERFLINE_OUT_OF_MEMORY;
  }
  if (old_count > 0) {
    // Adding to existing variables drops the layers: hosts rely on adding
    // every variable first, and this keeps what they always observed.
    library_free(data->pLayers);
    data->pLayers = nullptr;
    data->nLayerCount = 0;
  }
  vars[old_count].pszName = name;
  vars[old_count].pszValue = value;
  data->pVars = vars;
  data->nVarCount = old_count + 1;
  return 1;
}

KERFLINE_API int32_t AddLayer(CUTDATA* data, const CUTLAYER* layer) noexcept {
  if (data == nullptr || layer == nullptr) return 0;
  const std::int32_t old_count = data->nLayerCount < 0 ? 0 : data->nLayerCount;
  CUTLAYER* layers = with_room(data->pLayers, old_count);
  if (layers == nullptr) return KERFLINE_OUT_OF_MEMORY;
  layers[old_count] = *layer;
  data->pLayers = layers;
  data->nLayerCount = old_count + 1;
  return 1;
}

KERFLINE_API int32_t FreeCutData(CUTDATA* data) noexcept {
  if (data == nullptr) return 0;
  if (data->nVarCount != 0) release_variables(data->pVars, data->nVarCount);
  if (data->nLayerCount != 0 && data->pLayers != nullptr) library_free(data->pLayers);
  return 1;
}

}  // extern "C"
