#include "apps/qsscan/open_failure.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <set>
#include <string>

#include "modules/device_access/device_result.h"
#include "result_codes.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using orvalle_scan_api::QSRSLT_CMD_NOT_OPENED;

const CommandError kNotOpened(ExitCode::kNotReachable, "The device cannot be reached. (0x40210012)",
                              QSRSLT_CMD_NOT_OPENED);

struct Row {
  const char* name;
  std::uint32_t result, detail;
  ExitCode exit;
  const char* partOfSentence;
};

class OpenFailure : public testing::TestWithParam<Row> {};

// The numbers are those that the module itself uses.
constexpr Row kRows[] = {
    {"NameRefused", device_access::kNameRefused, 7, ExitCode::kUsage, "not understood"},
    {"NameNotFound", device_access::kNameNotFound, 2, ExitCode::kNotReachable, "host name is unknown"},
    {"Unreachable", device_access::kConnectFailed, EHOSTUNREACH, ExitCode::kNotReachable, "reached: No route to host."},
    {"NoSuchSocket", device_access::kConnectFailed, ENOENT, ExitCode::kNotReachable, "no such socket"},
    {"ForbiddenSocket", device_access::kConnectFailed, EACCES, ExitCode::kNotReachable, "may not use this socket"},
    {"TimeOut", device_access::kConnectTimeout, ETIMEDOUT, ExitCode::kNotReachable, "did not answer in time"},
    {"Refused", device_access::kConnectRefused, ECONNREFUSED, ExitCode::kNotReachable, "nobody listens"},
    {"NoResource", device_access::kNoResource, EMFILE, ExitCode::kInternal, "memory"},
    {"Absent", device_access::kDeviceAbsent, 0, ExitCode::kNotReachable, "no USB device of this name"},
    {"Unplugged", device_access::kDeviceAbsent, ENODEV, ExitCode::kNotReachable, "was unplugged"},
    {"NoUsb", device_access::kDeviceAbsent, ENOSYS, ExitCode::kNotReachable, "no USB."},
    {"Busy", device_access::kDeviceBusy, EBUSY, ExitCode::kBusy, "another program uses it"},
    {"Sending", device_access::kDeviceBusy, EAGAIN, ExitCode::kBusy, "goes on sending"},
    {"Forbidden", device_access::kNoPermission, EACCES, ExitCode::kNotReachable, "70-qsscan-usb.rules.template"},
    {"Several", device_access::kSeveralDevices, 3, ExitCode::kUsage, "3 devices have this name"},
    {"NoBulkEndpoints", device_access::kNoBulkEndpoints, 0, ExitCode::kNotReachable, "is no scanner"},
    {"NotConfigured", device_access::kNoBulkEndpoints, ENOENT, ExitCode::kNotReachable, "not been set up"},
    {"OpensNow", device_access::kSuccess, 0, ExitCode::kNotReachable, "can be now. Try again."},
    {"Unknown", 0x405000FF, 1, ExitCode::kNotReachable, "cannot be reached. Check"},
};

TEST_P(OpenFailure, HasItsExitCodeAndSentence) {
  const CommandError error = explained(kNotOpened, OpenOutcome{GetParam().result, GetParam().detail});
  EXPECT_EQ(error.code(), GetParam().exit);
  EXPECT_EQ(error.result(), QSRSLT_CMD_NOT_OPENED);
  const std::string sentence = error.what();
  EXPECT_NE(sentence.find(GetParam().partOfSentence), std::string::npos) << sentence;
  EXPECT_NE(sentence.find("(0x40210012, 0x"), std::string::npos) << sentence;
}

INSTANTIATE_TEST_SUITE_P(Rows, OpenFailure, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(OpenFailures, NoTwoHaveTheSameSentence) {
  std::set<std::string> sentences;
  for (const Row& row : kRows) {
    const std::string sentence = explained(kNotOpened, OpenOutcome{row.result, row.detail}).what();
    EXPECT_TRUE(sentences.insert(sentence.substr(0, sentence.find('('))).second) << sentence;
  }
}

TEST(OpenFailures, TheModuleBesideTheLibraryIsAsked) {
  ::setenv("QSSCAN_FAKE_OPEN", "4050000C:10", 1);
  for (const char* device : {"usb:fff0:00a1:S1", "unix:/s", "host:9480"}) {
    ::setenv("QSSCAN_FAKE_DEVICE", device, 1);
    const auto outcome = tryToOpen(QSSCAN_FAKE_FOLDER, device);
    ASSERT_TRUE(outcome);
    EXPECT_EQ(outcome->result, 0x4050000Cu);
    EXPECT_EQ(outcome->detail, 0x10u);
    EXPECT_EQ(explained(kNotOpened, QSSCAN_FAKE_FOLDER, device).code(), ExitCode::kBusy);
  }
}

TEST(OpenFailures, WithoutAModuleTheErrorStaysAsItIs) {
  const qsscan_test::TemporaryFolder folder;
  EXPECT_FALSE(tryToOpen(folder.file(""), "host"));
  { std::ofstream(folder.file("QsDeviceAccs.so")) << "no library"; }
  EXPECT_FALSE(tryToOpen(folder.file(""), "host"));
  EXPECT_STREQ(explained(kNotOpened, folder.file(""), "host").what(), kNotOpened.what());
}

TEST(OpenFailures, OtherErrorsStayAsTheyAre) {
  ::setenv("QSSCAN_FAKE_OPEN", "4050000C:10", 1);
  ::unsetenv("QSSCAN_FAKE_DEVICE");
  const CommandError jam(ExitCode::kJam, "Jam.", 0x50000002);
  EXPECT_STREQ(explained(jam, QSSCAN_FAKE_FOLDER, "host").what(), "Jam.");
}

}  // namespace
