// Two processes adding devices to one suite at the same time, and the local
// ports found in a fake sysfs tree. The adders are this test binary again, in
// a role.
#include <algorithm>
#include <sstream>

#include "devconfig/suite_fixture.hpp"
#include "fixtures/self_spawn.hpp"
#include "fixtures/table_names.hpp"
#include "kerfline/kerfline.h"

namespace {

using kerfline::test::SuiteDir;

constexpr int kAdders = 2;
constexpr int kDevicesPerAdder = 12;

std::string device_name(int adder, int i) {
  return "Adder " + std::to_string(adder) + " cutter " + std::to_string(i);
}

int run_adder() {
  const int adder = kerfline::test::child_int("KERFLINE_DEVICE_ADDER");
  for (int i = 0; i < kDevicesPerAdder; ++i) {
    const CUTDEVICE d = kerfline::test::record(device_name(adder, i), "/dev/ttyUSB0", "/drv/x.vmd");
    if (WriteCutDevice(&d) != 1) return 1;
  }
  return 0;
}

[[maybe_unused]] const bool kChild = kerfline::test::run_role("adder", run_adder);

class Processes : public SuiteDir {};

TEST_F(Processes, TwoAddersLoseNoDevice) {
  std::vector<kerfline::platform::ChildProcess> children;
  for (int a = 0; a < kAdders; ++a) {
    // The children find the suite through the environment.
    auto child = kerfline::test::spawn_self(
        "adder", {{"KERFLINE_HOME", home()}, {"KERFLINE_DEVICE_ADDER", std::to_string(a)}});
    ASSERT_TRUE(child) << child.error().message;
    children.push_back(std::move(*child));
  }
  for (auto& child : children) EXPECT_EQ(kerfline::test::exit_code(child), 0);

  // Every device of both, with its port and driver path: none lost, none half written.
  std::vector<kerfline::test::Listed> expected;
  for (int a = 0; a < kAdders; ++a) {
    for (int i = 0; i < kDevicesPerAdder; ++i)
      expected.emplace_back(device_name(a, i), "/dev/ttyUSB0", "/drv/x.vmd");
  }
  auto listed = kerfline::test::list_all();
  std::sort(listed.begin(), listed.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(listed, expected);
}

#ifndef _WIN32
// Windows names its ports through QueryDosDevice: there is no tree to fake.
struct PortsRow {
  const char* files;     // below the fake /sys, "path=contents" each, separated by blanks
  const char* expected;  // joined with ','
};

const PortsRow kPortsRows[] = {
    {"", "(none)"},
    // Every 8250 slot shows up; only a known UART type makes it a port.
    {"class/tty/ttyS0/type=4\n class/tty/ttyS1/type=0\n class/tty/ttyS10/type=4\n class/tty/ttyS2/type=4\n "
     "class/tty/ttyS3/dev=4:67\n",
     "/dev/ttyS0,/dev/ttyS2,/dev/ttyS10"},
    {"class/tty/ttyUSB1/dev class/tty/ttyUSB0/dev class/tty/ttyACM0/dev class/tty/tty1/dev "
     "class/tty/console/dev "
     "class/tty/ttyUSBx/dev",
     "/dev/ttyUSB0,/dev/ttyUSB1,/dev/ttyACM0"},
    {"class/printer/lp0/dev class/usbmisc/lp1/dev class/usbmisc/hiddev0/dev class/tty/ttyS0/type=1",
     "/dev/ttyS0,/dev/lp0,/dev/usb/lp1"},
};

class PortsTable : public SuiteDir, public ::testing::WithParamInterface<PortsRow> {};

TEST_P(PortsTable, FoundThroughSysfs) {
  dir_.write("sys/.keep", "");
  std::istringstream files(GetParam().files);
  for (std::string entry; std::getline(files, entry, ' ');) {
    const std::size_t eq = std::min(entry.find('='), entry.size());
    dir_.write("sys/" + entry.substr(0, eq), entry.substr(std::min(eq + 1, entry.size())));
  }
  kerfline::platform::set_environment("KERFLINE_SYSFS_ROOT", file("sys"));
  std::unique_ptr<char, int32_t (*)(void*)> ports(GetLocaleDevices(','), QuickFree);
  kerfline::platform::unset_environment("KERFLINE_SYSFS_ROOT");
  EXPECT_STREQ(ports ? ports.get() : "(none)", GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Trees, PortsTable, ::testing::ValuesIn(kPortsRows), kerfline::test::RowIndex());
#endif

}  // namespace
