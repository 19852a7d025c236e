// The slot numbers of every interface, as the compiler lays them out from the headers.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "api/IDeviceCaps.h"
#include "api/IScanProc.h"
#include "include/ScanCoreApi.h"
#include "include/modules/DeviceAccess.h"
#include "include/modules/ImageEnhance.h"
#include "include/modules/JpegDecode.h"
#include "include/modules/QvScnImgProc.h"
#include "include/modules/ScanDec.h"
#include "reception/Thread.h"

namespace {

using namespace orvalle_scan_api;

// A pointer to a virtual member holds the offset of its slot in the table.
template <class Member>
std::uintptr_t slotOf(Member member) {
  std::uintptr_t words[2];
  static_assert(sizeof words == sizeof member);
  std::memcpy(words, &member, sizeof words);
#if defined(__aarch64__)
  EXPECT_EQ(words[1] & 1, 1u) << "not virtual";
  return words[0] / sizeof(void*);
#else
  EXPECT_EQ(words[0] & 1, 1u) << "not virtual";
  return (words[0] - 1) / sizeof(void*);
#endif
}

// Each member stands one slot behind the one before.
template <class... Members>
void expectSlots(std::uintptr_t first, Members... members) {
  const std::uintptr_t slots[] = {slotOf(members)...};
  for (std::size_t i = 0; i < sizeof...(members); ++i) EXPECT_EQ(slots[i], first + i) << "the one in place " << i;
}

TEST(Slots, OfTheInterfaceThatAHostCalls) {
  using I = IScanCoreApi;
  expectSlots(2, &I::Initialize, &I::UnInitialize, &I::EnumerateDevice, &I::ReleaseDeviceList, &I::SelectDevice,
              &I::GetSelectedDevInfo, &I::CheckConnection, &I::QueryDeviceCapabilities, &I::GetIccProfile,
              &I::GetPushScanParameter, &I::IsAdfInserted, &I::StartScanning, &I::ReadImageData, &I::AbortScanning,
              &I::FreeImageData, &I::GetScanStatus, &I::GetCurrentReceivedLines, &I::GetScanBitmapImageInfo);
}

TEST(Slots, OfTheModulesInterfaces) {
  using Device = IDeviceAccess;
  expectSlots(2, &Device::SetClientId, &Device::ReservedFirst, &Device::ReservedSecond, &Device::Open, &Device::Close,
              &Device::IsOpen, &Device::Read, &Device::Write);
  using Lines = IScanDec;
  expectSlots(2, &Lines::Open, &Lines::SetOpenParam, &Lines::Write, &Lines::PageEnd, &Lines::Close);
  using Jpeg = IJpegDecode;
  expectSlots(2, &Jpeg::DecodePage, &Jpeg::EndPage, &Jpeg::OpenBand, &Jpeg::WriteBand, &Jpeg::ReadBandLine,
              &Jpeg::CloseBand, &Jpeg::GetDecodeMode);
  expectSlots(2, &IImageEnhance::Process, &IImageEnhance::GetResult);
  EXPECT_EQ(sizeof(IQvScnImgProc), sizeof(void*)) << "a table and nothing else";
}

// Its author may know the two fields by their place alone.
TEST(Slots, OfADeviceAreFollowedByItsTwoResults) {
  struct Device final : IDeviceAccess {
    void SetClientId(const char*) override {}
    void ReservedFirst() override {}
    void ReservedSecond() override {}
    int Open(_DEV_IDENTIFIER&) override { return 0; }
    void Close() override {}
    bool IsOpen() override { return false; }
    int Read(void*, unsigned int, unsigned int, long) override { return 0; }
    int Write(const void*, int, int) override { return 0; }
  } device;
  device.lastResult = 0x11223344;
  device.lastDetail = 0x55667788;
  std::uint32_t fields[2];
  std::memcpy(fields, reinterpret_cast<const char*>(&device) + sizeof(void*), sizeof fields);
  EXPECT_EQ(fields[0], 0x11223344u);
  EXPECT_EQ(fields[1], 0x55667788u);
}

TEST(Slots, OfTheScanProcess) {
  using I = IScanProc;
  expectSlots(2, &I::Initialize, &I::IsInitialized, &I::UnInitialize, &I::QueryPushScanSettings, &I::GetIccProfile,
              &I::StartScan, &I::AbortScan, &I::GetReadStatus, &I::ReadImageData, &I::FreeImageData,
              &I::GetCurrentReceivedLines, &I::GetScanBitmapImageInfo);
}

TEST(Slots, OfTheCapabilitiesWhichHaveNoDestructor) {
  using I = ICDeviceCaps;
  expectSlots(0, &I::Initialize, &I::UnInitialize, &I::IsInitialized, &I::GetDeviceCapability,
              &I::GetScannerCommandVersion, &I::GetOpticalResolution, &I::CreateResolutionList, &I::GetColorTypes,
              &I::GetPaperSource, &I::IsDuplexSupport, &I::GetMaxSize, &I::GetMinSize, &I::GetMarginSize,
              &I::GetPaperPosition, &I::GetCardSizeOrientation, &I::IsLongPaperSupport, &I::GetLongPaperMaxLength,
              &I::IsAutoCropSupport, &I::IsAutoPaperSizeSupport, &I::GetAutoPaperSizeCapability,
              &I::IsAutoDeskewSupport, &I::GetAutoDeskewCapability, &I::IsRemoveBackgroundColorSupport,
              &I::IsCarrierSheetSupport, &I::IsPlasticCardModeSupport, &I::IsMultifeedDetectSupport, &I::IsInkAio,
              &I::IsLaserAio, &I::IsDocumentScanner, &I::ScanCap2ScanCapV1);
}

TEST(Slots, OfAThreadWhichHasNoDestructor) {
  struct Thread : CThread_Base {
    static void expectOrder() {
      expectSlots(0, &CThread_Base::IsStarted, &CThread_Base::End, &CThread_Base::ForceEnd, &Thread::ThreadProc);
    }
    using CThread_Base::ThreadProc;
  };
  Thread::expectOrder();
}

}  // namespace
