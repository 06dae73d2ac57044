#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "driver/text_dictionary.hpp"
#include "fixtures/host_recorder.hpp"
#include "fixtures/temp_dir.hpp"
#include "frame/driver_flags.hpp"
#include "frame/driver_handle.hpp"
#include "frame/var_names.hpp"
#include "kerfline/kerfline.h"
#include "sample_driver.hpp"

namespace drv = kerfline::driver;
namespace frame = kerfline::frame;
using kerfline::test::HostRecorder;
using kerfline::test::named;
using kerfline::test::record_for;
using kerfline::test::TempDir;
using kerfline::test::write_driver;

namespace {

// A file of the older fixed layout: the name at 0, driver flag bytes at 350
// and 352, tool slots of 1532 bytes from 358 (name, flags at 672, type at 674).
struct VdvTool {
  std::string name;
  std::uint16_t flags;
  std::string type;
};

std::string vdv_bytes(const std::string& name, std::uint8_t low, std::uint8_t high,
                      const std::vector<VdvTool>& tools, std::size_t size = 10209) {
  std::string bytes(size, '\0');
  auto put = [&](std::size_t at, const std::string& text) {
    if (at < bytes.size()) bytes.replace(at, std::min(text.size(), bytes.size() - at), text);
  };
  put(0, name);
  put(350, std::string(1, static_cast<char>(low)));
  put(352, std::string(1, static_cast<char>(high)));
  for (std::size_t i = 0; i < tools.size(); ++i) {
    const std::size_t slot = 358 + 1532 * i;
    put(slot, tools[i].name);
    put(slot + 672, {static_cast<char>(tools[i].flags & 0xFF), static_cast<char>(tools[i].flags >> 8)});
    put(slot + 674, tools[i].type);
  }
  return bytes;
}

class DriverQueries : public ::testing::Test {
 protected:
  std::string flag_driver() {
    return write_driver(dir, "flags.drv", [](drv::CVm6Drv& doc) {
      kerfline::test::add_all(
          doc.Root(),
          {kerfline::test::with(named<drv::CDrvItemList>("%Flags%"),
                                {named("%Flags_1%", "1"), named("%Flags_3%", "0"), named("%Flags_8%", " 2.5"),
                                 named("%OutFlag_1%", "True"), named("%OutFlag_4%", "no")}),
           named("%OutFlag_5%", "-1"), named("%LayerVarFlag%", "1"), named("%DriverClass%", "Plotter")});
    });
  }
  TempDir dir;
  HostRecorder host;
};

}  // namespace

// Only .vdv and .VDV are the fixed layout, and only its head is read.
TEST_F(DriverQueries, DriverNameNeedsOneSpareByteInBothFormats) {
  const std::string drv = write_driver(dir, "named.drv", [](drv::CVm6Drv& doc) {
    doc.Root().AddChild(named("%DriverName%", "Sample Cutter"));
  });
  const std::string vdv = dir.write("old.VDV", vdv_bytes("Old Plotter X", 0, 0, {})).string();
  const std::string long_vdv = dir.write("long.vdv", std::string(20000, 'N')).string();
  const std::string not_vdv = dir.write("other.Vdv", vdv_bytes("Old", 0, 0, {})).string();
  const std::string missing = dir.str() + "missing.drv";
  // path, size, result, name
  const std::tuple<std::string, int32_t, int32_t, const char*> rows[] = {{drv, 15, 13, "Sample Cutter"},
                                                                         {drv, 14, -14, "#"},
                                                                         {drv, 0, -14, "#"},
                                                                         {drv, -5, -14, "#"},
                                                                         {vdv, 15, 13, "Old Plotter X"},
                                                                         {vdv, 14, -14, "#"},
                                                                         {vdv, 100, 13, "Old Plotter X"},
                                                                         {long_vdv, 16, -10210, "#"},
                                                                         {not_vdv, 16, 0, ""},
                                                                         {missing, 1, -1, "#"}};
  for (const auto& [path, size, result, name] : rows) {
    char buffer[32];
    std::memset(buffer, '#', sizeof(buffer));
    buffer[1] = '\0';
    EXPECT_EQ(GetDrvName(path.c_str(), buffer, size), result) << path << " size " << size;
    EXPECT_STREQ(buffer, name) << path << " size " << size;  // nothing copied into a short buffer
  }
  EXPECT_EQ(GetDrvName(drv.c_str(), nullptr, 100), -14);
  EXPECT_TRUE(host.boxes.empty());
}

TEST(FixedLayoutFlags, ReadFromTheFileHead) {
  const std::vector<VdvTool> six = {{"Pen", 0x8000, "Pen"},       {"Cut", 0x0104, "contour"},
                                    {"Drag", 0, "TRANSFER"},      {"Kiss", 0x0001, "Contour"},
                                    {"Crease", 0x00F0, "Crease"}, {"Last", 0x1234, "transfers"}};
  const std::vector<VdvTool> seven = {{"F", 1, ""}, {"F", 1, ""}, {"F", 1, ""},      {"F", 1, ""},
                                      {"F", 1, ""}, {"F", 1, ""}, {"Seventh", 2, ""}};
  const std::tuple<const char*, const std::vector<VdvTool>*, std::size_t, uint32_t> rows[] = {
      // the driver: byte 350 as it is, the low five bits of byte 352 at 0x100
      {nullptr, &six, 10209, 0x03A5},
      {"", &six, 10209, 0x03A5},
      {nullptr, &seven, 351, 0x00A5},
      // tools: the type adds 0x4 for Transfer and 0x8 for Contour
      {"Pen", &six, 10209, 0x8000},
      {"Cut", &six, 10209, 0x010C},
      {"Drag", &six, 10209, 0x0004},
      {"Last", &six, 10209, 0x1234},
      // names are case-sensitive; a cut-off file has fewer slots; only six slots are searched
      {"cut", &six, 10209, 0},
      {"Last", &six, 358 + 1532 * 5 + 3, 0},
      {"Seventh", &seven, 20000, 0}};
  TempDir dir;
  for (const auto& [tool, tools, size, expected] : rows) {
    const std::string path = dir.write("cutter.vdv", vdv_bytes("Cutter", 0xA5, 0xE3, *tools, size)).string();
    uint32_t flags = 0xDEADBEEF;
    EXPECT_EQ(GetFlags(path.c_str(), tool, &flags), 1);
    EXPECT_EQ(flags, expected) << (tool ? tool : "(driver)") << " " << size;
  }
}

TEST_F(DriverQueries, DocumentFlagsComeFromTheFlagVariables) {
  const std::string path = flag_driver();
  const uint32_t set = 0x1u | 0x80u | 0x100u | 0x1000u | 0x2000u;
  uint32_t flags = 0xFFFFFFFF;
  EXPECT_EQ(GetFlags(path.c_str(), nullptr, &flags), 1);
  EXPECT_EQ(flags, set);
  VMV6DRV drv = record_for(path);
  ASSERT_EQ(InitDrv(&drv), 1);
  flags = 0x40000;
  EXPECT_EQ(GetDrvFlags(&drv, nullptr, &flags), 1);
  EXPECT_EQ(flags, 0x40000u | set) << "GetDrvFlags adds to the mask";
  EXPECT_EQ(FreeDrv(&drv), 1);
  EXPECT_EQ(GetDrvFlags(&drv, nullptr, &flags), 0);
  EXPECT_TRUE(host.boxes.empty());
  // Unopenable files give 0, and the missing driver is shown.
  EXPECT_EQ(GetFlags((dir.str() + "missing.drv").c_str(), nullptr, &flags), 0);
  EXPECT_EQ(flags, 0u);
  flags = 7;
  EXPECT_EQ(GetFlags((dir.str() + "missing.vdv").c_str(), nullptr, &flags), 0);
  EXPECT_EQ(flags, 0u);
  flags = 7;
  EXPECT_EQ(GetFlags("", nullptr, &flags), -2);
  EXPECT_EQ(flags, 7u);
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].caption, "Kerfline error:");
}

TEST(DocumentToolMask, TypeBitsAreAddedWhenTheTypeIsNot) {
  const std::tuple<const char*, uint32_t, uint32_t> rows[] = {
      // type, bits, mask
      {"Contour", 0x1, 0x5},  {"contour", 0x0, 0x4}, {"Transfer", 0x100, 0x108},
      {"TRANSFER", 0x0, 0x8}, {"Pen", 0x0, 0xC},     {"", 0x4, 0xC}};
  for (const auto& [type, bits, mask] : rows) EXPECT_EQ(frame::tool_mask({bits, type}), mask) << type;
}

TEST(FlagValues, NonzeroNumbersAndYesWordsCount) {
  const std::pair<const char*, bool> rows[] = {
      {"1", true},    {"-1", true},  {"0.001", true},  {" 2", true},   {"1e999", true}, {"TRUE", true},
      {"yes ", true}, {"0", false},  {"0.0", false},   {"-0", false},  {"", false},     {"  ", false},
      {"no", false},  {"x1", false}, {"false", false}, {"0abc", false}};
  for (const auto& [text, expected] : rows)
    EXPECT_EQ(frame::value_is_set(text), expected) << '"' << text << '"';
}

TEST_F(DriverQueries, DriverClassIsTheClassItemsValue) {
  const std::string path = flag_driver();
  VMV6DRV drv = record_for(path);
  ASSERT_EQ(InitDrv(&drv), 1);
  char buffer[16];
  std::memset(buffer, '#', sizeof(buffer));
  EXPECT_EQ(GetDrvClass2(&drv, buffer, 7), 7);
  EXPECT_EQ(buffer[0], '#') << "copied only when the length is below the size";
  EXPECT_EQ(GetDrvClass2(&drv, buffer, 8), 7);
  EXPECT_STREQ(buffer, "Plotter");
  EXPECT_EQ(GetDrvClass2(&drv, nullptr, 8), 7);
  EXPECT_EQ(FreeDrv(&drv), 1);
  EXPECT_EQ(GetDrvClass2(&drv, buffer, 8), -2);
  const std::string classless = write_driver(
      dir, "classless.drv", [](drv::CVm6Drv& doc) { doc.Root().AddChild(named("%Speed%", "1")); });
  // path, result, buffer after; an unopenable driver is shown and gives 1
  const std::tuple<std::string, int32_t, const char*> rows[] = {
      {path, 7, "Plotter"}, {classless, 0, "Plotter"}, {dir.str() + "missing.drv", 1, "Plotter"}};
  for (const auto& [file, result, after] : rows) {
    EXPECT_EQ(GetDrvClass(file.c_str(), buffer, sizeof(buffer)), result) << file;
    EXPECT_STREQ(buffer, after);
  }
  EXPECT_EQ(host.boxes.size(), 1u);
}

TEST(VariableNames, NamesFromTheDictionary) {
  const std::tuple<uint32_t, int32_t, const char*> rows[] = {
      {9352, 1, "%Flags_1%"},   {5000, 0, "%IToolDepth%"}, {5000, 1, "%ToolDepth%"},
      {2056, 1, "%nitFlag_1%"}, {5000, 2, "%IToolDepth%"}, {0xFFFFFFF0u, 1, ""}};
  for (const auto& [id, mode, expected] : rows) {
    char buffer[64];
    std::memset(buffer, '#', sizeof(buffer));
    EXPECT_EQ(GetVarName(id, mode, buffer), 1);
    EXPECT_STREQ(buffer, expected) << id << " mode " << mode;
    VARDESC desc{};
    ASSERT_EQ(GetVarDesc(id, mode, &desc), 1);
    EXPECT_STREQ(desc.pszName, expected);
    EXPECT_EQ(FreeVarDesc(&desc), 1);
    EXPECT_EQ(desc.pszName, nullptr);
  }
}

TEST(VariableNames, DescriptionIsTheNextTextAndNeverChanged) {
  drv::install_text_services({[](int table, uint32_t id) -> std::optional<std::string> {
                                if (table == 1 && id == 5001) return std::string("Depth in %I units");
                                return std::nullopt;
                              },
                              {}});
  VARDESC desc{};
  const int32_t result = GetVarDesc(5000, 1, &desc);
  drv::install_text_services({});
  ASSERT_EQ(result, 1);
  EXPECT_STREQ(desc.pszName, "%ToolDepth%");
  EXPECT_STREQ(desc.pszDescription, "Depth in %I units");
  // The texts are the C run-time's: a host may release them with free().
  std::free(desc.pszName);
  std::free(desc.pszDescription);
}

TEST(VariableNames, TheMissMarkerIsNeverCopied) {
  HostRecorder host;
  char buffer[32] = "previous";
  EXPECT_EQ(frame::copy_variable_name(frame::kDlxNotFound, buffer), 0);
  host.ctrl_down = true;
  EXPECT_EQ(frame::copy_variable_name(frame::kDlxNotFound, buffer), 0);
  EXPECT_TRUE(host.boxes.empty()) << "Ctrl alone shows nothing";
  host.shift_down = true;
  EXPECT_EQ(frame::copy_variable_name(frame::kDlxNotFound, buffer), 0);
  EXPECT_STREQ(buffer, "previous");
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].caption, "Kerfline:");
  EXPECT_EQ(host.boxes[0].text, "GetVarName: DLX_NOT_FOUNDprevious");
  EXPECT_EQ(frame::copy_variable_name(frame::kDlxNotFound, nullptr), 1);
}

TEST_F(DriverQueries, ReplaceStringsFollowsTheGroupsDirection) {
  // Root (names to values): a first child group %G% (names to values) with
  // %A%; %B%; a later group %H% (values to names, never descended into).
  const std::string path = write_driver(dir, "replace.drv", [](drv::CVm6Drv& doc) {
    auto h = kerfline::test::with(named<drv::CDrvItemList>("%H%", "aitch"), {named("%C%", "gamma")});
    h->ListParam0 = 1;
    kerfline::test::add_all(
        doc.Root(), {kerfline::test::with(named<drv::CDrvItemList>("%G%", "gee"), {named("%A%", "alpha")}),
                     named("%B%", "beta"), h, named("%E%", "")});
  });
  VMV6DRV drv = record_for(path);
  ASSERT_EQ(InitDrv(&drv), 1);
  int32_t count = -1;
  char* result = ReplaceStringsFromDriver(&drv, "%A%+%A% %B% %C% %G% %H% %E%. gamma beta", &count);
  EXPECT_STREQ(result, "alpha+alpha beta %C% gee aitch . gamma beta");
  EXPECT_EQ(count, 6);
  std::free(result);

  // Turning the root round: values become names, and empty values match nothing.
  kerfline::frame::document_of(&drv)->Root().ListParam0 = 1;
  result = ReplaceStringsFromDriver(&drv, "%A% alpha beta gee", nullptr);
  EXPECT_STREQ(result, "alpha alpha %B% %G%") << "the first group keeps its own direction";
  std::free(result);

  EXPECT_EQ(ReplaceStringsFromDriver(&drv, nullptr, &count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(FreeDrv(&drv), 1);
  count = -1;
  EXPECT_EQ(ReplaceStringsFromDriver(&drv, "x", &count), nullptr);
  EXPECT_EQ(count, 0);
}
