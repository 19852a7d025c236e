// The first-generation reader up to the start of the scan, and the colour profile that it does not have.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/reception/reader_bench.h"
#include "tests/reception/stream_records_v1.h"

namespace reception_test {
namespace {

using Bench = BenchOf<FirstGeneration>;
using Calls = std::vector<std::string>;

TEST(ReadThread_v1, SendsTheSettingsTwiceAndThenStarts) {
  Bench bench;
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.calls.take(),
            (Calls{"command.SelectCommandVersion 1", "command.SetScanParam", "command.QueryDeviceScanParameter",
                   "command.SetScanParam", "command.StartScanning"}));
  ASSERT_EQ(bench.command.scanParams.size(), 2u);
  EXPECT_EQ(bench.command.scanParams[0].scanArea.width, 0u) << "the area comes after the device's answer";
  EXPECT_EQ(bench.command.scanParams[0].colorType, SCANCMD_COLOR_C24BIT);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.width, 16u);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.height, 4u);
}

TEST(ReadThread_v1, PutsTheAdjustedSettingsIntoItsOwnCopy) {
  auto settings = settingsFor(8, 4, 24);
  settings.plasticCard = 1;
  Bench bench(settings);
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.reader.m_userParam.duplexType, DUPLEXTYPE_SHORT_EDGE);
  EXPECT_EQ(bench.reader.m_userParam.resolution.x, 600u);
  EXPECT_EQ(bench.command.scanParams[0].resolution.x, 600u) << "the command is made of the adjusted settings";
  EXPECT_TRUE(bench.command.scanParams[0].duplexScan.isDuplex);
}

TEST(ReadThread_v1, RefusesADeviceOfTheOtherGeneration) {
  Bench bench;
  bench.command.versionAccepted = false;
  EXPECT_EQ(bench.start(), 0x1010000Cu);
  EXPECT_EQ(bench.calls.take(), Calls{"command.SelectCommandVersion 1"});
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 0u);
}

// The n-th SetScanParam fails.
class FailingSettings final : public fakes::FakeScanCommand {
 public:
  FailingSettings(fakes::CallList& calls, int n) : FakeScanCommand(calls), left_(n) {}
  QSRSLT SetScanParam(_SCANCMD_SCANPARAM* param) override {
    const QSRSLT result = FakeScanCommand::SetScanParam(param);
    return --left_ == 0 ? 0x70210002 : result;
  }

 private:
  int left_;
};

TEST(ReadThread_v1, StopsAtTheFirstStepThatFails) {
  const Calls upToFirstSet{"command.SelectCommandVersion 1", "command.SetScanParam"};
  Calls upToQuery = upToFirstSet;
  upToQuery.push_back("command.QueryDeviceScanParameter");
  Calls upToSecondSet = upToQuery;
  upToSecondSet.push_back("command.SetScanParam");

  for (const int n : {1, 2}) {
    Bench bench;
    FailingSettings command(bench.calls, n);
    command.scanParameterAnswer = {static_cast<long>(bench.actual.size()), bench.actual.data()};
    bench.reader.m_pScanCmd = &command;
    EXPECT_EQ(bench.reader.StartScan(), 0x70210002u) << n;
    EXPECT_EQ(bench.calls.take(), n == 1 ? upToFirstSet : upToSecondSet);
    EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 0u) << n;
  }
  for (const QSRSLT failure : {0x40500031u, 0x10240091u}) {
    Bench bench;
    bench.command.results["QueryDeviceScanParameter"] = failure;
    EXPECT_EQ(bench.start(), failure);
    EXPECT_EQ(bench.calls.take(), upToQuery);
    EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 0u);
  }
}

TEST(ReadThread_v1, KnowsWhatTheDeviceWouldSendAlsoWhenTheStartFails) {
  Bench bench;
  bench.command.results["StartScanning"] = 0x40500099;
  EXPECT_EQ(bench.start(), 0x40500099u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 300u);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.right, 8);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.unit, UNIT_PIXEL);
}

TEST(ReadThread_v1, TakesTheResolutionThatTheDeviceGrants) {
  Bench bench;
  bench.actual = FirstGeneration::actual(150, 200, 2550, 3300);
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.command.scanParams[0].resolution.x, 300u);
  EXPECT_EQ(bench.command.scanParams[1].resolution.x, 150u);
  EXPECT_EQ(bench.command.scanParams[1].resolution.y, 200u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 150u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.y, 200u);
  EXPECT_EQ(bench.reader.m_userParam.resolution.x, 300u);
}

TEST(ReadThread_v1, CutsTheAreaToTheLargestThatTheDeviceCanScanAndRoundsBehindThat) {
  Bench bench(settingsFor(3000, 4000, 24));
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.width, 2560u);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.height, 3300u);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.right, 2550);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.bottom, 3300);
}

TEST(ReadThread_v1, SendsAWidthThatIsAMultipleOfSixteenAndKeepsTheOneAskedFor) {
  for (int width = 1; width <= 50; ++width) {
    Bench bench(settingsFor(width, 5, 24));
    EXPECT_EQ(bench.start(), 0u);
    const auto sent = static_cast<std::uint32_t>((width + 15) / 16 * 16);
    EXPECT_EQ(bench.command.scanParams[1].scanArea.width, sent);
    EXPECT_EQ(bench.command.scanParams[1].scanArea.height, 5u);
    EXPECT_EQ(bench.reader.m_deviceParam.scanArea.right, width);
    EXPECT_EQ(bench.reader.m_userParam.scanArea.right, width);
  }
}

TEST(ReadThread_v1, NeverAsksForAColourProfile) {
  auto settings = settingsFor(8, 4, 24);
  settings.wantColorProfile = 1;
  Bench bench(settings);
  bench.reader.m_capability.imageProcFunc.colorProfileOutput = 2;
  EXPECT_EQ(bench.start(), 0u);
  const Calls calls = bench.calls.take();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "command.GetColorProfile"), 0);
}

TEST(ReadThread_v1, HasNoColourProfileForAnyDepth) {
  Bench bench;
  for (const int bpp : {0, 1, 8, 24}) {
    char somewhere = 0;
    void* data = &somewhere;
    int size = 77;
    EXPECT_EQ(bench.reader.GetColorProfile(&data, &size, bpp), 0x10100011u);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(size, 0);
    size = 77;
    data = &somewhere;
    EXPECT_EQ(bench.reader.GetColorProfile(nullptr, &size, bpp), 0x7010000Au);
    EXPECT_EQ(bench.reader.GetColorProfile(&data, nullptr, bpp), 0x7010000Au);
    EXPECT_EQ(size, 77);
    EXPECT_EQ(data, &somewhere);
  }
}

// --- The commands on the wire ----------------------------------------------------------------------------------------

TEST(ReadThread_v1, TheWireCarriesQAndThenTheSettingsAndTheStart) {
  ScanHarness harness(SCANCMD_GENERATION_1ST);
  harness.device.stream(v1::allPagesEnd());
  EXPECT_EQ(harness.scan(settingsFor(13, 7, 24)).last, ALLEND);
  const auto frames = harness.device.frames();
  ASSERT_EQ(harness.device.mnemonics(), (Calls{"Q", "I", "X"}));
  EXPECT_EQ(frames[1], "I\nR=300,300\nM=CGRAY\nD=SIN\nS=NORMAL_SCAN\n");
  EXPECT_EQ(frames[2].find("X\nR=300,300\nM=CGRAY\nC=JPEG\nJ=MID\nB=50\nN=50\nA=0,0,16,7\nD=SIN\nS=NORMAL_SCAN\n"), 0u)
      << frames[2];
}

}  // namespace
}  // namespace reception_test
