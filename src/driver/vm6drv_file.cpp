#include <utility>

#include "driver/archive_common.hpp"
#include "driver/driver_file_format.hpp"
#include "driver/vm6drv.hpp"
#include "platform/binary_file.hpp"
#include "platform/host_hooks.hpp"
#include "platform/paths.hpp"

namespace kerfline::driver {

namespace {

void show_file_error(const char* what, const std::string& path, const platform::OsError& error) {
  // The system's own text for the code, without our context.
  const std::string system_text = platform::os_error(error.code, "").message;
  const std::string text =
      std::string(what) + "\n" + path + "\n\nCode = (" + std::to_string(error.code) + ")\n\n" + system_text;
  platform::host::message_box(text, "Kerfline error:", KERFLINE_MB_OK | KERFLINE_MB_ICONERROR);
}

bool is_current_tag(const std::optional<std::string>& tag) {
  return tag && (*tag == kPlainTag || *tag == kExtendedTag);
}

}  // namespace

bool CVm6Drv::LoadDriver(const std::string& path) {
  Path = path;
  auto bytes = platform::read_binary_file(path);
  if (!bytes) {
    show_file_error("Can not open driver:", path, bytes.error());
    last_error_ = bytes.error().message;
    return false;
  }
  if (!is_current_tag(read_header_tag(*bytes))) {
    last_error_ = path + ": a legacy fixed-layout driver file, which this library does not read";
    return false;
  }
  return ReadBytes(*bytes, true);
}

bool CVm6Drv::ReadDriverFile(const std::string& path) {
  auto bytes = platform::read_binary_file(path);
  if (!bytes) {
    last_error_ = bytes.error().message;
    return false;
  }
  return ReadBytes(*bytes, true);
}

bool CVm6Drv::ReadFromBytes(std::string_view bytes) { return ReadBytes(bytes, false); }

bool CVm6Drv::ReadBytes(std::string_view bytes, bool with_base) {
  DriverFileContents contents;
  try {
    contents = parse_driver_file(bytes, texts_);
  } catch (const ArchiveError& e) {
    last_error_ = "invalid driver file: " + std::string(e.what());
    return false;
  } catch (const std::bad_alloc&) {
    last_error_ = "out of memory reading the driver file";
    return false;
  }
  Header = std::move(contents.header);
  Title = std::move(contents.title);
  BaseDriverFlag = contents.base_driver_flag;
  root_ = std::move(contents.root);
  base_driver_.reset();
  last_error_.clear();
  RefreshGroupList();
  if (with_base && BaseDriverFlag != 0) LoadBaseDriver();
  return true;
}

void CVm6Drv::LoadBaseDriver() {
  CDrvItem* item = FindLocal(kBaseDriverItem);
  if (item == nullptr) return;
  item->Linked = 0;
  if (item->Value.empty() || base_depth_ >= kMaxBaseDepth) return;

  // The base driver's name is relative to this driver's directory.
  const std::size_t slash = Path.find_last_of("\\/");
  const std::string dir = slash == std::string::npos ? std::string() : Path.substr(0, slash + 1);
  std::string path = platform::native_separators(dir + item->Value);
  if (!platform::path_exists(path)) {
    const auto resolved = platform::resolve_case_insensitive(path);
    if (!resolved) return;
    path = *resolved;
  }
  if (platform::is_directory(path)) return;

  auto base = std::make_unique<CVm6Drv>(lookup_);
  base->base_depth_ = base_depth_ + 1;
  if (!base->LoadDriver(path)) return;
  base_driver_ = std::move(base);
  MergeBaseDriver();
}

bool CVm6Drv::ReadDriverTitle(const std::string& path, std::string& title) {
  auto bytes = platform::read_binary_file(path);
  if (!bytes) return false;
  const TextDefinitions texts(standard_text_lookup());
  auto found = parse_driver_title(*bytes, texts);
  if (!found) return false;
  title = std::move(*found);
  return true;
}

std::string CVm6Drv::WriteToBytes() {
  if (CDrvItem* name = FindItem(kDriverNameItem)) Title = name->GetValue();
  return write_driver_file(Header, Title, BaseDriverFlag, *root_, texts_);
}

bool CVm6Drv::StoreDriver(const std::string& path) {
  const std::string bytes = WriteToBytes();
  const auto written = platform::replace_binary_file(path, bytes);
  if (!written) {
    show_file_error("Can not write driver:", path, written.error());
    last_error_ = written.error().message;
    return false;
  }
  return true;
}

}  // namespace kerfline::driver
