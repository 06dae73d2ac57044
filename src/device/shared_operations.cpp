// The operations of SharedDataMan on a mapped block.
#include <algorithm>
#include <atomic>
#include <cstring>

#include "device/shared_block.hpp"

namespace kerfline::device {
namespace {

constexpr std::int32_t kDone = 1;
constexpr std::int32_t kUnknown = 0;

template <typename T>
T* pointer(std::uintptr_t argument) {
  return reinterpret_cast<T*>(argument);  // NOLINT(performance-no-int-to-ptr)
}

// The length of a text, reading no further than max characters.
std::size_t bounded_length(const char* text, std::size_t max) {
  std::size_t length = 0;
  while (length < max && text[length] != '\0') ++length;
  return length;
}

std::atomic_ref<std::uint32_t> flags(SharedBlock& block) {
  return std::atomic_ref<std::uint32_t>(block.flags);
}

template <typename T>
std::int32_t set_value(T& field, std::uintptr_t argument) {
  const T* in = pointer<const T>(argument);
  if (in == nullptr) return KERFLINE_BAD_ARGUMENT;
  field = *in;
  return kDone;
}

template <typename T>
std::int32_t get_value(const T& field, std::uintptr_t argument) {
  T* out = pointer<T>(argument);
  if (out == nullptr) return KERFLINE_BAD_ARGUMENT;
  *out = field;
  return kDone;
}

std::int32_t put_blob(SharedBlock& block, std::uintptr_t argument) {
  const auto* blob = pointer<const SHAREDBLOB>(argument);
  if (blob == nullptr || (blob->pData == nullptr && blob->nSize != 0)) return KERFLINE_BAD_ARGUMENT;
  const auto kept = static_cast<std::uint32_t>(std::min<std::size_t>(blob->nSize, kSharedBlobSize));
  if (kept != 0) std::memcpy(block.blob, blob->pData, kept);
  block.blob_size = kept;
  return kDone;
}

std::int32_t take_blob(SharedBlock& block, std::uintptr_t argument) {
  auto* blob = pointer<SHAREDBLOB>(argument);
  if (blob == nullptr || (blob->pData == nullptr && blob->nSize != 0)) return KERFLINE_BAD_ARGUMENT;
  const std::size_t count = std::min<std::size_t>(blob->nSize, kSharedBlobSize);
  if (count != 0) std::memcpy(blob->pData, block.blob, count);
  // Another process may have stored a size we would never write.
  blob->nSize = std::min<std::uint32_t>(block.blob_size, static_cast<std::uint32_t>(kSharedBlobSize));
  return kDone;
}

std::int32_t put_text(SharedBlock& block, std::uintptr_t argument) {
  const char* text = pointer<const char>(argument);
  if (text == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::size_t length = bounded_length(text, sizeof block.text - 1);
  std::memcpy(block.text, text, length);
  block.text[length] = '\0';
  return kDone;
}

std::int32_t take_text(SharedBlock& block, std::uintptr_t argument) {
  char* out = pointer<char>(argument);
  if (out == nullptr) return KERFLINE_BAD_ARGUMENT;
  const std::size_t length = bounded_length(block.text, sizeof block.text - 1);
  std::memcpy(out, block.text, length);
  out[length] = '\0';
  return kDone;
}

// Codes 6-11 and 14-43: six entries of six codes each (set first, second,
// third, then get first, second, third); 12 and 13 interrupt the run after
// entry 1.
std::int32_t coordinate(SharedBlock& block, std::int32_t operation, std::uintptr_t argument) {
  const int entry = operation < 12 ? 0 : (operation - 14) / 6 + 1;
  const int slot = operation < 12 ? operation - 6 : (operation - 14) % 6;
  double* axes[3] = {&block.first[entry], &block.second[entry], &block.third[entry]};
  return slot < 3 ? set_value(*axes[slot], argument) : get_value(*axes[slot - 3], argument);
}

}  // namespace

std::int32_t run_shared_operation(SharedBlock& block, std::int32_t operation, std::uintptr_t argument) {
  const auto mask = static_cast<std::uint32_t>(argument);
  switch (operation) {
    case 1:
      flags(block).fetch_or(mask);
      return kDone;
    case 2:
      flags(block).fetch_and(~mask);
      return kDone;
    case 3:
      return (flags(block).load() & mask) == mask ? 1 : 0;
    case 4:
      return put_blob(block, argument);
    case 5:
      return take_blob(block, argument);
    case 12:
      return put_text(block, argument);
    case 13:
      return take_text(block, argument);
    case 44:
      return set_value(block.value_d, argument);
    case 45:
      return get_value(block.value_d, argument);
    case 46:
      return set_value(block.value_e, argument);
    case 47:
      return get_value(block.value_e, argument);
    case 48:
      return set_value(block.value_f, argument);
    case 49:
      return get_value(block.value_f, argument);
    case 50:
      return set_value(block.value_g, argument);
    case 51:
      return get_value(block.value_g, argument);
    case 52:
      return set_value(block.value_h, argument);
    case 53:
      return set_value(block.value_i, argument);
    case 54:
      return get_value(block.value_h, argument);
    case 55:
      return get_value(block.value_i, argument);
    default:
      break;
  }
  if (operation >= 6 && operation <= 43) return coordinate(block, operation, argument);
  return kUnknown;
}

}  // namespace kerfline::device
