#include "apps/qsscan/results.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

struct Row {
  const char* name;
  QSRSLT code;
  Phase phase;
  ExitCode exit;
  const char* partOfSentence;
};

class ResultRow : public testing::TestWithParam<Row> {};

TEST_P(ResultRow, HasItsExitCodeAndSentence) {
  const ResultText text = describeResult(GetParam().code, GetParam().phase);
  EXPECT_EQ(text.exit, GetParam().exit) << text.sentence;
  EXPECT_NE(text.sentence.find(GetParam().partOfSentence), std::string::npos) << text.sentence;
}

constexpr Row kRows[] = {
    {"FeederEmpty", 0x50000001, Phase::kScanning, ExitCode::kFeederEmpty, "no paper in the feeder"},
    {"Jam", 0x50000002, Phase::kScanning, ExitCode::kJam, "jam"},
    {"CoverOpen", 0x50000003, Phase::kScanning, ExitCode::kCoverOpen, "cover"},
    {"Busy", 0x50000004, Phase::kScanning, ExitCode::kBusy, "busy"},
    {"OutOfMemory", 0x50000005, Phase::kScanning, ExitCode::kDeviceError, "memory"},
    {"DoubleFeed", 0x50000006, Phase::kScanning, ExitCode::kJam, "Double feed"},
    {"InternalFault", 0x50000007, Phase::kScanning, ExitCode::kDeviceError, "internal fault"},
    {"Lamp", 0x50000008, Phase::kScanning, ExitCode::kDeviceError, "lamp"},
    {"Settings", 0x50000009, Phase::kScanning, ExitCode::kDeviceError, "settings"},
    {"Locked", 0x5000000A, Phase::kScanning, ExitCode::kBusy, "locked"},
    {"NumberWithoutMeaning", 0x5000000B, Phase::kScanning, ExitCode::kDeviceError, "reported an error"},
    {"LastNumber", 0x50000016, Phase::kScanning, ExitCode::kDeviceError, "reported an error"},
    {"UnknownError", 0x500000FF, Phase::kScanning, ExitCode::kDeviceError, "unknown error"},
    {"ARecordWithoutAStatus", 0x1040100B, Phase::kScanning, ExitCode::kDeviceError, "data that is not understood"},
    {"RefusedEmptyFirstGen", 0x102400C2, Phase::kScanning, ExitCode::kFeederEmpty, "no paper"},
    {"RefusedJamSecondGen", 0x10240091, Phase::kScanning, ExitCode::kJam, "jam"},
    {"RefusedBusyFirstGen", 0x102400C5, Phase::kConnecting, ExitCode::kBusy, "busy"},
    {"RefusedBusySecondGen", 0x102400B0, Phase::kConnecting, ExitCode::kBusy, "busy"},
    {"RefusedLockedSecondGen", 0x102400A5, Phase::kConnecting, ExitCode::kBusy, "locked"},
    {"RefusedUnknown", 0x10240001, Phase::kScanning, ExitCode::kDeviceError, "refused a command"},
    {"DocumentStatus", 0x00202090, Phase::kScanning, ExitCode::kFeederEmpty, "no paper"},
    {"NotOpened", QSRSLT_CMD_NOT_OPENED, Phase::kConnecting, ExitCode::kNotReachable, "cannot be reached"},
    {"NotOpenedForTheScan", QSRSLT_CMD_NOT_OPENED, Phase::kScanning, ExitCode::kNotReachable, "cannot be reached"},
    {"ReadFailedWhileConnecting", 0x40500007, Phase::kConnecting, ExitCode::kNotReachable, "cannot be reached"},
    {"NoAnswerWhileConnecting", 0x40500031, Phase::kConnecting, ExitCode::kNotReachable, "does not answer."},
    {"NoAnswerWhileScanning", 0x40500031, Phase::kScanning, ExitCode::kConnectionLost, "does not answer any more"},
    {"ReadFailedWhileScanning", 0x40500020, Phase::kScanning, ExitCode::kConnectionLost, "connection"},
    {"Silent", QSRSLT_RECEIVE_TIME_OUT, Phase::kScanning, ExitCode::kConnectionLost, "silent"},
    {"NotPrepared", QSRSLT_NOT_PREPARED, Phase::kScanning, ExitCode::kNotReachable, "prepared"},
    {"DeviceAccessMissing", QSRSLT_DEVICE_ACCESS_NOT_LOADED, Phase::kConnecting, ExitCode::kNoLibrary, "QsDeviceAccs"},
    {"JpegMissing", QSRSLT_JPEG_NOT_LOADED, Phase::kScanning, ExitCode::kNoLibrary, "QsJpegDecode"},
    {"EnhanceMissing", QSRSLT_ENHANCE_NOT_LOADED, Phase::kScanning, ExitCode::kNoLibrary, "QsImageEnhance"},
    {"LinesMissing", QSRSLT_NO_LINE_DECODER, Phase::kScanning, ExitCode::kNoLibrary, "QsScanDecode"},
    {"WrongSignature", QSRSLT_CMD_WRONG_SIGNATURE, Phase::kConnecting, ExitCode::kDeviceError, "not understood"},
    {"UnknownData", QSRSLT_UNKNOWN_DATA, Phase::kScanning, ExitCode::kDeviceError, "not understood"},
    {"PageMemory", QSRSLT_NO_PAGE_MEMORY, Phase::kScanning, ExitCode::kInternal, "memory"},
    {"StopKey", QSRSLT_CANCELED, Phase::kScanning, ExitCode::kStoppedAtDevice, "stopped at the device"},
    {"EmptyName", QSRSLT_EMPTY_DEVICE, Phase::kConnecting, ExitCode::kUsage, "empty"},
    {"OtherStatus", 0xD0, Phase::kScanning, ExitCode::kInternal, "failed"},
};

INSTANTIATE_TEST_SUITE_P(Results, ResultRow, testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

constexpr QSRSLT kEveryCode[] = {QSRSLT_CANCELED,
                                 QSRSLT_NOT_INITIALIZED,
                                 QSRSLT_CAPS_NOT_READY,
                                 QSRSLT_NOT_PREPARED,
                                 QSRSLT_NO_ACTUAL_PARAM,
                                 QSRSLT_SCAN_GENERATION,
                                 QSRSLT_WRONG_STATE,
                                 QSRSLT_NO_READ_THREAD,
                                 QSRSLT_PUSH_GENERATION,
                                 QSRSLT_NO_SCAN_COMMAND,
                                 QSRSLT_NO_ENUMERATION,
                                 QSRSLT_DEVICE_ACCESS_NOT_LOADED,
                                 QSRSLT_NO_CAPS_OBJECT,
                                 QSRSLT_NULL_CAPS,
                                 QSRSLT_NULL_DEVICE_ACCESS,
                                 QSRSLT_NULL_SCAN_COMMAND,
                                 QSRSLT_NULL_ARGUMENT,
                                 QSRSLT_NULL_CAPABILITY,
                                 QSRSLT_EMPTY_DEVICE,
                                 QSRSLT_CMD_NO_GENERATION,
                                 QSRSLT_CMD_NOT_OFFERED,
                                 QSRSLT_CMD_NO_SCAN_PARAM,
                                 QSRSLT_CMD_TOO_LARGE,
                                 QSRSLT_CMD_EMPTY,
                                 QSRSLT_CMD_TOO_SHORT,
                                 QSRSLT_CMD_NO_CAPABILITY,
                                 QSRSLT_CMD_WRONG_SIGNATURE,
                                 QSRSLT_CMD_NO_DEVICE_ACCESS,
                                 QSRSLT_CMD_NOT_OPENED,
                                 QSRSLT_CMD_BAD_ARGUMENT,
                                 QSRSLT_DEVICE_STATUS,
                                 QSRSLT_DOCUMENT_STATUS,
                                 QSRSLT_CAPS_NOT_INITIALIZED,
                                 QSRSLT_CAPS_EMPTY,
                                 QSRSLT_READ_THREAD_NOT_STARTED,
                                 QSRSLT_DEVICE_STOPPED,
                                 QSRSLT_JPEG_ERROR,
                                 QSRSLT_JPEG_STREAM_CREATE,
                                 QSRSLT_JPEG_STREAM_WRITE,
                                 QSRSLT_JPEG_NOT_OPENED,
                                 QSRSLT_JPEG_BAND_WRITE,
                                 QSRSLT_JPEG_NO_DECODER,
                                 QSRSLT_WORKER_NOT_STARTED,
                                 QSRSLT_DECODE_NOT_QUEUED,
                                 QSRSLT_ENHANCE_NOT_QUEUED,
                                 QSRSLT_ENHANCE_NULL,
                                 QSRSLT_JPEG_NOT_LOADED,
                                 QSRSLT_ENHANCE_NOT_LOADED,
                                 QSRSLT_LINE_DECODER_NOT_OPENED,
                                 QSRSLT_NO_ESCAPE_BUFFER,
                                 QSRSLT_NO_PAGE_MEMORY,
                                 QSRSLT_JPEG_LOW_MEMORY,
                                 QSRSLT_JPEG_MEMORY_PROC,
                                 QSRSLT_PAGE_NOT_HANDED_OVER,
                                 QSRSLT_LINE_DECODER_REFUSED,
                                 QSRSLT_NO_LINE_DECODER,
                                 QSRSLT_RECEIVE_TIME_OUT,
                                 QSRSLT_DEVICE_READ_TIME_OUT,
                                 QSRSLT_UNKNOWN_DATA,
                                 QSRSLT_READ_NULL_DEVICE_ACCESS,
                                 QSRSLT_READ_NULL_SCAN_COMMAND,
                                 QSRSLT_NULL_DATA,
                                 QSRSLT_JPEG_BAD_PARAMETER,
                                 QSRSLT_LINE_DECODER_WROTE_NOTHING,
                                 QSRSLT_GRAY_NO_MEMORY,
                                 QSRSLT_GRAY_NULL_IMAGE,
                                 QSRSLT_ENHANCE_STOPPED,
                                 QSRSLT_CHANGE_RESO_INIT,
                                 QSRSLT_CHANGE_RESO_START,
                                 QSRSLT_PADDED_PAGE_NOT_TURNED,
                                 QSRSLT_DEVICE_ERROR_OTHER,
                                 0xFFFFFFFF,
                                 0x80000000,
                                 1};

TEST(Results, EveryCodeHasAFailingExitCodeAndASentenceThatEndsInItsNumber) {
  for (const QSRSLT code : kEveryCode) {
    for (const Phase phase : {Phase::kConnecting, Phase::kScanning}) {
      const ResultText text = describeResult(code, phase);
      EXPECT_NE(text.exit, ExitCode::kDone) << text.sentence;
      const std::string number = " (" + hexCode(code) + ")";
      ASSERT_GT(text.sentence.size(), number.size() + 10);
      EXPECT_EQ(text.sentence.substr(text.sentence.size() - number.size()), number);
      EXPECT_EQ(text.sentence[text.sentence.size() - number.size() - 1], '.') << text.sentence;
    }
  }
}

TEST(Results, SuccessIsDone) { EXPECT_EQ(describeResult(0, Phase::kScanning).exit, ExitCode::kDone); }

TEST(Results, FailureKindsByTopDigitHaveTextsToo) {
  EXPECT_EQ(describeResult(0x2FFFFFFF, Phase::kScanning).exit, ExitCode::kNoLibrary);
  EXPECT_EQ(describeResult(0x3FFFFFFF, Phase::kScanning).exit, ExitCode::kInternal);
  EXPECT_EQ(describeResult(0x4FFFFFFF, Phase::kScanning).exit, ExitCode::kConnectionLost);
  EXPECT_EQ(describeResult(0x4FFFFFFF, Phase::kConnecting).exit, ExitCode::kNotReachable);
  EXPECT_EQ(describeResult(0x5FFFFFFF, Phase::kScanning).exit, ExitCode::kDeviceError);
  EXPECT_EQ(describeResult(0x6FFFFFFF, Phase::kScanning).exit, ExitCode::kDeviceError);
  EXPECT_EQ(describeResult(0x7FFFFFFF, Phase::kScanning).exit, ExitCode::kInternal);
}

TEST(ExitCodes, TableHasEachNumberOnceInRisingOrder) {
  int last = -1;
  for (const ExitCodeRow& row : exitCodeTable()) {
    EXPECT_GT(static_cast<int>(row.code), last);
    last = static_cast<int>(row.code);
  }
  EXPECT_EQ(last, 143);
}

}  // namespace
