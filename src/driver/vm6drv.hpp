// CVm6Drv: the driver document, the tree of items one driver file defines,
// with its file header and, when the driver builds on one, its base driver.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "driver/drv_item.hpp"
#include "driver/drv_item_list.hpp"
#include "driver/text_definitions.hpp"

namespace kerfline::driver {

// The extended header of a "VM6DRV$" file. Its header text is stored in an
// encoded form this library does not decode: the bytes are kept as read and
// written back unchanged, and so is whether the DWORD 0 follows the note.
struct ExtendedHeader {
  bool Present = false;  // "VM6DRV$" rather than "VM6DRV"
  std::string EncodedText;
  std::string Note;
  bool DwordFollows = false;
};

class CVm6Drv {
 public:
  explicit CVm6Drv(TextLookup lookup = standard_text_lookup());
  ~CVm6Drv();
  CVm6Drv(const CVm6Drv&) = delete;
  CVm6Drv& operator=(const CVm6Drv&) = delete;

  // The document at `address` while it lives, else null. Every document is
  // listed from construction to destruction, so a host record naming a
  // freed or foreign object is refused without reading through it. (A new
  // document built at a freed one's address is taken for it.)
  static CVm6Drv* Live(const void* address);

  // Opens the file, looks at its header tag and reads it with the current
  // reader (a "VM6DRV"/"VM6DRV$" tag) or refuses it as a legacy file. A file
  // that cannot be opened is reported in a message box. On failure the
  // document keeps its items; LastError() says why.
  bool LoadDriver(const std::string& path);
  // Reads a current-format file whole and runs the post-load pass (base
  // driver, group list).
  bool ReadDriverFile(const std::string& path);
  // Reads only the title of a driver file; `title` stays untouched on failure.
  static bool ReadDriverTitle(const std::string& path, std::string& title);

  // The document as a driver file's bytes. Storing also runs the reserved
  // group check and lets populating groups fill themselves.
  std::string WriteToBytes();
  // Writes the document to a file through a temporary file, so that a failed
  // store leaves the old file whole; failures are shown in a message box.
  bool StoreDriver(const std::string& path);
  // Reads the bytes of a current-format driver file (no base driver).
  bool ReadFromBytes(std::string_view bytes);

  [[nodiscard]] const std::string& LastError() const { return last_error_; }

  CDrvItemList& Root() { return *root_; }
  [[nodiscard]] const TextDefinitions& Texts() const { return texts_; }

  // The root group first, then every group of the document in tree order. A
  // linked item found here is linked to the base driver's item of the same
  // name when there is one.
  CDrvItem* FindItem(const std::string& name);
  // Every group below the root, in tree order (rebuilt after loading; call
  // RefreshGroupList after adding groups).
  [[nodiscard]] std::vector<std::shared_ptr<CDrvItemList>> Groups() const;
  void RefreshGroupList();

  // Links this driver's linked items to the same-named items of the base
  // driver: groups, dialog variables, tool parameter variables and plain
  // items, in that order.
  void MergeBaseDriver();
  [[nodiscard]] CVm6Drv* BaseDriver() const { return base_driver_.get(); }

  void SetDllMode() { AppMode = false; }

  std::string FormatId = "VM6DRV";
  std::string Variant = "0";
  bool AppMode = true;
  std::uint32_t PendingState = 0;
  std::string Path;
  std::string Title;
  ExtendedHeader Header;
  std::uint32_t BaseDriverFlag = 0;

  static constexpr const char* kDriverNameItem = "%DriverName%";  // text 9016
  static constexpr const char* kBaseDriverItem = "%BaseDrv%";     // text 9120
  // Base drivers of base drivers are followed this deep at most (a driver
  // may name itself).
  static constexpr int kMaxBaseDepth = 8;

 private:
  CDrvItem* FindLocal(const std::string& name);
  bool ReadBytes(std::string_view bytes, bool with_base);
  void LoadBaseDriver();

  TextLookup lookup_;
  TextDefinitions texts_;
  std::shared_ptr<CDrvItemList> root_;
  std::vector<std::weak_ptr<CDrvItemList>> groups_;
  std::unique_ptr<CVm6Drv> base_driver_;
  int base_depth_ = 0;
  std::string last_error_;
};

}  // namespace kerfline::driver
