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

// The written form: a line break after every variable and closing tag.
constexpr const char* kSample =
    "<CfgMan><Count>1<Count><Cfg><Name>Test<Name><Desc>Beschr.<Desc><Flags>1234<Flags><Vars>2<Vars>"
    "<Var><VName>VName1<VName><Val>Val1<Val><VFlags>111<VFlags><Var>\r\n"
    "<Var><VName>VName2<VName><Val>Val2<Val><VFlags>2222<VFlags><Var>\r\n"
    "<Cfg>\r\n<CfgMan>\r\n";

std::string summary(const ks::CCfg& cfg) {
  std::string out = cfg.Name + "|" + cfg.Desc + "|" + std::to_string(cfg.Flags);
  for (const auto& var : cfg.Vars)
    out += "|" + var->VName + "=" + var->Val + "/" + std::to_string(var->VFlags);
  return out;
}

TEST(ConfigSet, SampleReadsAndWritesBack) {
  ks::CCfgMan man;
  ASSERT_TRUE(man.Read(kSample));
  ASSERT_EQ(man.configs.size(), 1U);
  EXPECT_EQ(summary(*man.configs[0]), "Test|Beschr.|1234|VName1=Val1/111|VName2=Val2/2222");
  EXPECT_EQ(man.Write(), kSample);
  EXPECT_EQ(ks::config_set_self_test(), kSample);
}

TEST(ConfigSet, SeveralConfigurationsRoundTrip) {
  ks::CCfgMan man;
  for (int i = 0; i < 3; ++i) {
    man.configs.push_back(std::make_unique<ks::CCfg>());
    man.configs.back()->Name = "Cfg" + std::to_string(i);
    man.configs.back()->Flags = -i;
    for (int v = 0; v < i; ++v) {
      man.configs.back()->Vars.push_back(
          std::make_unique<ks::CCfgVar>(ks::CCfgVar{"%Speed%", std::to_string(v * 10), v}));
    }
  }
  const std::string text = man.Write();
  ks::CCfgMan back;
  ASSERT_TRUE(back.Read(text));
  EXPECT_EQ(back.Write(), text);
  ASSERT_EQ(back.configs.size(), 3U);
  EXPECT_EQ(summary(*back.configs[2]), "Cfg2||-2|%Speed%=0/0|%Speed%=10/1");
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

// Read's result, how many configurations it appended (also after a
// failure) and the first of them.
TEST(ConfigSet, ReadStopsAtTheFirstMissingMandatoryPair) {
  const std::pair<const char*, const char*> rows[] = {
      {"<CfgMan><Count>0<Count><CfgMan>", "ok 0"},
      {"<CfgMan><Count>x<Count><Cfg><Cfg><CfgMan>", "ok 0"},
      {"<CfgMan><CfgMan>", "failed 0"},
      {"<CfgMan><Cfg><Cfg><CfgMan>", "failed 0"},
      {"<CfgMan><Count>2<Count><Cfg><Name>A<Name><Flags>5<Flags><Vars>0<Vars><Cfg><CfgMan>", "failed 1 A||5"},
      // A missing <Desc> does not fail; <Flags> is searched from the end of the name.
      {"<CfgMan><Count>1<Count><Cfg><Name>A<Name><Flags>7<Flags><Vars>0<Vars><Cfg><CfgMan>", "ok 1 A||7"},
      // A configuration whose parse fails is still appended; the read goes on.
      {"<CfgMan><Count>1<Count><Cfg><Name>A<Name><Desc>d<Desc><Vars>0<Vars><Cfg><CfgMan>", "ok 1 A|d|0"},
      // Variables read before a failing one stay in the configuration.
      {"<CfgMan><Count>1<Count><Cfg><Name>A<Name><Flags>1<Flags><Vars>3<Vars>"
       "<Var><VName>a<VName><Val>1<Val><VFlags>0<VFlags><Var><Var><VName>b<VName><Val>2<Val><Var><Cfg><"
       "CfgMan>",
       "ok 1 A||1|a=1/0"},
      {"<CfgMan><Count>2000000000<Count><Cfg><Cfg><CfgMan>", "failed 1 ||0"},
      {"<CfgMan><Count> 1<Count><Cfg><Flags> -12x<Flags><Vars>0<Vars><Cfg><CfgMan>", "ok 1 ||-12"}};
  for (const auto& [text, expected] : rows) {
    ks::CCfgMan man;
    std::string got = man.Read(text) ? "ok " : "failed ";
    got += std::to_string(man.configs.size());
    if (!man.configs.empty()) got += " " + summary(*man.configs[0]);
    EXPECT_EQ(got, expected) << text;
  }
}
