// Cut-data records: the job description a host builds before output.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "kerfline/kerfline.h"

namespace {

char* copy_text(const char* text) {
  const char* source = text != nullptr ? text : "";
  const std::size_t n = std::strlen(source) + 1;
  auto* copy = static_cast<char*>(std::malloc(n));
  if (copy != nullptr) std::memcpy(copy, source, n);
  return copy;
}

// Grows an array of T by one element (old entries copied, old block kept);
// null when memory is short.
template <typename T>
T* grown_copy(const T* old, std::int32_t old_count) {
  auto* grown = static_cast<T*>(std::malloc(sizeof(T) * (static_cast<std::size_t>(old_count) + 1)));
  if (grown != nullptr && old != nullptr && old_count > 0) {
    std::memcpy(grown, old, sizeof(T) * static_cast<std::size_t>(old_count));
  }
  return grown;
}

void release_variables(CUTVAR* vars, std::int32_t count) {
  if (vars == nullptr) return;
  for (std::int32_t i = 0; i < count; ++i) {
    std::free(vars[i].pszName);
    std::free(vars[i].pszValue);
  }
  std::free(vars);
}

}  // namespace

extern "C" {

KERFLINE_API int32_t InitCutData(CUTDATA* data) {
  if (data == nullptr) return 0;
  std::memset(data, 0, sizeof(*data));
  return 1;
}

KERFLINE_API int32_t AddVariable(CUTDATA* data, const CUTVAR* variable) {
  if (data == nullptr || variable == nullptr) return 0;
  const std::int32_t old_count = data->nVarCount < 0 ? 0 : data->nVarCount;
  CUTVAR* grown = grown_copy(data->pVars, old_count);
  char* value = copy_text(variable->pszValue);
  char* name = copy_text(variable->pszName);
  if (grown == nullptr || value == nullptr || name == nullptr) {
    std::free(grown);
    std::free(value);
    std::free(name);
    return -3;
  }
  if (old_count > 0) {
    // Adding to existing variables drops the layers: hosts rely on adding
    // every variable first, and this keeps what they always observed.
    std::free(data->pLayers);
    data->pLayers = nullptr;
    data->nLayerCount = 0;
    std::free(data->pVars);  // the entries' texts moved into `grown`
  }
  grown[old_count].pszName = name;
  grown[old_count].pszValue = value;
  data->pVars = grown;
  data->nVarCount = old_count + 1;
  return 1;
}

KERFLINE_API int32_t AddLayer(CUTDATA* data, const CUTLAYER* layer) {
  if (data == nullptr || layer == nullptr) return 0;
  const std::int32_t old_count = data->nLayerCount < 0 ? 0 : data->nLayerCount;
  CUTLAYER* grown = grown_copy(data->pLayers, old_count);
  if (grown == nullptr) return -3;
  std::free(data->pLayers);
  grown[old_count] = *layer;
  data->pLayers = grown;
  data->nLayerCount = old_count + 1;
  return 1;
}

KERFLINE_API int32_t FreeCutData(CUTDATA* data) {
  if (data == nullptr) return 0;
  if (data->nVarCount != 0) release_variables(data->pVars, data->nVarCount);
  if (data->nLayerCount != 0 && data->pLayers != nullptr) std::free(data->pLayers);
  return 1;
}

}  // extern "C"
