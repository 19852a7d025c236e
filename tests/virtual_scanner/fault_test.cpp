#include "device/fault.h"

#include <gtest/gtest.h>

#include "device/dialogue.h"
#include "support/failure.h"

namespace vscan {
namespace {

Fault second(const std::string& text) { return parseFault(text, Generation::Second); }

TEST(Fault, EachKindIsReadWithItsValue) {
  const struct {
    const char* text;
    FaultKind kind;
    std::int64_t value;
  } rows[] = {
      {"disconnect@page=3", FaultKind::Disconnect, 0},
      {"reset@command=SSP", FaultKind::Reset, 0},
      {"silence@page=2", FaultKind::Silence, 0},
      {"device=0x91@page=2", FaultKind::Device, 0x91},
      {"device=145@command=XSC", FaultKind::Device, 145},
      {"double-feed@page=1", FaultKind::DoubleFeed, 0},
      {"stop-key@page=1", FaultKind::StopKey, 0},
      {"too-long@page=1,line=5", FaultKind::TooLong, 0},
      {"timer-restart=30@page=1", FaultKind::TimerRestart, 30},
      {"timer-extend=65535@page=1", FaultKind::TimerExtend, 65535},
      {"failed-check=blank@page=1", FaultKind::FailedCheck, 2},
      {"garbage=00fF30@page=1", FaultKind::Garbage, 0},
      {"wrong-length=4294967295@command=QDI", FaultKind::WrongLength, 4294967295},
      {"wrong-signature@command=Q", FaultKind::WrongSignature, 0},
      {"short@page=1", FaultKind::Short, 0},
      {"pause=1500@command=Q", FaultKind::Pause, 1500},
      {"drip=7:20@page=1", FaultKind::Drip, 7},
  };
  for (const auto& row : rows) {
    const Fault fault = second(row.text);
    EXPECT_EQ(fault.kind, row.kind) << row.text;
    EXPECT_EQ(fault.value, row.value) << row.text;
    EXPECT_EQ(fault.text, row.text);
  }
  EXPECT_EQ(second("garbage=00fF30@page=1").bytes, (Bytes{0x00, 0xFF, 0x30}));
  EXPECT_EQ(second("drip=7:20@page=1").pauseMs, 20);
}

TEST(Fault, ADeviceErrorByNameHasTheNumberOfItsGeneration) {
  EXPECT_EQ(parseFault("jam@page=1", Generation::First).value, 0xC3);
  EXPECT_EQ(parseFault("jam@page=1", Generation::Second).value, 0x91);
  EXPECT_EQ(parseFault("locked@command=I", Generation::First).value, 0xCC);
}

TEST(Fault, ThePlaceIsRead) {
  const Fault fault = second("disconnect@page=3,line=500,times=2");
  EXPECT_EQ(fault.page, 3);
  EXPECT_EQ(fault.line, 500);
  EXPECT_FALSE(fault.byte);
  EXPECT_EQ(fault.times, 2);
  EXPECT_EQ(second("short@command=GKP,byte=9").command, "GKP");
  EXPECT_EQ(second("short@command=GKP,byte=9").byte, 9);
}

TEST(Fault, AFaultWithTimesIsSpentAfterThem) {
  Fault fault = second("jam@page=1,times=2");
  EXPECT_FALSE(fault.isSpent());
  ++fault.struck;
  EXPECT_FALSE(fault.isSpent());
  ++fault.struck;
  EXPECT_TRUE(fault.isSpent());
  Fault always = second("jam@page=1");
  for (int i = 0; i < 1000; ++i) ++always.struck;
  EXPECT_FALSE(always.isSpent());
}

TEST(Fault, AWrongFaultIsSaidWithItsText) {
  for (const char* text : {"",
                           "disconnect",
                           "disconnect@",
                           "disconnect@line=1",
                           "explode@page=1",
                           "device@page=1",
                           "reset=1@page=1",
                           "device=0@page=1",
                           "device=256@page=1",
                           "device=x@page=1",
                           "device=0x@page=1",
                           "reset@page=0",
                           "reset@page=1,line=-1",
                           "reset@page=1,line=1,byte=1",
                           "reset@page=1,day=1",
                           "reset@page=1,command=Q",
                           "reset@command=Q,line=1",
                           "reset@page=1,times=0",
                           "jam=1@page=1",
                           "garbage=0@page=1",
                           "garbage=0g@page=1",
                           "garbage@page=1",
                           "drip=0:1@page=1",
                           "drip=1@page=1",
                           "pause=-1@page=1",
                           "failed-check=dust@page=1",
                           "timer-restart=65536@page=1",
                           "stop-key@command=SSP",
                           "wrong-signature@page=1",
                           "double-feed@command=XSC"}) {
    try {
      second(text);
      ADD_FAILURE() << text;
    } catch (const Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(text), std::string::npos);
    }
  }
}

TEST(Fault, TheFirstGenerationHasNoRecordForSome) {
  for (const char* text :
       {"too-long@page=1", "timer-restart=1@page=1", "timer-extend=1@page=1", "failed-check=size@page=1"}) {
    EXPECT_THROW(parseFault(text, Generation::First), Failure) << text;
    EXPECT_NO_THROW(parseFault(text, Generation::Second)) << text;
  }
}

TEST(Fault, ItsCommandHasToExistAndItsAnswerToHaveTheField) {
  const struct {
    const char* text;
    Generation generation;
    bool isGood;
  } rows[] = {
      {"silence@command=SSP", Generation::Second, true},
      {"silence@command=SSP", Generation::First, false},
      {"silence@command=I", Generation::First, true},
      {"wrong-length=9@command=SSP", Generation::Second, true},
      {"wrong-length=9@command=CKD", Generation::Second, false},
      {"wrong-length=9@command=XSC", Generation::Second, false},
      {"wrong-length=9@command=P", Generation::First, true},
      {"wrong-signature@command=Q", Generation::Second, true},
      {"wrong-signature@command=K", Generation::First, true},
      {"wrong-signature@command=P", Generation::First, false},
      {"wrong-signature@command=D", Generation::First, false},
      {"wrong-signature@command=X", Generation::First, false},
      {"jam@page=1", Generation::First, true},
  };
  for (const auto& row : rows) {
    const Fault fault = parseFault(row.text, row.generation);
    if (row.isGood) {
      EXPECT_NO_THROW(checkFault(fault, row.generation)) << row.text;
    } else {
      EXPECT_THROW(checkFault(fault, row.generation), Failure) << row.text;
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
      {"garbage=00@page=1,line=15", 100},
      {"device=145@page=1,line=15", 0},
      {"device=145@page=1,byte=1100", 0},
      {"timer-extend=1@page=1,byte=1100", 0},
  };
  for (const auto& row : rows) EXPECT_EQ(strikesWithin(second(row.fault), record), row.cut) << row.fault;
}

TEST(Fault, ARecordWithoutLinesIsPassedByAFaultAtALine) {
  EXPECT_FALSE(strikesWithin(second("reset@page=1,line=0"), {0, 100, 0, 0}));
}

}  // namespace
}  // namespace vscan
