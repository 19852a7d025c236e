#include "modules/ImageEnhance.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "module_loader.h"

namespace {

using namespace orvalle_scan_api;

TEST(ImageEnhance, LeavesThePageAsItIsAndTellsSo) {
  const auto enhance = module_test::createInstance<IImageEnhance>("QsImageEnhance");
  ASSERT_NE(enhance, nullptr);
  std::vector<std::uint8_t> page(54 + 6, 0x55);
  const std::vector<std::uint8_t> before = page;
  PAGE_STORE_VIEW store{};
  store.data = page.data();
  store.dataSize = store.blockSize = static_cast<std::uint32_t>(page.size());
  _IE_PARAM parameters{};
  parameters.doColorDrop = parameters.doAutoTone = true;

  for (const int autoColorMode : {0, 1, 2}) {
    EXPECT_EQ(enhance->Process(reinterpret_cast<CImageDataStore*>(&store), &parameters, autoColorMode), 0u);
    const tagQS_SCAN_IMAGEDATA result = enhance->GetResult();
    EXPECT_EQ(result.data, nullptr);
    EXPECT_EQ(result.dataSize, 0u);
    EXPECT_EQ(result.bitPerPixel, 0);
    EXPECT_EQ(page, before);
  }
}

}  // namespace
