#include <string>

#include "platform/shared_memory.hpp"
#include "platform/win32/win32_support.hpp"

namespace kerfline::platform {
namespace {

bool valid_name_char(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '-' ||
         c == '_';
}

// The mapping's name in the session's namespace, or empty for a name we refuse.
std::string os_name(std::string_view name) {
  if (!name.empty() && name.front() == '/') name.remove_prefix(1);
  if (name.empty() || name.size() > 200 || name == "." || name == "..") return {};
  for (const char c : name) {
    if (!valid_name_char(c)) return {};
  }
  return "Local\\" + std::string(name);
}

}  // namespace

struct SharedMemory::Impl {
  win32::UniqueHandle mapping;
  win32::UniqueView view;
  std::size_t size = 0;
};

SharedMemory::SharedMemory(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
SharedMemory::SharedMemory(SharedMemory&&) noexcept = default;
SharedMemory& SharedMemory::operator=(SharedMemory&&) noexcept = default;
SharedMemory::~SharedMemory() = default;

void* SharedMemory::data() const { return impl_->view.get(); }
std::size_t SharedMemory::size() const { return impl_->size; }

// A mapping backed by the paging file starts zero-filled and lives while any
// process holds a handle: the lifetime of a shared section of a DLL image.
Result<SharedMemory> SharedMemory::open(std::string_view name, std::size_t size) {
  const std::string os = os_name(name);
  if (os.empty()) return OsError{ERROR_INVALID_NAME, "shared memory: bad name \"" + std::string(name) + "\""};
  if (size == 0) return OsError{ERROR_INVALID_PARAMETER, "shared memory " + os + ": size 0"};

  auto impl = std::make_unique<Impl>();
  const auto size64 = static_cast<unsigned long long>(size);
  impl->mapping.reset(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE,
                                         win32::high_dword(size64), win32::low_dword(size64), os.c_str()));
  if (!impl->mapping.valid()) return win32::last_error("CreateFileMapping " + os);
  // An existing mapping keeps its size: a section cannot grow.
  impl->view = win32::UniqueView(MapViewOfFile(impl->mapping.get(), FILE_MAP_ALL_ACCESS, 0, 0, size));
  if (impl->view.get() == nullptr) return win32::last_error("MapViewOfFile " + os);
  impl->size = size;
  return SharedMemory(std::move(impl));
}

// Windows drops a name with its last handle and offers no way to take it
// away from processes that still hold it.
bool SharedMemory::remove(std::string_view /*name*/) { return false; }

}  // namespace kerfline::platform
