#include <gtest/gtest.h>

#include "fixtures/table_names.hpp"
#include "platform/environment.hpp"

#include <tuple>

#include "fixtures/host_recorder.hpp"
#include "platform/host_hooks.hpp"

namespace host = kerfline::platform::host;
using kerfline::test::HostRecorder;

struct BoxDefaultCase {
  std::uint32_t type;
  int answer;
};

class DefaultMessageBox : public ::testing::TestWithParam<BoxDefaultCase> {};

TEST_P(DefaultMessageBox, WritesToStderrAndGivesTheSafeAnswer) {
  host::install(nullptr);
  ::testing::internal::CaptureStderr();
  const int answer = host::message_box("Can not open driver", "Kerfline error:", GetParam().type);
  const std::string printed = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(answer, GetParam().answer);
  EXPECT_EQ(printed, "Kerfline error: Can not open driver\n");
}

INSTANTIATE_TEST_SUITE_P(Table, DefaultMessageBox,
                         ::testing::Values(BoxDefaultCase{KERFLINE_MB_OK, KERFLINE_IDOK},
                                           BoxDefaultCase{KERFLINE_MB_OKCANCEL, KERFLINE_IDOK},
                                           BoxDefaultCase{KERFLINE_MB_YESNO, KERFLINE_IDNO},
                                           BoxDefaultCase{KERFLINE_MB_YESNO | KERFLINE_MB_ICONQUESTION,
                                                          KERFLINE_IDNO},
                                           BoxDefaultCase{KERFLINE_MB_YESNOCANCEL, KERFLINE_IDNO}),
                         kerfline::test::RowIndex());

TEST(DefaultHooks, DiagnosticEnvironmentHoldsCtrlAndShift) {
  host::install(nullptr);
  kerfline::platform::unset_environment("KERFLINE_DIAG");
  EXPECT_FALSE(host::is_key_down(KERFLINE_VK_CONTROL));
  EXPECT_FALSE(host::diagnostics_requested());
  EXPECT_EQ(host::broadcast("Umsg_StopPlotman", 0, 0, true), -1) << "nobody answers";

  kerfline::platform::set_environment("KERFLINE_DIAG", "1");
  EXPECT_TRUE(host::is_key_down(KERFLINE_VK_CONTROL));
  EXPECT_TRUE(host::is_key_down(KERFLINE_VK_SHIFT));
  EXPECT_FALSE(host::is_key_down('A'));
  EXPECT_TRUE(host::diagnostics_requested());

  kerfline::platform::set_environment("KERFLINE_DIAG", "yes");
  EXPECT_FALSE(host::diagnostics_requested());
  kerfline::platform::unset_environment("KERFLINE_DIAG");
}

TEST(InstalledHooks, ReceiveEveryCallWithItsArguments) {
  HostRecorder rec;
  rec.queue_answer(KERFLINE_IDYES);
  rec.ctrl_down = true;
  rec.broadcast_answer = 42;

  EXPECT_EQ(host::message_box("Retry?", "Kerfline", KERFLINE_MB_YESNO), KERFLINE_IDYES);
  EXPECT_EQ(host::message_box("Again?", "Kerfline", KERFLINE_MB_YESNO), KERFLINE_IDOK);
  ASSERT_EQ(rec.boxes.size(), 2U);
  const auto& box = rec.boxes[0];
  EXPECT_EQ(std::tie(box.text, box.caption, box.type), std::tuple("Retry?", "Kerfline", KERFLINE_MB_YESNO));

  EXPECT_TRUE(host::is_key_down(KERFLINE_VK_CONTROL));
  EXPECT_FALSE(host::diagnostics_requested());  // Shift is up
  rec.shift_down = true;
  EXPECT_TRUE(host::diagnostics_requested());

  host::pump_messages();
  host::pump_messages();
  EXPECT_EQ(rec.pumps, 2);

  EXPECT_EQ(host::broadcast("Umsg_StartDeviceDlg", 3, -4, false), 42);
  ASSERT_EQ(rec.broadcasts.size(), 1U);
  const auto& b = rec.broadcasts[0];
  EXPECT_EQ(std::tie(b.message, b.w_param, b.l_param, b.wait),
            std::tuple("Umsg_StartDeviceDlg", 3U, -4, false));

  { host::WaitCursor busy; }
  EXPECT_EQ(rec.cursor_changes, (std::vector<int>{1, 0}));
}

TEST(InstalledHooks, NullMembersKeepTheDefaults) {
  KERFLINE_HOST_HOOKS hooks{};
  hooks.cbSize = sizeof(hooks);
  hooks.pfnIsKeyDown = [](void*, int) { return 1; };
  ASSERT_TRUE(host::install(&hooks));
  EXPECT_TRUE(host::is_key_down(KERFLINE_VK_SHIFT));
  EXPECT_EQ(host::broadcast("x", 0, 0, true), -1);  // default
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(host::message_box("t", "c", KERFLINE_MB_YESNO), KERFLINE_IDNO);
  ::testing::internal::GetCapturedStderr();
  host::install(nullptr);
  EXPECT_FALSE(host::is_key_down(KERFLINE_VK_SHIFT));
}

TEST(InstalledHooks, MembersBeyondCbSizeAreIgnoredAndTooSmallIsRefused) {
  KERFLINE_HOST_HOOKS hooks{};
  hooks.pfnMessageBox = [](void*, const char*, const char*, uint32_t) { return 99; };
  hooks.pfnIsKeyDown = [](void*, int) { return 1; };
  // An older host whose record ends after pfnMessageBox.
  hooks.cbSize = static_cast<uint32_t>(offsetof(KERFLINE_HOST_HOOKS, pfnIsKeyDown));
  ASSERT_TRUE(host::install(&hooks));
  EXPECT_EQ(host::message_box("t", "c", KERFLINE_MB_OK), 99);
  kerfline::platform::unset_environment("KERFLINE_DIAG");
  EXPECT_FALSE(host::is_key_down(KERFLINE_VK_SHIFT));

  hooks.cbSize = 4;
  EXPECT_FALSE(host::install(&hooks));
  EXPECT_EQ(host::message_box("t", "c", KERFLINE_MB_OK), 99);  // unchanged
  host::install(nullptr);
}
