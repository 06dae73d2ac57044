#include <unistd.h>
#include <cerrno>
#include <cstdlib>

#include <vector>

#include "platform/paths.hpp"
#include "platform/temp_file.hpp"

namespace kerfline::platform {

Result<std::string> create_unique_file(std::string_view dir, std::string_view prefix,
                                       std::string_view suffix) {
  const std::string pattern = join_path(dir, std::string(prefix) + "XXXXXX" + std::string(suffix));
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  // mkstemps picks the name and creates the file with O_EXCL in one call.
  const int fd = mkstemps(name.data(), static_cast<int>(suffix.size()));
  if (fd < 0) return os_error(errno, "create a unique file like", pattern);
  close(fd);
  return std::string(name.data());
}

}  // namespace kerfline::platform
