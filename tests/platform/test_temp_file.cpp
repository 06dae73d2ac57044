#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "fixtures/temp_dir.hpp"
#include "platform/temp_file.hpp"

namespace kp = kerfline::platform;

TEST(CreateUniqueFile, EveryCallCreatesAnotherEmptyFileInAnExistingDirectory) {
  kerfline::test::TempDir dir;
  std::set<std::string> names;
  for (int i = 0; i < 20; ++i) {
    auto made = kp::create_unique_file(dir.str(), "IN_", ".plt");
    ASSERT_TRUE(made.ok()) << made.error().message;
    const std::filesystem::path path(made.value());
    EXPECT_EQ(path.parent_path(), dir.path());
    EXPECT_EQ(path.filename().string().rfind("IN_", 0), 0u);
    EXPECT_EQ(path.extension(), ".plt");
    EXPECT_EQ(std::filesystem::file_size(path), 0u);
    names.insert(made.value());
  }
  EXPECT_EQ(names.size(), 20u);
  auto missing = kp::create_unique_file((dir.path() / "absent").string(), "IN_", ".plt");
  ASSERT_FALSE(missing.ok());
  EXPECT_NE(missing.error().message.find("absent"), std::string::npos);
}
