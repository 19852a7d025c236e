// The reader of either generation without its thread: the test takes the thread's place.
#pragma once

#include <algorithm>
#include <memory>

#include "reception/ReadThread_v1.h"
#include "reception/ReadThread_v2.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {

using fakes::MemoryDevice;

template <class Reader>
class OpenReaderOf final : public Reader {
 public:
  ~OpenReaderOf() override { this->End(); }

  using CReadThread_base::GetCountOfNotXferedImageData;
  using CReadThread_base::m_capability;
  using CReadThread_base::m_deviceParam;
  using CReadThread_base::m_pDevAcs;
  using CReadThread_base::m_pScanCmd;
  using CReadThread_base::m_pScanError;
  using CReadThread_base::m_userParam;
  using CReadThread_base::pageAt;
  using CReadThread_base::pageCount;
  using Reader::DispatchReceivedData;
  using Reader::StartScan;
};

struct FirstGeneration {
  using Reader = CReadThread_v1;
  static constexpr SCANCMD_GENERATION kGeneration = SCANCMD_GENERATION_1ST;
  // Resolution, source, and the largest size: across in tenths of a millimetre and pixels, then down.
  static ByteString actual(unsigned dpiX, unsigned dpiY, unsigned maxWidthPx, unsigned maxHeightPx) {
    return fakes::text(std::to_string(dpiX) + "," + std::to_string(dpiY) + ",0,2159," + std::to_string(maxWidthPx) +
                       ",2794," + std::to_string(maxHeightPx));
  }
};
struct SecondGeneration {
  using Reader = CReadThread_v2;
  static constexpr SCANCMD_GENERATION kGeneration = SCANCMD_GENERATION_2ND;
  static ByteString actual(unsigned dpiX, unsigned dpiY, unsigned maxWidthPx, unsigned maxHeightPx) {
    return fakes::tag(0x2001, {2, 0}) + fakes::tag(0x2002, u16(dpiX) + u16(dpiY)) +
           fakes::tag(0x2003, u32(maxWidthPx) + u32(maxHeightPx)) + fakes::endTag();
  }
};

template <class Generation>
struct BenchOf {
  fakes::CallList calls;
  fakes::FakeScanCommand command{calls};
  MemoryDevice device;
  CScanError error;
  ByteString actual = Generation::actual(300, 300, 2550, 3300);
  ByteString profiles;
  OpenReaderOf<typename Generation::Reader> reader;
  ByteString escaped;
  QSRSLT result = 0;

  explicit BenchOf(const QS_SCANNER_PARAMETERS& settings = settingsFor(8, 4, 24)) {
    _DEV_IDENTIFIER id{0, 1, "memory"};
    device.Open(id);
    reader.m_userParam = settings;
    reader.m_capability.generation = Generation::kGeneration;
    reader.m_pDevAcs = &device;
    reader.m_pScanCmd = &command;
    reader.m_pScanError = &error;
  }

  QSRSLT start() {
    command.scanParameterAnswer = {static_cast<long>(actual.size()), actual.data()};
    command.profileAnswer = {static_cast<long>(profiles.size()), profiles.data()};
    return reader.StartScan();
  }
  // Hands the bytes to the dispatcher, from a block of exactly their size.
  SCANSTATUS dispatch(const ByteString& bytes) {
    const auto block = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    unsigned char* escape = nullptr;
    unsigned int escapeSize = 0;
    result = reader.DispatchReceivedData(block.get(), static_cast<unsigned>(bytes.size()), &escape, &escapeSize);
    escaped.assign(escape, escape + escapeSize);
    delete[] escape;
    return error.Get();
  }
  CImageData& page(unsigned pageNo) { return *reader.pageAt(pageNo); }
  CImageDataStore& store(unsigned pageNo) { return *page(pageNo).m_pCurrentStore; }
  ByteString bytesOf(unsigned pageNo) {
    const CImageDataStore& held = store(pageNo);
    return ByteString(held.GetData(), held.GetData() + held.GetDataSize());
  }
};

// A line as the page store keeps it.
inline ByteString lineRecord(std::uint32_t kind, std::uint32_t code, const ByteString& bytes) {
  return u32(kind) + u32(code) + u32(static_cast<std::uint32_t>(bytes.size())) + bytes;
}

}  // namespace reception_test
