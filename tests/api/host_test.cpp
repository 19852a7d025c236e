// A host: it includes what a host includes and nothing else of ours, loads the library with dlopen, and works through
// the virtual interface.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "ScanCoreApi.h"

namespace {

using namespace orvalle_scan_api;

class Host : public testing::Test {
 protected:
  void SetUp() override {
    library_ = dlopen(QS_CORE_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library_, nullptr) << dlerror();
    create_ = reinterpret_cast<IScanCoreApi* (*)()>(dlsym(library_, "CreateInstance"));
    ASSERT_NE(create_, nullptr);
    core_.reset(create_());
    ASSERT_NE(core_, nullptr);
  }
  void TearDown() override {
    core_.reset();
    if (library_ != nullptr) {
      EXPECT_EQ(dlclose(library_), 0);
    }
  }

  void* library_ = nullptr;
  IScanCoreApi* (*create_)() = nullptr;
  std::unique_ptr<IScanCoreApi> core_;
};

TEST_F(Host, GetsANewObjectWithEachCall) {
  const std::unique_ptr<IScanCoreApi> other(create_());
  EXPECT_NE(other, nullptr);
  EXPECT_NE(other, core_);
}

TEST_F(Host, FollowsTheCallingOrder) {
  EXPECT_EQ(core_->Initialize(), QSRSLT_SUCCESS);
  int count = 3;
  EXPECT_EQ(core_->EnumerateDevice(nullptr, &count), QSRSLT_NO_ENUMERATION);
  EXPECT_EQ(count, 0);
  core_->ReleaseDeviceList();
  _QS_SELECT_DEVICE_INFO info{};
  EXPECT_EQ(core_->SelectDevice(info), QSRSLT_EMPTY_DEVICE);
  info.connectionType = 1;
  std::strcpy(info.primaryName, "unix:/nowhere/at/all");
  EXPECT_EQ(core_->SelectDevice(info), QSRSLT_SUCCESS);
  _QS_SELECT_DEVICE_INFO stored{};
  EXPECT_EQ(core_->GetSelectedDevInfo(&stored), QSRSLT_SUCCESS);
  EXPECT_STREQ(stored.primaryName, info.primaryName);
  EXPECT_FALSE(core_->CheckConnection()) << "nobody listens there";
  EXPECT_FALSE(core_->IsAdfInserted());
  tagQS_SCANNER_CAPABILITY_VER1 capability{};
  EXPECT_EQ(core_->QueryDeviceCapabilities(1, &capability), QSRSLT_CMD_NOT_OPENED);
  tagQS_PUSHSCAN_PARAMETERS push{};
  EXPECT_EQ(core_->GetPushScanParameter(1, &push), QSRSLT_CMD_NOT_OPENED);
  QS_SCANNER_PARAMETERS parameters{};
  parameters.resolution = {300, 300};
  EXPECT_EQ(core_->StartScanning(&parameters), QSRSLT_CMD_NOT_OPENED);
  EXPECT_EQ(core_->GetScanStatus(), READY);
  tagQS_SCAN_IMAGEDATA image{};
  int pageNo = 0;
  EXPECT_EQ(core_->ReadImageData(&image, &pageNo), QSRSLT_WRONG_STATE);
  core_->FreeImageData(1);
  EXPECT_EQ(core_->GetCurrentReceivedLines(1), 0);
  core_->UnInitialize();
}

// The order of the slots is what a host compiled long ago calls by: each is called here by its number.
TEST_F(Host, FindsEachOperationInItsSlot) {
  void** const slots = *reinterpret_cast<void***>(core_.get());
  const auto call = [&](int slot, auto... arguments) {
    return reinterpret_cast<QSRSLT (*)(void*, decltype(arguments)...)>(slots[slot])(core_.get(), arguments...);
  };
  const auto ask = [&](int slot) { return reinterpret_cast<bool (*)(void*)>(slots[slot])(core_.get()); };
  _QS_SELECT_DEVICE_INFO info{};
  info.connectionType = 2;
  std::strcpy(info.secondaryName, "unix:/nowhere");
  _QS_SELECT_DEVICE_INFO stored{};
  int number = 9;
  void* data = nullptr;
  tagQS_SCAN_IMAGEDATA image{};
  QS_SCANNER_PARAMETERS parameters{};

  EXPECT_EQ(call(4, static_cast<void*>(nullptr), &number), QSRSLT_NOT_INITIALIZED);  // EnumerateDevice
  EXPECT_EQ(number, 0);
  call(5);                                      // ReleaseDeviceList
  EXPECT_EQ(call(6, &info), QSRSLT_SUCCESS);    // SelectDevice
  EXPECT_EQ(call(7, &stored), QSRSLT_SUCCESS);  // GetSelectedDevInfo
  EXPECT_STREQ(stored.secondaryName, "unix:/nowhere");
  EXPECT_EQ(call(2), QSRSLT_SUCCESS);  // Initialize forgets the selection
  EXPECT_EQ(call(7, &stored), QSRSLT_SUCCESS);
  EXPECT_EQ(stored.connectionType, 0);
  EXPECT_FALSE(ask(8));                                     // CheckConnection
  EXPECT_EQ(call(9, 1u, &image), QSRSLT_NO_SCAN_COMMAND);   // QueryDeviceCapabilities
  EXPECT_EQ(call(10, &data, &number), QSRSLT_WRONG_STATE);  // GetIccProfile
  EXPECT_EQ(call(10, static_cast<void**>(nullptr), &number), QSRSLT_NULL_ARGUMENT);
  EXPECT_EQ(call(11, 1u, &image), QSRSLT_NOT_PREPARED);                             // GetPushScanParameter
  EXPECT_FALSE(ask(12));                                                            // IsAdfInserted
  EXPECT_EQ(call(13, &parameters), QSRSLT_NOT_PREPARED);                            // StartScanning
  EXPECT_EQ(call(14, static_cast<void*>(nullptr), &number), QSRSLT_NULL_ARGUMENT);  // ReadImageData
  EXPECT_EQ(call(14, &image, &number), QSRSLT_WRONG_STATE);
  EXPECT_TRUE(ask(15));                             // AbortScanning
  call(16, 1);                                      // FreeImageData
  EXPECT_EQ(call(17), static_cast<QSRSLT>(READY));  // GetScanStatus
  EXPECT_EQ(call(18, 1), 0u);                       // GetCurrentReceivedLines
  using Info = QS_BITMAP_IMAGE_INFO (*)(void*);
  EXPECT_EQ(reinterpret_cast<Info>(slots[19])(core_.get()).widthPixel, 0);  // GetScanBitmapImageInfo
  call(3);                                                                  // UnInitialize
  EXPECT_EQ(call(4, static_cast<void*>(nullptr), &number), QSRSLT_NOT_INITIALIZED);
  reinterpret_cast<void (*)(void*)>(slots[1])(core_.release());  // the deleting destructor
}

TEST_F(Host, MayLeaveWithoutGoodbye) { EXPECT_EQ(core_->Initialize(), QSRSLT_SUCCESS); }

}  // namespace
