#include <gtest/gtest.h>

#include <vector>

#include "result_codes.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

const CScanParam kParam;

// A command object that answers with chosen bytes and counts the questions.
class FakeScanCmd : public IScanCmd {
 public:
  std::vector<std::uint8_t> body;
  QSRSLT result = QSRSLT_SUCCESS;
  int parameterQuestions = 0;
  int profileQuestions = 0;

  QSRSLT QueryDeviceScanParameter(_SCANCMD_RESPONSE_INFO* response) override {
    ++parameterQuestions;
    return answer(response);
  }
  QSRSLT GetColorProfile(_SCANCMD_RESPONSE_INFO* response) override {
    ++profileQuestions;
    return answer(response);
  }

  bool SelectCommandVersion(SCANCMD_GENERATION) override { return unexpected(), false; }
  bool GetConnectionStatus() override { return unexpected(), false; }
  QSRSLT SetScanParam(_SCANCMD_SCANPARAM*) override { return unexpected(); }
  QSRSLT QueryDeviceCapability(_SCANCMD_DEVICECAP_INFO*, bool) override { return unexpected(); }
  QSRSLT CheckDocument(SCANCMD_PAPERSOURCE_TYPE) override { return unexpected(); }
  QSRSLT SelectPaperSource(SCANCMD_PAPERSOURCE_TYPE) override { return unexpected(); }
  QSRSLT GetPushScanParameter(_SCANCMD_RESPONSE_INFO*) override { return unexpected(); }
  QSRSLT GetPaletteTable(_SCANCMD_RESPONSE_INFO*) override { return unexpected(); }
  QSRSLT GetDocumentSizeOnPaperSource(_SCANCMD_RESPONSE_INFO*) override { return unexpected(); }
  QSRSLT StartScanning() override { return unexpected(); }
  QSRSLT AbortScanning(SCANCMD_EJECTION_TYPE) override { return unexpected(); }

 private:
  QSRSLT answer(_SCANCMD_RESPONSE_INFO* response) {
    EXPECT_EQ(response->size, 0) << "the record is handed over cleared";
    EXPECT_EQ(response->data, nullptr);
    *response = {static_cast<long>(body.size()), body.data()};
    return result;
  }
  static QSRSLT unexpected() {
    ADD_FAILURE() << "no other command belongs to these questions";
    return QSRSLT_CMD_NOT_OFFERED;
  }
};

QS_SCANNER_CAPABILITY secondGeneration() {
  QS_SCANNER_CAPABILITY capability{};
  capability.generation = SCANCMD_GENERATION_2ND;
  return capability;
}

TEST(ScanParamDevice, TheActualParametersAreWhatTheDeviceAnswers) {
  FakeScanCmd cmd;
  cmd.body = {0x01, 0x20, 0x02, 0x00, 1,    0,                                   // source: feeder
              0x02, 0x20, 0x04, 0x00, 0x2C, 0x01, 0x58, 0x02,                    // 300 by 600
              0x03, 0x20, 0x08, 0x00, 0xF6, 0x09, 0x00, 0x00, 0xE4, 0x0C, 0, 0,  // 2550 by 3300
              0xF0, 0xF0, 0x00, 0x00};
  ACTUALSCANPARAM actual{};
  EXPECT_EQ(kParam.GetDeviceActualParam(&cmd, &actual, secondGeneration()), QSRSLT_SUCCESS);
  EXPECT_EQ(cmd.parameterQuestions, 1);
  EXPECT_EQ(actual.paperSource, PAPERSOURCE_ADF);
  EXPECT_EQ(actual.resolution.x, 300u);
  EXPECT_EQ(actual.resolution.y, 600u);
  EXPECT_EQ(actual.maxSizePixel.x, 2550u);
  EXPECT_EQ(actual.maxSizePixel.y, 3300u);
}

TEST(ScanParamDevice, AFailedQuestionIsReturnedAsItIsAndStoresNothing) {
  FakeScanCmd cmd;
  cmd.result = QSRSLT_CMD_TOO_SHORT;
  ACTUALSCANPARAM actual{};
  actual.resolution.x = 77;
  EXPECT_EQ(kParam.GetDeviceActualParam(&cmd, &actual, secondGeneration()), QSRSLT_CMD_TOO_SHORT);
  EXPECT_EQ(actual.resolution.x, 77u);
  ICCPROFIE profile{};
  profile.colorProfileSize = 77;
  EXPECT_EQ(kParam.GetColorProfile(&cmd, &profile, secondGeneration()), QSRSLT_CMD_TOO_SHORT);
  EXPECT_EQ(profile.colorProfileSize, 77);
}

TEST(ScanParamDevice, ANullPointerIsToldBeforeAnythingIsSent) {
  FakeScanCmd cmd;
  ACTUALSCANPARAM actual{};
  EXPECT_EQ(kParam.GetDeviceActualParam(&cmd, nullptr, secondGeneration()), 0x1010000Bu);
  EXPECT_EQ(kParam.GetDeviceActualParam(nullptr, &actual, secondGeneration()), 0x1010000Bu);
  ICCPROFIE profile{};
  EXPECT_EQ(kParam.GetColorProfile(&cmd, nullptr, secondGeneration()), 0x7010000Au);
  EXPECT_EQ(kParam.GetColorProfile(nullptr, &profile, secondGeneration()), 0x7010000Au);
  EXPECT_EQ(cmd.parameterQuestions + cmd.profileQuestions, 0);
}

TEST(ScanParamDevice, AnAnswerWithoutABodyGivesZeros) {
  FakeScanCmd cmd;
  ACTUALSCANPARAM actual{};
  actual.resolution = {77, 77};
  EXPECT_EQ(kParam.GetDeviceActualParam(&cmd, &actual, secondGeneration()), QSRSLT_SUCCESS);
  EXPECT_EQ(actual.resolution.x, 0u);
  ICCPROFIE profile{};
  profile.colorProfileSize = 77;
  EXPECT_EQ(kParam.GetColorProfile(&cmd, &profile, secondGeneration()), QSRSLT_SUCCESS);
  EXPECT_EQ(profile.colorProfileSize, 0);
  EXPECT_EQ(profile.colorProfile, nullptr);
}

TEST(ScanParamDevice, TheColourProfilesLeadIntoTheAnswer) {
  FakeScanCmd cmd;
  cmd.body = {0x01, 0x31, 0x03, 0x00, 'r', 'g', 'b',  // colour
              0x02, 0x31, 0x02, 0x00, 'g', 'y',       // grey
              0xF0, 0xF0, 0x00, 0x00};
  ICCPROFIE profile{};
  EXPECT_EQ(kParam.GetColorProfile(&cmd, &profile, secondGeneration()), QSRSLT_SUCCESS);
  EXPECT_EQ(cmd.profileQuestions, 1);
  EXPECT_EQ(profile.colorProfile, cmd.body.data() + 4);
  EXPECT_EQ(profile.colorProfileSize, 3);
  EXPECT_EQ(profile.grayProfile, cmd.body.data() + 11);
  EXPECT_EQ(profile.grayProfileSize, 2);
}

}  // namespace
}  // namespace orvalle_scan_api
