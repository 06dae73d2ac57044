#include <gtest/gtest.h>

#include "kerfline/kerfline.h"
#include "platform/library_memory.hpp"

TEST(FixedEntries, KeepTheirDocumentedAnswers) {
  const struct {
    const char* name;
    int32_t (*fn)(void);
    int32_t expected;
  } cases[] = {
      {"AddObjects", AddObjects, 1},
      {"Log", Log, 1},
      {"ReadFromDevice", ReadFromDevice, 1},
      {"SerializeCutData", SerializeCutData, 1},
      {"DoDeviceSetupDlgTest", DoDeviceSetupDlgTest, 1},
      {"WriteDeviceFlags", WriteDeviceFlags, 1},
      {"IsRemoteAvailable", IsRemoteAvailable, 1},
      {"QuickRead", QuickRead, 0},
      {"ReadDeviceValsEx", ReadDeviceValsEx, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(c.fn(), c.expected) << c.name;
}

TEST(QuickFreeTest, ReleasesLibraryBlocksAndAcceptsNull) {
  EXPECT_EQ(QuickFree(kerfline::platform::library_strdup("Contour")), 1);  // ASan reports a leak otherwise
}
