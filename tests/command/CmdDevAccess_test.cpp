// Framed answers.
#include "command/CmdDevAccess.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/command/answers.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using answers::framed;
using answers::pattern;
using answers::u32;
using namespace std::string_literals;

namespace {

constexpr int kBufferBytes = 0x40000;
const char kNoDevice[] = "IDeviceAccess instance does not exist.";

using Info = CCmdDevAccess::CMDRESINFO;

Info shape(int resultSize, int signatureSize, int lengthSize) {
  Info info{};
  info.resultSize = resultSize;
  info.signatureSize = signatureSize;
  info.lengthSize = lengthSize;
  return info;
}
Info secondGenerationShape() { return shape(1, 3, 4); }

std::string bodyOf(const Info& info) {
  if (info.data == nullptr || info.dataSize <= 0) return "";
  return std::string(reinterpret_cast<const char*>(info.data), static_cast<std::size_t>(info.dataSize));
}
}  // namespace

class CmdDevAccess : public ::testing::Test {
 protected:
  CmdDevAccess() { access.SetPointerToDeviceAccess(&device); }
  ~CmdDevAccess() override { EXPECT_EQ(device.trouble(), ""); }

  QSRSLT receive(Info& info, long timeOutMs = 5000, bool counted = false) {
    return access.RecvCmdResponse(info, timeOutMs, counted);
  }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  LogCapture log;
};

// ---- receiving a framed answer

TEST(CmdDevAccessReceiving, WithoutADeviceTheAnswerIsClearedAllTheSame) {
  CCmdDevAccess access;
  LogCapture log;
  unsigned char byte = 0;
  Info info{1, 3, 4, 9, &byte, &byte, 77};
  EXPECT_EQ(access.RecvCmdResponse(info, 0, false), 0x40210011u);
  EXPECT_TRUE(log.says(kNoDevice)) << log.all();
  EXPECT_EQ(info.result, 0);
  EXPECT_EQ(info.signature, nullptr);
  EXPECT_EQ(info.data, nullptr);
  EXPECT_EQ(info.dataSize, 0);
  EXPECT_EQ(info.lengthSize, 4);
}

TEST_F(CmdDevAccess, AHeaderOrATimeOutBelowOneIsRefusedUnread) {
  Info none = shape(0, 0, 0);
  EXPECT_EQ(receive(none), 0x70210002u);
  Info negative = shape(1, 3, -5);
  EXPECT_EQ(receive(negative), 0x70210002u);
  Info good = secondGenerationShape();
  EXPECT_EQ(receive(good, 0), 0x70210002u);
  EXPECT_EQ(receive(good, -1), 0x70210002u);
  EXPECT_TRUE(device.reads.empty());
}

TEST_F(CmdDevAccess, AHeaderAndATimeOutOfOneAreEnough) {
  device.answer(
      "\x03"
      "abc");
  Info info = shape(0, 0, 1);
  EXPECT_EQ(receive(info, 1), 0u);
  EXPECT_EQ(bodyOf(info), "abc");
}

TEST_F(CmdDevAccess, EveryShapeOfAnswerIsReadInOneReadWithoutAnother) {
  struct Row {
    const char* name;
    int resultSize, signatureSize, lengthSize;
    bool counted;
    long timeOutMs;
    std::string bytes;
    int result;
    std::string signature;
    std::string body;
  };
  const Row rows[] = {
      {"Q", 0, 2, 1, true, 35000, "\xC1\x00\x04\x10YZ"s, 0, "\xC1\x00"s, "\x10YZ"},
      {"QDI", 1, 3, 4, false, 35000, "\0QDI\x03\0\0\0abc"s, 0, "QDI", "abc"},
      {"GKP", 1, 3, 4, false, 5000, "\0GKP\x01\0\0\0a"s, 0, "GKP", "a"},
      {"SSP refused", 1, 3, 4, false, 5000, "\xA4SSP\x02\0\0\0ab"s, 0xA4, "SSP", "ab"},
      {"GCT", 1, 3, 4, false, 5000, "\0GCT\x02\0\0\0ab"s, 0, "GCT", "ab"},
      {"GCP", 1, 3, 4, false, 5000, "\0GCP\x02\0\0\0ab"s, 0, "GCP", "ab"},
      {"GDS", 1, 3, 4, false, 5000, "\0GDS\x02\0\0\0ab"s, 0, "GDS", "ab"},
      {"K", 1, 0, 2, false, 5000, "\x30\x02\0ab"s, 0x30, "", "ab"},
      {"I", 1, 0, 2, false, 5000, "\0\x03\0abc"s, 0, "", "abc"},
      {"P", 0, 0, 2, false, 5000, "\x04\0abcd"s, 0, "", "abcd"},
      {"width 1 is unsigned", 0, 0, 1, false, 5000, "\xFF" + pattern(255), 0, "", pattern(255)},
      {"width 1 counting itself", 0, 2, 1, true, 5000, "\xC1\x00\xFF"s + pattern(254), 0, "\xC1\x00"s, pattern(254)},
      {"width 2 up to 0x7FFF", 0, 0, 2, false, 5000, "\xFF\x7F" + pattern(0x7FFF), 0, "", pattern(0x7FFF)},
      {"width 2 counting itself", 1, 0, 2, true, 5000, "\x05\x05\0abc"s, 5, "", "abc"},
      {"width 4 counting itself", 1, 0, 4, true, 5000, "\x05\x07\0\0\0abc"s, 5, "", "abc"},
      {"two result bytes, the first one kept", 2, 1, 1, false, 5000, "\x07\x08S\x01x", 7, "S", "x"},
      {"more bytes than told are left alone", 1, 0, 2, false, 5000, "\0\x01\0abc"s, 0, "", "a"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    device.reads.clear();
    device.answer(row.bytes);
    Info info = shape(row.resultSize, row.signatureSize, row.lengthSize);
    EXPECT_EQ(receive(info, row.timeOutMs, row.counted), 0u);
    EXPECT_EQ(info.result, row.result);
    EXPECT_EQ(info.dataSize, static_cast<int>(row.body.size()));
    EXPECT_EQ(bodyOf(info), row.body);
    if (row.signatureSize > 0) {
      ASSERT_NE(info.signature, nullptr);
      EXPECT_EQ(std::string(reinterpret_cast<char*>(info.signature), row.signature.size()), row.signature);
    } else {
      EXPECT_EQ(info.signature, nullptr);
    }
    ASSERT_EQ(device.reads.size(), 1u);
    EXPECT_EQ(device.reads[0].size, unsigned{kBufferBytes});
    EXPECT_EQ(device.reads[0].wanted, unsigned{kBufferBytes});
    EXPECT_EQ(device.reads[0].timeOutMs, row.timeOutMs);
  }
  EXPECT_TRUE(log.lines.empty()) << log.all();
}

TEST_F(CmdDevAccess, TheLastReadsResultIsReturnedWithAWholeAnswer) {
  device.answer(framed("SSP", "ab"), 0x40500099);
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0x40500099u);
  EXPECT_EQ(bodyOf(info), "ab");
}

TEST_F(CmdDevAccess, ABodyMayComeInAnyPartsBehindItsHeader) {
  const std::string body = pattern(24);
  const std::string bytes = framed("GCP", body);
  for (std::size_t first = 8; first < bytes.size(); ++first) {
    for (std::size_t second = 1; first + second <= bytes.size(); ++second) {
      device.reads.clear();
      device.answerInParts(bytes, {first, second});
      Info info = secondGenerationShape();
      ASSERT_EQ(receive(info), 0u) << first << " " << second;
      ASSERT_EQ(bodyOf(info), body) << first << " " << second;
      ASSERT_EQ(std::string(reinterpret_cast<char*>(info.signature), 3), "GCP");
      ASSERT_EQ(device.reads[1].size, kBufferBytes - first);
      ASSERT_EQ(device.reads[1].wanted, kBufferBytes - first);
    }
  }
}

TEST_F(CmdDevAccess, EveryProperPrefixOfAnAnswerEndsByTimeOut) {
  const struct {
    Info info;
    bool counted;
    std::string bytes;
  } rows[] = {{shape(0, 2, 1), true, "\xC1\x00\x04\x10YZ"s},
              {secondGenerationShape(), false, framed("GKP", pattern(20))},
              {shape(1, 0, 2), false, "\x30\x05\0abcde"s},
              {shape(0, 0, 2), false, "\x03\0abc"s}};
  for (const auto& row : rows) {
    const int headerBytes = row.info.resultSize + row.info.signatureSize + row.info.lengthSize;
    for (std::size_t size = 0; size < row.bytes.size(); ++size) {
      SCOPED_TRACE(row.bytes + " cut to " + std::to_string(size));
      Info info = row.info;
      if (size > 0) device.answer(row.bytes.substr(0, size));
      device.timeOut();
      EXPECT_EQ(receive(info, 5000, row.counted), ScriptedDevice::kTimeOut);
      EXPECT_EQ(info.data != nullptr, static_cast<int>(size) >= headerBytes);
    }
  }
}

TEST_F(CmdDevAccess, ASplitHeaderIsNotAssembled) {
  const std::string bytes = framed("GKP", "ab");
  for (std::size_t cut = 1; cut < 8; ++cut) {
    SCOPED_TRACE(cut);
    // Behind one or two bytes the second part is long enough, and its 'a' stands where a length would end.
    const bool secondPartIsHeader = cut <= 2;
    device.answerInParts(bytes, {cut}).timeOut();
    Info info = secondGenerationShape();
    EXPECT_EQ(receive(info), secondPartIsHeader ? 0x10210032u : ScriptedDevice::kTimeOut);
    EXPECT_EQ(info.data != nullptr, secondPartIsHeader);
  }
}

TEST_F(CmdDevAccess, ALaterReadThatIsLongEnoughIsTakenAsTheHeader) {
  // Three stray bytes, then a whole answer: the header is that of the second read, and the bytes before count.
  device.answer("???").answer(framed("SSP", "body"));
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(bodyOf(info), "body");
  EXPECT_EQ(device.reads.size(), 2u);
}

TEST_F(CmdDevAccess, ALateHeaderThatTheStrayBytesCompleteHasZeroesForTheMissingBody) {
  // 7 + 10 bytes reach the need of 8 + 9, though two bytes of the body have come.
  device.answer("???????").answer(framed("SSP", "123456789").substr(0, 10));
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(info.dataSize, 9);
  EXPECT_EQ(bodyOf(info), "12" + std::string(7, '\0'));
}

TEST_F(CmdDevAccess, ALateHeaderCannotLeadTheBodyOutOfTheBuffer) {
  // The buffer is filled but for 9 bytes by reads too short to hold a header, so that the body would end behind it.
  const std::string body = pattern(1000);
  std::size_t stray = 0;
  for (; stray + 7 <= kBufferBytes - 9; stray += 7) device.answer("1234567");
  const std::size_t room = kBufferBytes - stray;
  device.answer(framed("SSP", body).substr(0, room));
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(info.dataSize, 1000);
  std::string wanted = body.substr(0, room - 8);
  wanted.resize(1000, '\0');
  EXPECT_EQ(bodyOf(info), wanted);
}

TEST_F(CmdDevAccess, BytesOfAnEarlierAnswerNeverFillALaterOne) {
  device.answer(framed("SSP", std::string(64, 'x')));
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  device.answer("???????").answer(framed("SSP", std::string(9, 'y')).substr(0, 10));
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(bodyOf(info), "yy" + std::string(7, '\0'));
}

TEST_F(CmdDevAccess, AFullBufferWithoutAHeaderEndsTheCall) {
  device.answerForever("123");
  Info info = secondGenerationShape();
  receive(info);
  EXPECT_EQ(info.data, nullptr);
  EXPECT_EQ(device.reads.size(), std::size_t{kBufferBytes / 3 + 1});
}

TEST_F(CmdDevAccess, AFullBufferBehindAnEmptyBodyEndsTheCall) {
  device.answerForever(framed("SSP", ""));
  Info info = secondGenerationShape();
  receive(info);
  EXPECT_EQ(info.dataSize, 0);
  EXPECT_EQ(device.reads.size(), std::size_t{kBufferBytes / 8});
}

TEST_F(CmdDevAccess, AReadThatClaimsMoreThanWasAskedForIsClamped) {
  device.answerClaiming(framed("SSP", std::string(4, 'z')), 0x7FFFFFFF);
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(bodyOf(info), "zzzz");
  device.answer("abc").answerClaiming(framed("SSP", std::string(4, 'w')), kBufferBytes);
  EXPECT_EQ(receive(info), 0u);
  EXPECT_EQ(bodyOf(info), "wwww");
}

TEST_F(CmdDevAccess, TheLargestAnswerIsOneByteBelowTheBuffer) {
  const std::string body = pattern(0x3FFFF - 8);
  device.answerInParts(framed("GCP", body), {10000, 100000});
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0u);
  EXPECT_TRUE(bodyOf(info) == body);
}

TEST_F(CmdDevAccess, AnAnswerThatFillsTheBufferFailsAndIsDrained) {
  device.answer("\0GCP"s + u32(0x40000 - 8) + "start").answer("more").answer("and more").timeOut(0);
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0x10210032u);
  EXPECT_TRUE(log.has(0, "Receive Buffer is not enough size. Need size = 262144")) << log.all();
  ASSERT_EQ(device.reads.size(), 4u);
  for (std::size_t i = 1; i < 4; ++i) {
    EXPECT_EQ(device.reads[i].size, unsigned{kBufferBytes});
    EXPECT_EQ(device.reads[i].wanted, unsigned{kBufferBytes});
    EXPECT_EQ(device.reads[i].timeOutMs, 0);
  }
}

TEST_F(CmdDevAccess, DrainingAlsoEndsWithAFailure) {
  device.answer("\0GCP"s + u32(0x40000)).answer("more").failRead(ScriptedDevice::kLost);
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0x10210032u);
  EXPECT_EQ(device.reads.size(), 3u);
}

TEST_F(CmdDevAccess, TheLargestLengthIsTooLargeWithoutOverflow) {
  device.answer("\0GCP"s + u32(0x7FFFFFFF)).timeOut();
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), 0x10210032u);
  EXPECT_TRUE(log.has(0, "Receive Buffer is not enough size. Need size = 2147483655")) << log.all();
}

TEST_F(CmdDevAccess, AnEmptyBodyEndsByTimeOut) {
  device.answer(framed("GDS", "")).timeOut();
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), ScriptedDevice::kTimeOut);
  EXPECT_EQ(info.dataSize, 0);
  EXPECT_EQ(device.reads.size(), 2u);
}

TEST_F(CmdDevAccess, NegativeBodiesEndByTimeOut) {
  struct Row {
    const char* name;
    Info info;
    bool counted;
    std::string bytes;
    int dataSize;
  };
  const Row rows[] = {
      {"2-byte length 0xFFFF", shape(1, 0, 2), false, "\0\xFF\xFF"s, -1},
      {"2-byte length 0x8000", shape(1, 0, 2), false, "\0\x00\x80"s, -32768},
      {"4-byte length 0xFFFFFFFF", shape(1, 3, 4), false, "\0SSP\xFF\xFF\xFF\xFF"s, -1},
      {"4-byte length 0x80000000", shape(1, 3, 4), false, "\0SSP\0\0\0\x80"s, INT32_MIN},
      {"1-byte length 0 that counts itself", shape(0, 2, 1), true, "\xC1\0\0"s, -1},
      {"2-byte length 1 that counts itself", shape(0, 0, 2), true, "\1\0"s, -1},
      {"1-byte length 1 that counts itself", shape(0, 2, 1), true, "\xC1\0\1"s, 0},
      {"width 3", shape(1, 0, 3), false, "\0\1\0\0xyz"s, 0},
      {"width 3 that counts itself", shape(1, 0, 3), true, "\0\1\0\0xyz"s, -3},
      {"width 8", shape(1, 0, 8), false, "\0\1\0\0\0\0\0\0\0xyz"s, 0},
      {"no length at all", shape(1, 1, 0), false, "\0Sxyz"s, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Info info = row.info;
    device.answer(row.bytes).timeOut(0x40500077);
    EXPECT_EQ(receive(info, 5000, row.counted), 0x40500077u);
    EXPECT_EQ(info.dataSize, row.dataSize);
    EXPECT_NE(info.data, nullptr);
  }
}

TEST_F(CmdDevAccess, ATimeOutIsReportedByTheDevicesOwnCode) {
  Info info = secondGenerationShape();
  device.timeOut();
  EXPECT_EQ(receive(info, 35000), ScriptedDevice::kTimeOut);
  EXPECT_TRUE(log.has(1, "TimeOut occurred during receive response. TimeOut = 35000(ms)")) << log.all();
  device.timeOut(0);
  EXPECT_EQ(receive(info), 0u) << "a time-out without a code looks like success";
  EXPECT_EQ(info.data, nullptr);
}

TEST_F(CmdDevAccess, ATimeOutInTheMiddleKeepsWhatTheHeaderTold) {
  device.answer(framed("SSP", "abcdef").substr(0, 10)).timeOut();
  Info info = secondGenerationShape();
  EXPECT_EQ(receive(info), ScriptedDevice::kTimeOut);
  EXPECT_EQ(info.dataSize, 6);
}

TEST_F(CmdDevAccess, AFailedReadIsReportedByTheDevicesOwnCode) {
  Info info = secondGenerationShape();
  device.failRead(0x40500012, 9);
  EXPECT_EQ(receive(info), 0x40500012u);
  EXPECT_TRUE(log.has(0, "Error occurred during receive response. result = " + std::to_string(0x40500012) + "(9)"))
      << log.all();
  device.answer(framed("SSP", "abcdef").substr(0, 9)).failRead(0x40500013, 0, INT32_MIN);
  EXPECT_EQ(receive(info), 0x40500013u);
}

// The rules again, byte by byte, over any split into reads.
TEST_F(CmdDevAccess, AnySplitBehavesAsTheRulesSay) {
  std::mt19937 random(20250101);
  const auto below = [&](unsigned bound) { return static_cast<std::size_t>(random() % bound); };
  for (int round = 0; round < 4000; ++round) {
    std::string bytes = framed("SSP", pattern(below(40)));
    if (below(3) == 0) bytes.insert(0, pattern(below(12)));
    if (below(3) == 0) bytes.resize(below(static_cast<unsigned>(bytes.size()) + 1));
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < bytes.size();) {
      const std::size_t part = 1 + below(16);
      parts.push_back(bytes.substr(at, part));
      at += part;
    }
    // The model.
    std::string stream;
    std::ptrdiff_t header = -1;
    std::int64_t dataSize = 0;
    std::size_t reads = 0;
    QSRSLT wanted = ScriptedDevice::kTimeOut;
    bool tooLarge = false;
    for (const std::string& part : parts) {
      ++reads;
      if (header < 0 && part.size() >= 8) {
        header = static_cast<std::ptrdiff_t>(stream.size());
        std::uint32_t length = 0;
        for (unsigned i = 0; i < 4; ++i)
          length |= static_cast<std::uint32_t>(static_cast<unsigned char>(part[4 + i])) << 8 * i;
        dataSize = static_cast<std::int32_t>(length);
      }
      stream += part;
      if (dataSize > 0 && dataSize + 8 >= kBufferBytes) {
        tooLarge = true;
        wanted = 0x10210032;
        break;
      }
      if (dataSize > 0 && static_cast<std::int64_t>(stream.size()) >= dataSize + 8) {
        wanted = 0;
        break;
      }
    }
    ScriptedDevice one(true);
    for (const std::string& part : parts) one.answer(part);
    CCmdDevAccess fresh;
    fresh.SetPointerToDeviceAccess(&one);
    Info info = secondGenerationShape();
    ASSERT_EQ(fresh.RecvCmdResponse(info, 100, false), wanted) << round;
    if (tooLarge) continue;
    ASSERT_EQ(one.reads.size(), reads + (wanted == 0 ? 0 : 1)) << round;
    ASSERT_EQ(info.dataSize, static_cast<std::int32_t>(dataSize)) << round;
    ASSERT_EQ(info.data != nullptr, header >= 0) << round;
    if (wanted != 0) continue;
    std::string body = stream.substr(static_cast<std::size_t>(header) + 8);
    body.resize(static_cast<std::size_t>(dataSize), '\0');
    ASSERT_EQ(bodyOf(info), body) << round;
  }
}

// ---- the header alone

TEST(CmdDevAccessHeader, NullBytesHoldNoHeader) {
  Info info = secondGenerationShape();
  EXPECT_FALSE(CCmdDevAccess::GetCmdResHeaderInfo(info, nullptr, false));
}

TEST(CmdDevAccessHeader, OnlyWidthsOneTwoAndFourAreLengths) {
  unsigned char bytes[] = {5, 2, 0, 0, 0, 0, 0, 0, 0};
  for (int width = -1; width <= 8; ++width) {
    Info info = shape(1, 0, width);
    const bool known = width == 1 || width == 2 || width == 4;
    EXPECT_EQ(CCmdDevAccess::GetCmdResHeaderInfo(info, bytes, false), known) << width;
    EXPECT_EQ(info.dataSize, known ? 2 : 0) << width;
    EXPECT_EQ(info.result, 5) << width;
  }
}
