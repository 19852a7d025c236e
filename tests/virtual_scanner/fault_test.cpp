#include "device/fault.h"

#include <gtest/gtest.h>

#include "support/failure.h"

namespace vscan {
namespace {

TEST(Fault, EachKindIsRead) {
  const Fault disconnect = parseFault("disconnect@page=3,line=500");
  EXPECT_EQ(disconnect.kind, FaultKind::Disconnect);
  EXPECT_EQ(disconnect.page, 3);
  EXPECT_EQ(disconnect.line, 500);
  EXPECT_FALSE(disconnect.byte);
  EXPECT_EQ(parseFault("reset@page=1,byte=9").byte, 9);
  EXPECT_EQ(parseFault("silence@page=2").kind, FaultKind::Silence);
  const Fault device = parseFault("device=0x91@page=2");
  EXPECT_EQ(device.kind, FaultKind::Device);
  EXPECT_EQ(device.deviceError, 0x91);
}

TEST(Fault, AWrongFaultIsSaidWithItsText) {
  for (const char* text : {"", "disconnect", "disconnect@", "disconnect@line=1", "explode@page=1", "device@page=1",
                           "reset=1@page=1", "device=0@page=1", "device=256@page=1", "device=x@page=1", "reset@page=0",
                           "reset@page=1,line=-1", "reset@page=1,line=1,byte=1", "reset@page=1,day=1"}) {
    try {
      parseFault(text);
      ADD_FAILURE() << text;
    } catch (const Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(text), std::string::npos);
    }
  }
}

TEST(Fault, ItStrikesAtItsPlaceInsideARecord) {
  const RecordSpan record{1000, 200, 10, 20};  // bytes 1000 to 1199, lines 10 to 19
  const struct {
    const char* fault;
    std::optional<std::size_t> cut;
  } rows[] = {
      {"reset@page=1", 0},
      {"reset@page=1,byte=1000", 0},
      {"reset@page=1,byte=1199", 199},
      {"reset@page=1,byte=1200", {}},
      {"reset@page=1,line=10", 0},
      {"reset@page=1,line=15", 100},
      {"reset@page=1,line=20", {}},
      {"device=145@page=1,line=15", 0},
      {"device=145@page=1,byte=1100", 0},
  };
  for (const auto& row : rows) EXPECT_EQ(strikesWithin(parseFault(row.fault), record), row.cut) << row.fault;
}

TEST(Fault, ARecordWithoutLinesIsPassedByAFaultAtALine) {
  EXPECT_FALSE(strikesWithin(parseFault("reset@page=1,line=0"), {0, 100, 0, 0}));
}

}  // namespace
}  // namespace vscan
