#include <gtest/gtest.h>

#include "support/config_set.hpp"

namespace ks = kerfline::support;

TEST(ConfigSetExtract, InnerAndSpanWithTheSameTagOnBothSides) {
  std::size_t end = 99;
  EXPECT_EQ(ks::extract_inner("x<Name>abc<Name>y", 0, "<Name>", "<Name>", end), "abc");
  EXPECT_EQ(end, 16U);
  EXPECT_EQ(ks::extract_span("x<Name>abc<Name>y", 0, "<Name>", "<Name>", end), "<Name>abc<Name>");
  EXPECT_EQ(end, 16U);

  end = 7;
  EXPECT_EQ(ks::extract_inner("<Name>abc", 0, "<Name>", "<Name>", end), "");  // no closing tag
  EXPECT_EQ(end, 7U);
  EXPECT_EQ(ks::extract_inner("abc", 0, "<Name>", "<Name>", end), "");
  EXPECT_EQ(end, 7U);
  EXPECT_EQ(ks::extract_inner("<A>1<A><A>2<A>", 7, "<A>", "<A>", end), "2");
  EXPECT_EQ(ks::extract_inner("<A>1<A>", 50, "<A>", "<A>", end), "");  // start past the end
}

constexpr const char* kSample =
    "<CfgMan><Count>1<Count><Cfg><Name>Test<Name><Desc>Beschr.<Desc><Flags>1234<Flags><Vars>2<Vars>"
    "<Var><VName>VName1<VName><Val>Val1<Val><VFlags>111<VFlags><Var>"
    "<Var><VName>VName2<VName><Val>Val2<Val><VFlags>2222<VFlags><Var><Cfg><CfgMan>";

TEST(ConfigSet, SampleReadsAndWritesBackWithLineBreaks) {
  ks::CCfgMan man;
  ASSERT_TRUE(man.Read(kSample));
  ASSERT_EQ(man.configs.size(), 1U);
  const ks::CCfg& cfg = *man.configs[0];
  EXPECT_EQ(cfg.Name, "Test");
  EXPECT_EQ(cfg.Desc, "Beschr.");
  EXPECT_EQ(cfg.Flags, 1234);
  ASSERT_EQ(cfg.Vars.size(), 2U);
  EXPECT_EQ(cfg.Vars[1]->VName, "VName2");
  EXPECT_EQ(cfg.Vars[1]->Val, "Val2");
  EXPECT_EQ(cfg.Vars[1]->VFlags, 2222);

  const std::string expected =
      "<CfgMan><Count>1<Count><Cfg><Name>Test<Name><Desc>Beschr.<Desc><Flags>1234<Flags><Vars>2<Vars>"
      "<Var><VName>VName1<VName><Val>Val1<Val><VFlags>111<VFlags><Var>\r\n"
      "<Var><VName>VName2<VName><Val>Val2<Val><VFlags>2222<VFlags><Var>\r\n"
      "<Cfg>\r\n<CfgMan>\r\n";
  EXPECT_EQ(man.Write(), expected);
  EXPECT_EQ(ks::config_set_self_test(), expected);
}

TEST(ConfigSet, SeveralConfigurationsRoundTrip) {
  ks::CCfgMan man;
  for (int i = 0; i < 3; ++i) {
    auto cfg = std::make_unique<ks::CCfg>();
    cfg->Name = "Cfg" + std::to_string(i);
    cfg->Flags = -i;
    for (int v = 0; v < i; ++v) {
      auto var = std::make_unique<ks::CCfgVar>();
      var->VName = "%Speed%";
      var->Val = std::to_string(v * 10);
      var->VFlags = v;
      cfg->Vars.push_back(std::move(var));
    }
    man.configs.push_back(std::move(cfg));
  }
  const std::string text = man.Write();
  ks::CCfgMan back;
  ASSERT_TRUE(back.Read(text));
  EXPECT_EQ(back.Write(), text);
  ASSERT_EQ(back.configs.size(), 3U);
  EXPECT_EQ(back.configs[2]->Flags, -2);
  EXPECT_EQ(back.configs[2]->Vars[1]->Val, "10");

  // Reading appends; Clear empties.
  ASSERT_TRUE(back.Read(text));
  EXPECT_EQ(back.configs.size(), 6U);
  back.Clear();
  EXPECT_TRUE(back.configs.empty());
}

TEST(ConfigSet, NullEntriesAreCountedButNotWritten) {
  ks::CCfgMan man;
  auto cfg = std::make_unique<ks::CCfg>();
  cfg->Name = "A";
  cfg->Vars.push_back(nullptr);
  cfg->Vars.push_back(std::make_unique<ks::CCfgVar>());
  man.configs.push_back(nullptr);
  man.configs.push_back(std::move(cfg));
  EXPECT_EQ(man.Write(),
            "<CfgMan><Count>2<Count><Cfg><Name>A<Name><Desc><Desc><Flags>0<Flags><Vars>2<Vars>"
            "<Var><VName><VName><Val><Val><VFlags>0<VFlags><Var>\r\n<Cfg>\r\n<CfgMan>\r\n");
}

struct ReadCase {
  const char* name;
  const char* text;
  bool ok;
  std::size_t configs;  // appended, also after a failure
  const char* first_desc;
  std::int32_t first_flags;
  std::size_t first_vars;
};

class ConfigSetRead : public ::testing::TestWithParam<ReadCase> {};

TEST_P(ConfigSetRead, StopsAtTheFirstMissingMandatoryPair) {
  const ReadCase& c = GetParam();
  ks::CCfgMan man;
  EXPECT_EQ(man.Read(c.text), c.ok);
  ASSERT_EQ(man.configs.size(), c.configs);
  if (c.configs > 0) {
    EXPECT_EQ(man.configs[0]->Desc, c.first_desc);
    EXPECT_EQ(man.configs[0]->Flags, c.first_flags);
    EXPECT_EQ(man.configs[0]->Vars.size(), c.first_vars);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Table, ConfigSetRead,
    ::testing::Values(
        ReadCase{"count_zero", "<CfgMan><Count>0<Count><CfgMan>", true, 0, "", 0, 0},
        ReadCase{"count_without_digits", "<CfgMan><Count>x<Count><Cfg><Cfg><CfgMan>", true, 0, "", 0, 0},
        ReadCase{"no_cfgman", "<Count>1<Count>", false, 0, "", 0, 0},
        ReadCase{"empty_cfgman", "<CfgMan><CfgMan>", false, 0, "", 0, 0},
        ReadCase{"no_count", "<CfgMan><Cfg><Cfg><CfgMan>", false, 0, "", 0, 0},
        ReadCase{"fewer_configs_than_counted",
                 "<CfgMan><Count>2<Count><Cfg><Name>A<Name><Flags>5<Flags><Vars>0<Vars><Cfg><CfgMan>", false,
                 1, "", 5, 0},
        // A missing <Desc> does not fail; <Flags> is searched from the end of the name.
        ReadCase{"missing_desc",
                 "<CfgMan><Count>1<Count><Cfg><Name>A<Name><Flags>7<Flags><Vars>0<Vars><Cfg><CfgMan>", true,
                 1, "", 7, 0},
        // A configuration whose parse fails is still appended; the read goes on.
        ReadCase{"config_without_flags",
                 "<CfgMan><Count>1<Count><Cfg><Name>A<Name><Desc>d<Desc><Vars>0<Vars><Cfg><CfgMan>", true, 1,
                 "d", 0, 0},
        // Variables read before a failing one stay in the configuration.
        ReadCase{"second_var_without_flags",
                 "<CfgMan><Count>1<Count><Cfg><Name>A<Name><Flags>1<Flags><Vars>3<Vars>"
                 "<Var><VName>a<VName><Val>1<Val><VFlags>0<VFlags><Var>"
                 "<Var><VName>b<VName><Val>2<Val><Var><Cfg><CfgMan>",
                 true, 1, "", 1, 1},
        ReadCase{"huge_count_ends_at_the_text", "<CfgMan><Count>2000000000<Count><Cfg><Cfg><CfgMan>", false,
                 1, "", 0, 0},
        ReadCase{"signed_and_padded_flags",
                 "<CfgMan><Count> 1<Count><Cfg><Flags> -12x<Flags><Vars>0<Vars><Cfg><CfgMan>", true, 1, "",
                 -12, 0}),
    [](const auto& info) { return std::string(info.param.name); });
