// The transport, fed by a device whose reads are what the input says.
#include <algorithm>
#include <cstring>

#include "command/CmdDevAccess.h"
#include "foundation/bytes.h"
#include "fuzz/touch.h"

using namespace orvalle_scan_api;

namespace {

// Each read takes a control word from the input: how many bytes follow, or that the read fails or claims too many.
class FedDevice : public IDeviceAccess {
 public:
  explicit FedDevice(Bytes input) : input_(input) {}
  void SetClientId(const char*) override {}
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(_DEV_IDENTIFIER&) override { return 0; }
  void Close() override {}
  bool IsOpen() override { return true; }
  int Write(const void*, int size, int) override { return size; }
  int Read(void* buffer, unsigned int size, unsigned int, long) override {
    std::uint16_t control = 0;
    if (!input_.u16le(control)) return 0;
    if (control == 0xFFFF) return -1;
    Bytes bytes;
    if (!input_.take(std::min<std::size_t>({control & 0x0FFFu, size, input_.remaining()}), bytes)) return 0;
    if (!bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
    return control >= 0xF000 ? static_cast<int>(size + control) : static_cast<int>(bytes.size());
  }

 private:
  ByteCursor input_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4 || size > 1 << 16) return 0;
  FedDevice device(Bytes(data + 4, size - 4));
  CCmdDevAccess access;
  access.SetPointerToDeviceAccess(&device);
  // Twice, since the second answer must not be filled from the first.
  for (int round = 0; round < 2; ++round) {
    CCmdDevAccess::CMDRESINFO info{data[0] % 4, data[1] % 6, data[2] % 6, 0, nullptr, nullptr, 0};
    const QSRSLT result = access.RecvCmdResponse(info, 100, (data[3] & 1) != 0);
    if (info.signature != nullptr) touchAll(info.signature, static_cast<std::size_t>(info.signatureSize));
    if (result == 0 && info.dataSize > 0) touchAll(info.data, static_cast<std::size_t>(info.dataSize));
  }
  unsigned char first = 0, second = 0;
  access.RecvCmdResult((data[3] & 2) != 0 ? &first : nullptr, &second, 100);
  return 0;
}
