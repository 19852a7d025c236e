#include "net/announcer.h"

#include <gtest/gtest.h>

#include <chrono>

namespace vscan {
namespace {

TEST(Announcer, TheTextRecordsStandInTheirOrder) {
  Announcement announcement{"desk", "Virtual Office Scanner", "host/office", "second floor", 9480, true};
  EXPECT_EQ(textRecords(announcement), (std::vector<std::string>{"txtvers=1", "ty=Virtual Office Scanner",
                                                                 "id=host/office", "note=second floor"}));
  announcement.place.clear();
  EXPECT_EQ(textRecords(announcement).size(), 3u);
}

// Without a bus and without the daemon: the environment points at a bus that is not there.
TEST(Announcer, WithoutADaemonItEndsAtOnceWhenAsked) {
  ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
  Log log(true, [](const std::string&) {});
  const auto began = std::chrono::steady_clock::now();
  { Announcer announcer({{"desk", "model", "id", "", 9480, true}, {"attic", "model", "id", "", 9481, false}}, log); }
  EXPECT_LT(std::chrono::steady_clock::now() - began, std::chrono::seconds(5));
}

}  // namespace
}  // namespace vscan
