// A module exports its factory and nothing else, and does not bring the core along.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>

#include "module_loader.h"
#include "modules/DeviceAccess.h"
#include "modules/ImageEnhance.h"
#include "modules/JpegDecode.h"
#include "modules/ScanDec.h"

namespace {

// What `nm` prints for the module's dynamic symbols, names only.
std::string exportsOf(const std::string& stem) {
  const std::string command = "nm -D --defined-only --format=just-symbols '" + module_test::modulePath(stem) + "'";
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return "nm did not run";
  std::string names;
  std::array<char, 256> part;
  while (std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr) names += part.data();
  return pclose(pipe) == 0 ? names : "nm failed";
}

class Module : public testing::TestWithParam<const char*> {};

TEST_P(Module, ExportsItsFactoryAlone) { EXPECT_EQ(exportsOf(GetParam()), "CreateInstance\n"); }

TEST_P(Module, DoesNotLoadTheCore) {
  ASSERT_NE(dlopen(module_test::modulePath(GetParam()).c_str(), RTLD_NOW | RTLD_LOCAL), nullptr) << dlerror();
  EXPECT_EQ(dlopen("libQsScanCoreApi.so.1", RTLD_NOW | RTLD_NOLOAD), nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, Module, testing::Values("QsDeviceAccs", "QsScanDecode", "QsJpegDecode", "QsImageEnhance"),
                         [](const auto& row) { return std::string(row.param); });

template <class Interface>
void expectNewObjects(const std::string& stem) {
  const auto first = module_test::createInstance<Interface>(stem);
  const auto second = module_test::createInstance<Interface>(stem);
  EXPECT_NE(first, nullptr) << stem;
  EXPECT_NE(second, nullptr) << stem;
  EXPECT_NE(first, second) << stem;
}

TEST(Modules, MakeANewObjectWithEachCall) {
  using namespace orvalle_scan_api;
  expectNewObjects<IDeviceAccess>("QsDeviceAccs");
  expectNewObjects<IScanDec>("QsScanDecode");
  expectNewObjects<IJpegDecode>("QsJpegDecode");
  expectNewObjects<IImageEnhance>("QsImageEnhance");
}

}  // namespace
