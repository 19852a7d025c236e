// Memory that runs out, at every place where the module asks for some: a code, no result, and a page that can be
// enhanced once there is memory again.
#include <cstdlib>
#include <functional>

#include "image_enhance_harness.h"
#include "tests/fakes/failing_new.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

constexpr unsigned kNoMemory = 0x30701002;
constexpr unsigned kNotEnhanced = 0x10701001;  // the library under the module got none

_IE_PARAM everything(std::int32_t colorClass) {
  _IE_PARAM param{};
  param.colorClass = colorClass;
  param.doSmoothing = param.doThickText = param.doColorDrop = param.doDotTextCombine = param.doEdgeEnhance = true;
  param.doPunchHole = param.doNoiseRemoval = param.doLineRemoval = param.doAutoThreshold = param.doAutoRotate = true;
  param.colorDrop = {1, 0, 0, 0, 1, 1};
  param.punchHole = {{30, 30, 30, 30}, 3, 10, 0, 0, 0, 2, {0, 0}};
  param.noiseRemoval = {{100, 120, 120, 500, 1}};
  param.lineRemovalA.enable = param.lineRemovalB.enable = 1;
  param.thickTextLevel = param.edgeEnhanceLevel = 1;
  param.autoThreshold = {{50, 50}, 0, {7, 2}};
  return param;
}

Sheet lying() {
  Sheet sheet(760, 600);
  writeText(sheet, {20, 90, 720, 490}, 8);
  sheet.fill({20, 40, 700, 3}, kBlack);
  sheet.disc(60, 60, 36, kBlack);
  return scannedAt(turned(sheet, 1), 300, 200);
}

// The memory of the library's pictures: so many requests are granted.
long pixelRequests = 0;
long mostPixelRequests = 0;

void* pixelMemory(std::size_t bytes) { return ++pixelRequests > mostPixelRequests ? nullptr : std::malloc(bytes); }

class ImageEnhanceMemory : public testing::TestWithParam<std::int32_t> {
 protected:
  ImageEnhanceMemory() : sheet_(lying()), bmp_(bmpOf(sheet_)), store_(storeOf(bmp_, sheet_)) {
    severity_ = setMsgSeverity(L_SEVERITY_NONE);  // the library tells of what it does not get
  }
  ~ImageEnhanceMemory() override { setMsgSeverity(severity_); }

  unsigned process() { return module_->Process(reinterpret_cast<CImageDataStore*>(&store_), &param_, 0); }
  std::vector<std::uint8_t> result() {
    const tagQS_SCAN_IMAGEDATA image = module_->GetResult();
    return {image.data, image.data + image.dataSize};
  }

  std::unique_ptr<IImageEnhance> module_ = createInstance<IImageEnhance>("QsImageEnhance");
  Sheet sheet_;
  std::vector<std::uint8_t> bmp_;
  PAGE_STORE_VIEW store_;
  _IE_PARAM param_ = everything(GetParam());
  l_int32 severity_;
};

TEST_P(ImageEnhanceMemory, RunningOutInTheModuleIsAnAnswer) {
  ASSERT_EQ(process(), 0u);
  const std::vector<std::uint8_t> wanted = result();
  ASSERT_GT(module_->GetResult().widthPixel, sheet_.widthPx) << "the page was not turned";
  long refused = 0;
  for (long n = 1;; n += 1 + n / 16) {
    fakes::FailingNew failing(fakes::Threads::This, n);
    const unsigned code = process();
    if (!failing.stop()) break;
    ++refused;
    ASSERT_EQ(code, kNoMemory) << n;
    ASSERT_TRUE(result().empty()) << n;
  }
  EXPECT_GT(refused, 30);
  EXPECT_EQ(process(), 0u);
  EXPECT_TRUE(result() == wanted);
}

// Where one of its routines answers with less than all (a piece of ink fewer, a direction of text that is not certain),
// that is what the page shows. In every other case there is no result.
TEST_P(ImageEnhanceMemory, RunningOutInTheLibraryCostsAPageOrAPartOfAStep) {
  setPixMemoryManager(&pixelMemory, &std::free);
  const auto processWith = [&](long requests) {
    pixelRequests = 0;
    mostPixelRequests = requests;
    return process();
  };
  ASSERT_EQ(processWith(1000000), 0u);
  const long requests = pixelRequests;
  const std::vector<std::uint8_t> wanted = result();
  int refused = 0;
  for (long granted = 0; granted < requests; granted += 1 + granted / 16) {
    const unsigned code = processWith(granted);
    ASSERT_TRUE(code == 0 || code == kNotEnhanced) << granted;
    ASSERT_EQ(result().empty(), code != 0) << granted;
    refused += code == 0 ? 0 : 1;
  }
  EXPECT_GT(refused, 20);
  EXPECT_EQ(processWith(requests), 0u);
  EXPECT_TRUE(result() == wanted);
  setPixMemoryManager(&std::malloc, &std::free);
}

INSTANTIATE_TEST_SUITE_P(Classes, ImageEnhanceMemory, testing::Values(4, 1));

}  // namespace
