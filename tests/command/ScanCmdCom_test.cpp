#include "command/ScanCmdCom.h"

#include <gtest/gtest.h>

#include "tests/command/answers.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;

namespace {

const unsigned char* bytesOf(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

}  // namespace

TEST(ScanCmdCom, ASignatureIsComparedByteByByte) {
  const CScanCmdCom common;
  LogCapture log;
  EXPECT_EQ(common.ValidateCmdResSignature(bytesOf("SSPx"), "SSPy", 3), 0u);
  EXPECT_TRUE(log.lines.empty());
  EXPECT_EQ(common.ValidateCmdResSignature(bytesOf("\xC1\x00"), "\xC1\x00", 2), 0u);
  for (const char* wrong : {"xSP", "SxP", "SSx", "ssp"}) {
    log.lines.clear();
    EXPECT_EQ(common.ValidateCmdResSignature(bytesOf(wrong), "SSP", 3), 0x10210043u) << wrong;
    EXPECT_TRUE(log.says("Invalid signature of response data.")) << log.all();
    EXPECT_EQ(log.lines.size(), 1u) << log.all();
  }
}

TEST(ScanCmdCom, ASignatureNeedsItsArguments) {
  const CScanCmdCom common;
  EXPECT_EQ(common.ValidateCmdResSignature(nullptr, "SSP", 3), 0x70210002u);
  EXPECT_EQ(common.ValidateCmdResSignature(bytesOf("SSP"), nullptr, 3), 0x70210002u);
  EXPECT_EQ(common.ValidateCmdResSignature(bytesOf("SSP"), "SSP", 0), 0x70210002u);
  EXPECT_EQ(common.ValidateCmdResSignature(bytesOf("SSP"), "SSP", -1), 0x70210002u);
}

TEST(ScanCmdCom, ABodyIsCopiedWithEightZeroesBehindIt) {
  const CScanCmdCom common;
  _SCANCMD_RESPONSE_INFO record{};
  EXPECT_EQ(common.CopyCmdResDataFromRxBuff(nullptr, 3, record), 0x70210002u);
  EXPECT_EQ(common.CopyCmdResDataFromRxBuff(bytesOf("abc"), 0, record), 0x70210002u);
  EXPECT_EQ(common.CopyCmdResDataFromRxBuff(bytesOf("abc"), -3, record), 0x70210002u);
  EXPECT_EQ(record.data, nullptr);
  EXPECT_EQ(common.CopyCmdResDataFromRxBuff(bytesOf("abc"), 3, record), 0u);
  EXPECT_EQ(answers::bodyOf(record), "abc");
  EXPECT_EQ(answers::slackOf(record), std::string(8, '\0'));
  EXPECT_EQ(common.CopyCmdResDataFromRxBuff(bytesOf("defgh"), 5, record), 0u);
  EXPECT_EQ(answers::bodyOf(record), "defgh");
  common.FreeCmdResponseData(record);
  common.FreeCmdResponseData(record);
  EXPECT_EQ(record.size, 0);
  EXPECT_EQ(record.data, nullptr);
}
