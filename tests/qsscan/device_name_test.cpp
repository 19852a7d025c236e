#include "apps/qsscan/device_name.h"

#include <gtest/gtest.h>

#include <string>

#include "apps/qsscan/exit_codes.h"

namespace {

using qsscan::CommandError;
using qsscan::ExitCode;
using qsscan::parseDeviceName;

struct GoodRow {
  const char* name;
  int connectionType;
};
class GoodName : public testing::TestWithParam<GoodRow> {};

TEST_P(GoodName, IsCopiedWithItsConnectionType) {
  const auto info = parseDeviceName(GetParam().name);
  EXPECT_EQ(info.connectionType, GetParam().connectionType);
  EXPECT_STREQ(info.primaryName, GetParam().name);
  EXPECT_STREQ(info.secondaryName, "");
}

INSTANTIATE_TEST_SUITE_P(DeviceName, GoodName,
                         testing::Values(GoodRow{"scanner", 2}, GoodRow{"scanner.local:9480", 2},
                                         GoodRow{"192.0.2.7", 2}, GoodRow{"192.0.2.7:1", 2},
                                         GoodRow{"[2001:db8::1]:65535", 2}, GoodRow{"[fe80::1%eth0]", 2},
                                         GoodRow{"unix:/run/scanner.sock", 1}, GoodRow{"unix:relative", 1},
                                         GoodRow{"usb:fff0:00A1", 1}, GoodRow{"usb:fff0:00a1:A0B1:2", 1}));

struct BadRow {
  const char* name;
  const char* partOfSentence;
};
class BadName : public testing::TestWithParam<BadRow> {};

TEST_P(BadName, IsRefusedWithASentence) {
  try {
    parseDeviceName(GetParam().name);
    FAIL() << GetParam().name << " was accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kUsage);
    EXPECT_NE(std::string(error.what()).find(GetParam().partOfSentence), std::string::npos) << error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(DeviceName, BadName,
                         testing::Values(BadRow{"", "with -d"}, BadRow{":9480", "host"}, BadRow{"host:", "port"},
                                         BadRow{"host:0", "port"}, BadRow{"host:65536", "port"},
                                         BadRow{"host:99999999999999999999", "port"}, BadRow{"host:94x", "port"},
                                         BadRow{"host:-1", "port"}, BadRow{"2001:db8::1", "IPv6"},
                                         BadRow{"[2001:db8::1", "IPv6"}, BadRow{"[]:9480", "IPv6"},
                                         BadRow{"[::1]9480", "IPv6"}, BadRow{"[::1]:", "port"}, BadRow{"unix:", "path"},
                                         BadRow{"usb:", "usb:VVVV:PPPP"}, BadRow{"usb:fff0:00a", "usb:VVVV:PPPP"},
                                         BadRow{"usb:fff0:00a1:", "usb:VVVV:PPPP"},
                                         BadRow{"usb:fff0:00ag", "usb:VVVV:PPPP"},
                                         BadRow{"usb:fff00:0a1", "usb:VVVV:PPPP"}, BadRow{"a\nb", "control"}));

TEST(DeviceName, LongestNameFitsAndALongerOneIsRefused) {
  const std::string longest(127, 'h');
  EXPECT_EQ(parseDeviceName(longest).primaryName, longest);
  EXPECT_THROW(parseDeviceName(longest + "h"), CommandError);
}

}  // namespace
