// The second-generation reader without its thread: the test takes the thread's place.
#pragma once

#include <algorithm>
#include <memory>

#include "reception/ReadThread_v2.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {

using fakes::MemoryDevice;

class OpenReader final : public CReadThread_v2 {
 public:
  ~OpenReader() override { End(); }

  using CReadThread_base::GetCountOfNotXferedImageData;
  using CReadThread_base::m_capability;
  using CReadThread_base::m_deviceParam;
  using CReadThread_base::m_pDevAcs;
  using CReadThread_base::m_pScanCmd;
  using CReadThread_base::m_pScanError;
  using CReadThread_base::m_userParam;
  using CReadThread_base::pageAt;
  using CReadThread_base::pageCount;
  using CReadThread_v2::DispatchReceivedData;
  using CReadThread_v2::StartScan;
};

struct Bench {
  fakes::CallList calls;
  fakes::FakeScanCommand command{calls};
  MemoryDevice device;
  CScanError error;
  ByteString actual = fakes::tag(0x2001, {2, 0}) + fakes::tag(0x2002, u16(300) + u16(300)) +
                      fakes::tag(0x2003, u32(2550) + u32(3300)) + fakes::endTag();
  ByteString profiles;
  OpenReader reader;
  ByteString escaped;
  QSRSLT result = 0;

  explicit Bench(const QS_SCANNER_PARAMETERS& settings = settingsFor(8, 4, 24)) {
    _DEV_IDENTIFIER id{0, 1, "memory"};
    device.Open(id);
    reader.m_userParam = settings;
    reader.m_capability.generation = SCANCMD_GENERATION_2ND;
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
