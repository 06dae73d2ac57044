// The registry as the tables fill it: order, shadowing, and the read-only
// view that hosts get through GetEvalFunc, field by field.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kerfline/kerfline.h"
#include "script/builtins.hpp"
#include "script/process_state.hpp"

namespace kerfline::script {
namespace {

// The basic table, then the extended one: the order of registration.
std::vector<BuiltinEntry> table_entries() {
  std::vector<BuiltinEntry> all(basic_table().begin(), basic_table().end());
  all.insert(all.end(), extended_table().begin(), extended_table().end());
  return all;
}

bool shadowed_name(const std::string& name) { return name == "OR" || name == "AND" || name == "NOT"; }

TEST(BuiltinRegistry, ListsEveryEntryInTableOrderWithOnlyTheExtendedOrAndNotShadowed) {
  FunctionRegistry registry;
  register_builtin_tables(registry);
  const std::vector<BuiltinEntry> table = table_entries();
  ASSERT_EQ(registry.listing().size(), table.size());
  EXPECT_EQ(registry.entries().size(), table.size() - 3);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const FunctionRecord& r = *registry.listing()[i];
    EXPECT_EQ(r.name, table[i].name);
    EXPECT_NE(table[i].routine, nullptr) << r.name;
    EXPECT_EQ(r.routine, table[i].routine) << r.name;
    EXPECT_FALSE(r.user);
    EXPECT_EQ(registry.shadowed(r), shadowed_name(r.name)) << r.name;
  }
  EXPECT_EQ(registry.find(""), nullptr);
}

TEST(BuiltinRegistry, HostsReadTheProcessRegistry) {
  InitEval(0, 0, nullptr);
  AddEvalUserFunc("BrowserTwice", "a", "Join(a, a)");
  const std::vector<BuiltinEntry> table = table_entries();
  const int32_t count = GetEvalFuncCount();
  ASSERT_GT(count, static_cast<int32_t>(table.size()));
  EVALFUNC info{};
  bool saw_user = false;
  std::size_t next = 0;  // the built-ins come in table order, other functions may sit among them
  for (int32_t i = 0; i < count; ++i) {
    ASSERT_EQ(GetEvalFunc(i, &info), 1);
    const std::string name = info.pszName;
    if (name == "BrowserTwice") {
      saw_user = true;
      EXPECT_EQ(info.dwFlags, EVALFUNC_USER);
      EXPECT_STREQ(info.pszHelp, "<!--user func-->");
      EXPECT_STREQ(info.pszSecond, "Join(a, a)");
      EXPECT_EQ(info.nParams, 1);
    } else if (next < table.size() && name == table[next].name) {
      const BuiltinEntry& entry = table[next++];
      EXPECT_EQ(info.nParams, entry.parameter_count) << name;
      EXPECT_STREQ(info.pszParams, entry.parameters) << name;
      EXPECT_STREQ(info.pszSecond, entry.second_text) << name;
      EXPECT_STREQ(info.pszHelp, entry.help) << name;
      EXPECT_EQ(info.dwFlags, shadowed_name(name) ? EVALFUNC_SHADOWED : 0u) << name;
    }
  }
  EXPECT_TRUE(saw_user);
  EXPECT_EQ(next, table.size());
  EXPECT_EQ(GetEvalFunc(count, &info), 0);
  EXPECT_EQ(GetEvalFunc(-1, &info), 0);
  EXPECT_EQ(GetEvalFunc(0, nullptr), -2);
}

}  // namespace
}  // namespace kerfline::script
