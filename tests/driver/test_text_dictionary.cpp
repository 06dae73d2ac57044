// The text dictionary: built-in table first, then the "cutterx.dlx" and
// "kerfline.dlx" string tables (each answer translated), with fake services.
#include "driver/text_dictionary.hpp"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using kerfline::driver::dictionary_description;
using kerfline::driver::dictionary_text;
using kerfline::driver::install_text_services;
using kerfline::driver::kerfline_dictionary_text;
using kerfline::driver::TextServices;

constexpr int kCutter = 0;
constexpr int kKerfline = 1;

struct Fakes {
  std::map<std::pair<int, std::uint32_t>, std::string> tables;
  std::map<std::string, std::string> translations;
  std::vector<std::string> translated;  // every text handed to the translation
  std::vector<std::pair<int, std::uint32_t>> asked;
};

// Installs services that answer from `fakes` (which must outlive the test).
void install(Fakes& fakes) {
  TextServices services;
  services.resource_text = [&fakes](int table, std::uint32_t id) -> std::optional<std::string> {
    fakes.asked.emplace_back(table, id);
    const auto it = fakes.tables.find({table, id});
    return it == fakes.tables.end() ? std::nullopt : std::optional<std::string>(it->second);
  };
  services.translate = [&fakes](std::string_view text) -> std::optional<std::string> {
    fakes.translated.emplace_back(text);
    const auto it = fakes.translations.find(std::string(text));
    return it == fakes.translations.end() ? std::nullopt : std::optional<std::string>(it->second);
  };
  install_text_services(std::move(services));
}

class TextDictionary : public ::testing::Test {
 protected:
  void SetUp() override { install(fakes_); }
  void TearDown() override { install_text_services({}); }
  Fakes fakes_;
};

const std::string kMarker = "Dlx not found!";

struct LookupCase {
  const char* what;
  std::uint32_t id;
  std::optional<std::string> cutter, kerfline;  // the tables' texts for `id`
  std::optional<std::pair<std::string, std::string>> translation;
  std::string expected;
};

using Tr = std::pair<std::string, std::string>;

// clang-format off
const LookupCase kLookups[] = {
    {"built-in row wins over both tables", 9016, "cutter", "kerfline", {}, "%DriverName%"},
    {"built-in text is not translated", 9016, {}, {}, Tr{"%DriverName%", "%Treibername%"},
     "%DriverName%"},
    {"a built-in row with the empty text answers", 9003, "cutter", {}, {}, ""},
    {"number without a built-in row goes to cutterx", 9019, "cutter", {}, {}, "cutter"},
    {"cutterx before kerfline", 40000, "cutter", "kerfline", {}, "cutter"},
    {"kerfline when cutterx has nothing", 40000, {}, "kerfline", {}, "kerfline"},
    {"unknown everywhere", 40000, {}, {}, {}, ""},
    {"cutterx answer translated", 40000, "Speed", {}, Tr{"Speed", "Geschwindigkeit"},
     "Geschwindigkeit"},
    {"kerfline answer translated", 40000, {}, "Pressure", Tr{"Pressure", "Druck"}, "Druck"},
    {"translation to the empty text is an answer", 40000, "Speed", {}, Tr{"Speed", ""}, ""},
    {"marker from cutterx is a miss", 40000, kMarker, "kerfline", {}, "kerfline"},
    {"marker from both tables gives the empty text", 40000, kMarker, kMarker, {}, ""},
    {"translation to the marker is a miss", 40000, "Speed", "kerfline", Tr{"Speed", kMarker},
     "kerfline"},
    {"translated marker in the last table gives the empty text", 40000, {}, "Speed",
     Tr{"Speed", kMarker}, ""},
    {"empty string-table entry is a miss", 40000, "", "kerfline", {}, "kerfline"},
    {"string-table text ends at a zero byte", 40000, std::string("Speed\0junk", 10), {}, {},
     "Speed"},
    {"text longer than the marker is kept", 40000, kMarker + " ", {}, {}, kMarker + " "},
    {"directory number", 109, "cutter", {}, {}, "22"},
    {"string-table text is cut to 511 bytes", 40000, std::string(600, 'x'), {}, {},
     std::string(511, 'x')},
    {"511 bytes reach the translation", 40000, std::string(600, 'x'), {},
     Tr{std::string(511, 'x'), "cut"}, "cut"},
    {"511 bytes are kept whole", 40000, {}, std::string(511, 'y'), {}, std::string(511, 'y')},
    {"a translation is not cut", 40000, "Speed", {}, Tr{"Speed", std::string(1000, 'g')},
     std::string(1000, 'g')},
    {"terminator number is not a text", 0xFFFFFFFFu, "cutter", {}, {}, "cutter"}};
// clang-format on

TEST(TextDictionaryLookup, FirstSourceThatKnowsTheNumberAnswers) {
  for (const LookupCase& c : kLookups) {
    Fakes fakes;
    if (c.cutter) fakes.tables[{kCutter, c.id}] = *c.cutter;
    if (c.kerfline) fakes.tables[{kKerfline, c.id}] = *c.kerfline;
    if (c.translation) fakes.translations.insert(*c.translation);
    install(fakes);
    EXPECT_EQ(dictionary_text(c.id), c.expected) << c.what;
  }
  install_text_services({});
}

TEST_F(TextDictionary, AsksCutterxThenKerflineAndStopsAtTheFirstAnswer) {
  fakes_.tables[{kCutter, 40001}] = "first";
  fakes_.tables[{kKerfline, 40002}] = "second";
  EXPECT_EQ(dictionary_text(40001), "first");
  EXPECT_EQ(dictionary_text(40002), "second");
  EXPECT_EQ(dictionary_text(9016), "%DriverName%");
  const std::vector<std::pair<int, std::uint32_t>> asked = {
      {kCutter, 40001}, {kCutter, 40002}, {kKerfline, 40002}};
  EXPECT_EQ(fakes_.asked, asked);
  EXPECT_EQ(fakes_.translated, (std::vector<std::string>{"first", "second"}));
}

TEST_F(TextDictionary, DescriptionIsTheNextNumber) {
  fakes_.tables[{kCutter, 9017}] = "Name of the driver";
  fakes_.tables[{kKerfline, 0}] = "zero";
  const std::pair<std::uint32_t, const char*> cases[] = {
      {9016, "Name of the driver"},  // name from the table, description from cutterx
      {9014, "-1"},                  // a built-in row can be a description
      {108, "22"},
      {0xFFFFFFFFu, "zero"},  // wraps to number 0
      {40000, ""}};
  for (const auto& [id, text] : cases) EXPECT_EQ(dictionary_description(id), text) << id;
}

TEST_F(TextDictionary, IntegerErrorCaptionComesFromKerflineOnly) {
  const std::uint32_t id = kerfline::driver::kIntegerErrorCaptionId;
  fakes_.tables[{kCutter, id}] = "cutter caption";
  EXPECT_EQ(kerfline_dictionary_text(id), "");
  fakes_.tables[{kKerfline, id}] = "Input error: %s";
  EXPECT_EQ(kerfline_dictionary_text(id), "Input error: %s");
  fakes_.translations["Input error: %s"] = "Eingabefehler: %s";
  EXPECT_EQ(kerfline_dictionary_text(id), "Eingabefehler: %s");
  for (const auto& [table, asked_id] : fakes_.asked) EXPECT_EQ(table, kKerfline) << asked_id;

  fakes_.tables[{kKerfline, id}] = kMarker;
  EXPECT_EQ(kerfline_dictionary_text(id), "");
  // The table alone is asked, even for a number the built-in table knows.
  EXPECT_EQ(kerfline_dictionary_text(9016), "");
}

TEST(TextDictionaryServices, EachServiceMayBeMissing) {
  install_text_services({});
  EXPECT_EQ(dictionary_text(9016), "%DriverName%");
  EXPECT_EQ(dictionary_text(40000), "");
  EXPECT_EQ(dictionary_description(9016), "");
  EXPECT_EQ(kerfline_dictionary_text(35589), "");

  TextServices tables_only;  // the tables' own texts
  tables_only.resource_text = [](int table, std::uint32_t) -> std::optional<std::string> {
    return table == kKerfline ? std::optional<std::string>("kerfline") : std::nullopt;
  };
  install_text_services(std::move(tables_only));
  EXPECT_EQ(dictionary_text(40000), "kerfline");
  EXPECT_EQ(kerfline_dictionary_text(35589), "kerfline");

  bool asked = false;  // no tables: the translation is never asked
  TextServices translation_only;
  translation_only.translate = [&asked](std::string_view) -> std::optional<std::string> {
    asked = true;
    return "translated";
  };
  install_text_services(std::move(translation_only));
  EXPECT_EQ(dictionary_text(40000), "");
  EXPECT_EQ(dictionary_text(9016), "%DriverName%");
  EXPECT_FALSE(asked);
  install_text_services({});
}

}  // namespace
