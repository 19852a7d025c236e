// The second-generation reader up to the start of the scan, and the colour profile.
#include <gtest/gtest.h>

#include <future>

#include "tests/reception/reader_bench.h"

namespace reception_test {
namespace {

using Bench = BenchOf<SecondGeneration>;
using OpenReader = OpenReaderOf<CReadThread_v2>;

using Calls = std::vector<std::string>;

TEST(ReadThread_v2, SendsTheSettingsTwiceAndThenStarts) {
  Bench bench;
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.calls.take(),
            (Calls{"command.SelectCommandVersion 2", "command.SetScanParam", "command.QueryDeviceScanParameter",
                   "command.SetScanParam", "command.StartScanning"}));
  ASSERT_EQ(bench.command.scanParams.size(), 2u);
  const _SCANCMD_SCANPARAM& first = bench.command.scanParams[0];
  EXPECT_EQ(first.scanArea.width, 0u) << "the area comes after the device's answer";
  const _SCANCMD_SCANPARAM& second = bench.command.scanParams[1];
  EXPECT_EQ(second.scanArea.width, 8u);
  EXPECT_EQ(second.scanArea.height, 4u);
}

TEST(ReadThread_v2, TakesTheResolutionThatTheDeviceGrants) {
  Bench bench;
  bench.actual = fakes::tag(0x2002, u16(150) + u16(200)) + fakes::tag(0x2003, u32(2550) + u32(3300)) + fakes::endTag();
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.command.scanParams[0].resolution.x, 300u);
  EXPECT_EQ(bench.command.scanParams[1].resolution.x, 150u);
  EXPECT_EQ(bench.command.scanParams[1].resolution.y, 200u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 150u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.y, 200u);
  EXPECT_EQ(bench.reader.m_userParam.resolution.x, 300u);
}

TEST(ReadThread_v2, CutsTheAreaToTheLargestThatTheDeviceCanScan) {
  Bench bench(settingsFor(3000, 4000, 24));
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.width, 2550u);
  EXPECT_EQ(bench.command.scanParams[1].scanArea.height, 3300u);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.right, 2550);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.bottom, 3300);
}

TEST(ReadThread_v2, PutsTheAdjustedSettingsIntoItsOwnCopy) {
  auto settings = settingsFor(8, 4, 24);
  settings.plasticCard = 1;
  Bench bench(settings);
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.reader.m_userParam.duplexType, DUPLEXTYPE_SHORT_EDGE);
}

TEST(ReadThread_v2, StopsAtTheFirstStepThatFails) {
  const struct {
    const char* step;
    QSRSLT result;
    Calls calls;
  } rows[] = {
      {"SetScanParam", 0x70210002, {"command.SelectCommandVersion 2", "command.SetScanParam"}},
      {"QueryDeviceScanParameter",
       0x40500031,
       {"command.SelectCommandVersion 2", "command.SetScanParam", "command.QueryDeviceScanParameter"}},
  };
  for (const auto& row : rows) {
    Bench bench;
    bench.command.results[row.step] = row.result;
    EXPECT_EQ(bench.start(), row.result) << row.step;
    EXPECT_EQ(bench.calls.take(), row.calls) << row.step;
    EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 0u);
  }
}

TEST(ReadThread_v2, RefusesADeviceOfTheOtherGeneration) {
  Bench bench;
  bench.command.versionAccepted = false;
  EXPECT_EQ(bench.start(), 0x1010000Cu);
  EXPECT_EQ(bench.calls.take(), Calls{"command.SelectCommandVersion 2"});
}

TEST(ReadThread_v2, KnowsWhatTheDeviceWouldSendAlsoWhenTheStartFails) {
  Bench bench;
  bench.command.results["StartScanning"] = 0x40500099;
  EXPECT_EQ(bench.start(), 0x40500099u);
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 300u);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.right, 8);
  EXPECT_EQ(bench.reader.m_deviceParam.scanArea.unit, UNIT_PIXEL);
}

TEST(ReadThread_v2, AsksForTheColourProfileIfItIsWantedAndOffered) {
  const struct {
    std::int32_t wanted;
    CAP offered;
    bool isAsked;
  } rows[] = {{1, 2, true}, {0xFF, 2, true}, {0x100, 2, false}, {0, 2, false}, {1, 1, false}, {1, 0, false}};
  for (const auto& row : rows) {
    auto settings = settingsFor(8, 4, 24);
    settings.wantColorProfile = row.wanted;
    Bench bench(settings);
    bench.reader.m_capability.imageProcFunc.colorProfileOutput = row.offered;
    EXPECT_EQ(bench.start(), 0u);
    const Calls calls = bench.calls.take();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "command.GetColorProfile"), row.isAsked)
        << row.wanted << " " << row.offered;
  }
}

TEST(ReadThread_v2, DoesNotStartWhenTheColourProfileCannotBeHad) {
  auto settings = settingsFor(8, 4, 24);
  settings.wantColorProfile = 1;
  Bench bench(settings);
  bench.reader.m_capability.imageProcFunc.colorProfileOutput = 2;
  bench.command.results["GetColorProfile"] = 0x10240091;
  EXPECT_EQ(bench.start(), 0x10240091u);
  EXPECT_EQ(bench.calls.take().back(), "command.GetColorProfile");
  EXPECT_EQ(bench.reader.m_deviceParam.resolution.x, 0u);
}

TEST(ReadThread_v2, HandsOutTheProfileOfThePagesDepth) {
  const ByteString color = fakes::text("colour");
  const ByteString gray = fakes::text("gray");
  const struct {
    const char* name;
    ByteString answer;
    int bpp;
    QSRSLT result;
    std::string profile;
  } rows[] = {
      {"both, colour", fakes::tag(0x3101, color) + fakes::tag(0x3102, gray), 24, 0, "colour"},
      {"both, grey", fakes::tag(0x3101, color) + fakes::tag(0x3102, gray), 8, 0, "gray"},
      {"both, no page yet", fakes::tag(0x3101, color) + fakes::tag(0x3102, gray), 0, 0, "gray"},
      {"grey alone, colour", fakes::tag(0x3102, gray), 24, 0, "gray"},
      {"empty colour, colour", fakes::tag(0x3101, {}) + fakes::tag(0x3102, gray), 24, 0, "gray"},
      {"colour alone, grey", fakes::tag(0x3101, color), 8, 0x1010000D, ""},
      {"colour alone, colour", fakes::tag(0x3101, color), 24, 0, "colour"},
      {"none", {}, 24, 0x1010000D, ""},
  };
  for (const auto& row : rows) {
    auto settings = settingsFor(8, 4, 24);
    settings.wantColorProfile = 1;
    Bench bench(settings);
    bench.reader.m_capability.imageProcFunc.colorProfileOutput = 2;
    bench.profiles = row.answer + fakes::endTag();
    ASSERT_EQ(bench.start(), 0u) << row.name;
    void* data = nullptr;
    int size = 0;
    EXPECT_EQ(bench.reader.GetColorProfile(&data, &size, row.bpp), row.result) << row.name;
    if (row.result == 0) {
      EXPECT_EQ(std::string(static_cast<char*>(data), static_cast<std::size_t>(size)), row.profile) << row.name;
    }
    EXPECT_EQ(bench.reader.GetColorProfile(nullptr, &size, 24), 0x7010000Au);
    EXPECT_EQ(bench.reader.GetColorProfile(&data, nullptr, 24), 0x7010000Au);
  }
}

TEST(ReadThread_v2, AnswersForTheProfileAtOnceWhileTheDeviceIsStillAskedForIt) {
  auto settings = settingsFor(8, 4, 24);
  settings.wantColorProfile = 1;
  Bench bench(settings);
  bench.reader.m_capability.imageProcFunc.colorProfileOutput = 2;
  bench.profiles = fakes::tag(0x3102, {1}) + fakes::endTag();
  std::promise<void> asked;
  std::promise<void> answered;
  bench.command.onGetColorProfile = [&] {
    asked.set_value();
    answered.get_future().wait();
  };
  auto started = std::async(std::launch::async, [&] { return bench.start(); });
  asked.get_future().wait();
  auto profile = std::async(std::launch::async, [&] {
    void* data = nullptr;
    int size = 0;
    return bench.reader.GetColorProfile(&data, &size, 8);
  });
  EXPECT_EQ(profile.wait_for(std::chrono::seconds(5)), std::future_status::ready);
  answered.set_value();
  EXPECT_EQ(profile.get(), 0x1010000Du);
  EXPECT_EQ(started.get(), 0u);
}

TEST(ReadThread_v2, HasNoProfileBeforeAScan) {
  OpenReader reader;
  void* data = nullptr;
  int size = 0;
  EXPECT_EQ(reader.GetColorProfile(&data, &size, 24), 0x1010000Du);
}

}  // namespace
}  // namespace reception_test
