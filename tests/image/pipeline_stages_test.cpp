// How the pipeline hands pages, failures and the enhancement record from stage to stage. The real modules decode,
// unless a test puts a double in the place of one: the linker leads the pipeline's questions for its modules over here.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "tests/fakes/fake_image_enhance.h"
#include "tests/fakes/fake_jpeg_decode.h"
#include "tests/fakes/fake_scan_dec.h"
#include "tests/image/drawn_page.h"
#include "tests/image/pipeline_run.h"
#include "tests/modules/jpeg_pictures.h"

using namespace orvalle_scan_api;
using namespace fakes;

namespace {
IJpegDecode* jpegDouble = nullptr;
IScanDec* lineDouble = nullptr;
IImageEnhance* enhanceDouble = nullptr;
}  // namespace

extern "C" {
IJpegDecode* __real__ZN16orvalle_scan_api16CModuleInstances21GetJpegDecodeInstanceEv(CModuleInstances*);
IScanDec* __real__ZN16orvalle_scan_api16CModuleInstances18GetScanDecInstanceEv(CModuleInstances*);
IImageEnhance* __real__ZN16orvalle_scan_api16CModuleInstances23GetImageEnhanceInstanceEv(CModuleInstances*);

IJpegDecode* __wrap__ZN16orvalle_scan_api16CModuleInstances21GetJpegDecodeInstanceEv(CModuleInstances* self) {
  IJpegDecode* const real = __real__ZN16orvalle_scan_api16CModuleInstances21GetJpegDecodeInstanceEv(self);
  return jpegDouble != nullptr ? jpegDouble : real;
}
IScanDec* __wrap__ZN16orvalle_scan_api16CModuleInstances18GetScanDecInstanceEv(CModuleInstances* self) {
  IScanDec* const real = __real__ZN16orvalle_scan_api16CModuleInstances18GetScanDecInstanceEv(self);
  return lineDouble != nullptr ? lineDouble : real;
}
IImageEnhance* __wrap__ZN16orvalle_scan_api16CModuleInstances23GetImageEnhanceInstanceEv(CModuleInstances* self) {
  IImageEnhance* const real = __real__ZN16orvalle_scan_api16CModuleInstances23GetImageEnhanceInstanceEv(self);
  return enhanceDouble != nullptr ? enhanceDouble : real;
}
}

namespace {

constexpr int kWidth = 10;
constexpr int kHeight = 6;

struct Stages : testing::Test {
  FakeImageEnhance enhancer;  // outlive the pipeline
  FakeScanDec lines;
  FakeJpegDecode jpegs;
  std::vector<unsigned> enhanced;  // the marks of the pages that the enhancement module saw
  PipelineRun run;

  void SetUp() override {
    enhancer.onProcess = [this](CImageDataStore* store) {
      const PAGE_STORE_VIEW& view = ViewPageStore(store);
      enhanced.push_back(view.dataSize > 0 ? view.data[view.dataSize - 1] : 0);
    };
    enhanceDouble = &enhancer;
    ASSERT_TRUE(run.initialize());
    run.settings.device.scanArea = {0, 0, kWidth, kHeight, UNIT_PIXEL};
  }
  void TearDown() override {
    run.manage.EndStages();
    jpegDouble = nullptr;
    lineDouble = nullptr;
    enhanceDouble = nullptr;
  }

  // A page of colour lines filled with its mark.
  static DrawnPage marked(unsigned mark) {
    return {kWidth, kHeight, 24, ByteVector(kWidth * kHeight * 3, static_cast<std::uint8_t>(mark))};
  }
  CImageData& put(CImageData& page) {
    EXPECT_TRUE(run.manage.WriteImage(&page));
    return page;
  }
  CImageData& linePage(int recordCode = 3) {
    CImageData& page = run.newPage();
    page.m_rawData.StartWriteData(300, 300, kWidth, 0, COLORTYPE_COLOR24BIT, 5, 3);
    for (int y = 0; y < kHeight; ++y) {
      writeRecord(page.m_rawData, 5, recordCode, lineOf(marked(page.GetPageNo()), y));
    }
    page.m_rawData.FinishWriteData(false, 0);
    return put(page);
  }
  CImageData& jpegPage(const ByteVector& bytes) {
    CImageData& page = run.newPage();
    page.m_pCurrentStore = &page.m_jpegData;
    page.m_jpegData.StartWriteData(300, 300, kWidth, kHeight, COLORTYPE_COLOR24BIT, 5, 5);
    if (!bytes.empty()) page.m_jpegData.WriteJpegBlock(bytes.data(), static_cast<unsigned>(bytes.size()));
    page.m_jpegData.FinishWriteData(false, 0);
    return put(page);
  }
  CImageData& goodJpegPage() {
    return jpegPage(module_test::encodeJpeg(
        {kWidth, kHeight, 3, ByteVector(kWidth * kHeight * 3, static_cast<std::uint8_t>(run.pages.size() + 1))}));
  }
  bool isFinished(std::size_t page) const { return run.pages[page - 1]->m_finalData.IsWriteDataFinished(); }
  void expectMarked(std::size_t page) {
    const tagQS_SCAN_IMAGEDATA image = run.pages[page - 1]->GetFinalImage();
    ASSERT_NE(image.data, nullptr) << page;
    EXPECT_EQ(ByteVector(image.data, image.data + image.dataSize), bmpOf(marked(static_cast<unsigned>(page))));
  }
  void expectError(QSRSLT status, unsigned page) const {
    EXPECT_EQ(run.scanError.Get().status, status);
    EXPECT_EQ(run.scanError.Get().errPageNo, page);
  }
};

TEST_F(Stages, APageThatFailsAmongTheLinesIsNotEnhancedAndThoseBehindItStillFlow) {
  linePage();
  linePage(5);  // records of a code that is no line's
  linePage();
  linePage(5);  // the scan's status has no room for a second one
  linePage();
  run.runAll();
  expectError(0x01000000, 2);
  for (const std::size_t page : {1u, 3u, 5u}) expectMarked(page);
  for (const std::size_t page : {2u, 4u}) {
    EXPECT_FALSE(isFinished(page));
    EXPECT_EQ(run.pages[page - 1]->m_pCurrentStore, &run.pages[page - 1]->m_decodedData);
    EXPECT_TRUE(run.pages[page - 1]->IsEmpty());
  }
  EXPECT_EQ(enhanced, (std::vector<unsigned>{1, 3, 5}));
}

TEST_F(Stages, APageThatFailsAsAJpegIsNeitherDecodedFurtherNorEnhanced) {
  lineDouble = &lines;
  goodJpegPage();
  jpegPage({1, 2, 3, 4, 5});
  jpegPage({});  // an empty one
  goodJpegPage();
  run.runAll();
  expectError(0x10403003, 2);
  EXPECT_EQ(lines.opens, 2);
  EXPECT_EQ(enhancer.processes, 2);
  for (const std::size_t page : {1u, 4u}) EXPECT_TRUE(isFinished(page));
  for (const std::size_t page : {2u, 3u}) {
    EXPECT_FALSE(isFinished(page));
    EXPECT_EQ(run.pages[page - 1]->m_pCurrentStore, &run.pages[page - 1]->m_jpegData) << "as it came";
  }
}

TEST_F(Stages, AnEmptyPageOnTheRoadOfJpegsIsAnInvalidParameter) {
  jpegPage({});
  run.runAll();
  expectError(0x70403004, 1);
}

TEST_F(Stages, APageThatFailsInTheLastStageIsMarkedAndThoseBehindItStillFlow) {
  run.settings.user.resolution = {300 * 33, 300};  // a ratio that is not served
  linePage();
  run.runAll();
  run.settings.user.resolution = {300, 300};
  linePage();
  run.runAll();
  expectError(0x10703001, 1);
  EXPECT_FALSE(isFinished(1));
  EXPECT_EQ(run.pages[0]->m_pCurrentStore, &run.pages[0]->m_finalData);
  EXPECT_EQ(run.pages[0]->GetFinalImage().imageEnhanceTerminated, IMAGEENHANCE_FAILED);
  EXPECT_EQ(run.pages[1]->GetFinalImage().imageEnhanceTerminated, IMAGEENHANCE_NOT_TERMINATED);
  expectMarked(2);
}

TEST_F(Stages, AModuleThatFailsToEnhanceLeavesThePagesAsTheyAre) {
  enhancer.processAnswer = 0x10701002;
  for (int i = 0; i < 3; ++i) linePage();
  run.runAll();
  expectError(0, 0);
  for (const std::size_t page : {1u, 2u, 3u}) expectMarked(page);
  EXPECT_EQ(run.pages[2]->GetFinalImage().imageEnhanceTerminated, IMAGEENHANCE_NOT_TERMINATED);
}

TEST_F(Stages, TheModulesResultIsThePage) {
  const ByteVector pixels = countingPixels(3, 2, 8);
  enhancer.resultBmp = makeBmp(3, 2, 8, pixels);
  enhancer.result.bitPerPixel = 8;
  enhancer.result.resolutionX = enhancer.result.resolutionY = 300;
  enhancer.result.widthPixel = 3;
  enhancer.result.heightPixel = 2;
  CImageData& page = linePage();
  page.SetAutoColorBpp(8);
  run.runAll();
  EXPECT_EQ(enhancer.seenAutoColorMode, 1);
  EXPECT_EQ(enhancer.seenStore.colorType, COLORTYPE_COLOR24BIT) << "a page is of 24 bits until then";
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  EXPECT_EQ(ByteVector(image.data, image.data + image.dataSize), makeBmp(3, 2, 8, pixels));
  EXPECT_EQ(image.widthPixel, 3);
}

TEST_F(Stages, ABlankPagePassesAndIsToldByItsFlagAlone) {
  CImageData& page = linePage();
  page.SetIsBlankPage(true);
  linePage();
  run.runAll();
  EXPECT_TRUE(page.GetFinalImage().isBlankPage);
  EXPECT_EQ(page.GetFinalImage().data, nullptr);
  expectMarked(2);
}

TEST_F(Stages, TheEnhancementRecordIsThatOfTheFirstCall) {
  run.capability.commandVersion = 0x102;
  run.settings.user.noiseRemoval = {1, 4};
  run.settings.user.smoothing = {1, 2, 3};
  ASSERT_EQ(run.step(), 0u);  // no page yet
  run.capability.commandVersion = 0x101;
  run.settings.user.noiseRemoval = {1, 1};
  run.settings.user.smoothing = {};
  run.settings.user.edgeEnhance = {1, 5};
  linePage();
  linePage();
  run.runAll();
  EXPECT_EQ(enhancer.processes, 2);
  EXPECT_TRUE(enhancer.seenParam.doNoiseRemoval);
  EXPECT_EQ(enhancer.seenParam.noiseRemoval.value[1], 200);
  EXPECT_TRUE(enhancer.seenParam.doSmoothing);
  EXPECT_FALSE(enhancer.seenParam.doEdgeEnhance);
}

TEST_F(Stages, EachCallCollectsOnePageOfAStageAtMost) {
  lineDouble = &lines;
  for (int i = 0; i < 3; ++i) linePage();
  // A call starts the line stage, a later one collects it; the enhanced page is collected by a later one still.
  int calls = 0;
  std::vector<int> settledAt;
  while (settledAt.size() < 3 && calls < 1000000) {
    ASSERT_EQ(run.step(), 0u);
    ++calls;
    std::size_t settled = 0;
    for (const auto& page : run.pages) settled += page->IsSettled() ? 1 : 0;
    ASSERT_LE(settled, settledAt.size() + 1);
    if (settled > settledAt.size()) settledAt.push_back(calls);
  }
  ASSERT_EQ(settledAt.size(), 3u);
  EXPECT_LT(settledAt[0], settledAt[1]);
  EXPECT_LT(settledAt[1], settledAt[2]);
}

TEST_F(Stages, OfDifferentPagesWorkAtTheSameTime) {
  lineDouble = &lines;
  std::mutex mutex;
  std::condition_variable changed;
  bool isLineAtWork = false;
  bool isEnhanceAtWork = false;
  const auto meet = [&](bool& mine, const bool& other) {
    std::unique_lock<std::mutex> lock(mutex);
    mine = true;
    changed.notify_all();
    changed.wait_for(lock, std::chrono::seconds(20), [&] { return other; });
    EXPECT_TRUE(other);
  };
  int writes = 0;
  lines.onWrite = [&] {
    if (++writes == kHeight + 1) meet(isLineAtWork, isEnhanceAtWork);  // the second page's first line
  };
  enhancer.onProcess = [&](CImageDataStore*) {
    if (enhancer.processes == 1) meet(isEnhanceAtWork, isLineAtWork);
  };
  linePage();
  linePage();
  run.runAll();
  expectError(0, 0);
}

TEST_F(Stages, AStageWithAPageThatWaitsToBeCollectedStartsNoOther) {
  CScanDecThread stage;
  CImageData pages[2];
  for (unsigned i = 0; i < 2; ++i) {
    pages[i].SetPageNo(i + 1);
    pages[i].m_rawData.StartWriteData(300, 300, 2, 0, COLORTYPE_COLOR24BIT, 5, 3);
    writeRecord(pages[i].m_rawData, 5, 3, {1, 2, 3, 4, 5, 6});
    stage.WriteImage(&pages[i]);
  }
  std::atomic<bool> isAtWork{false};
  lines.onWrite = [&] { isAtWork = true; };
  ASSERT_EQ(stage.Start1Image(run.settings.user, run.settings.device, &run.scanError, &lines), 0u);
  while (!isAtWork) std::this_thread::yield();
  for (int i = 0; i < 10; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    ASSERT_EQ(stage.Start1Image(run.settings.user, run.settings.device, &run.scanError, &lines), 0u);
    EXPECT_TRUE(stage.IsStarted());
  }
  EXPECT_EQ(collect(stage), &pages[0]);
  EXPECT_EQ(lines.opens, 1);
}

TEST_F(Stages, APageOfLinesKeepsMovingAfterTheScanHasTurnedToJpegs) {
  jpegDouble = &jpegs;
  jpegs.pageBmp = makeBmp(kWidth, kHeight, 24, ByteVector(kWidth * kHeight * 3, 7));
  linePage();
  ASSERT_EQ(run.step(), 0u);
  goodJpegPage();
  run.runAll();
  expectError(0, 0);
  EXPECT_TRUE(isFinished(1) && isFinished(2));
}

}  // namespace
