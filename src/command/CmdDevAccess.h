// The one place where a command leaves the library and a short answer comes back.
//
// A command frame is 0x1B, mnemonic, 0x0A, lines KEY=VALUE each ended by 0x0A, and the single byte 0x80. A framed
// answer is a header of result bytes, signature and little-endian length, then the body. One command, then one answer;
// there is no sequence number, no checksum and no retry here. The image stream does not pass through this class.
// Threads: no lock; one thread at a time.
#pragma once

#include <memory>

#include "modules/DeviceAccess.h"
#include "result_codes.h"

namespace orvalle_scan_api {

class CCmdDevAccess {
 public:
  // Shape of the expected header, filled by the caller, and what came.
  struct CMDRESINFO {
    std::int32_t resultSize;     // result bytes at the head, 0 or 1 in practice
    std::int32_t signatureSize;  // 0, 2 or 3
    std::int32_t lengthSize;     // width of the length field: 1 unsigned, 2 signed, 4
    std::uint8_t result;         // first result byte
    std::uint8_t* signature;     // into the receive buffer, valid until the next receive or CloseDevice
    std::uint8_t* data;          // the same
    std::int32_t dataSize;       // bytes of the body
  };

  CCmdDevAccess() = default;
  ~CCmdDevAccess() { FreeReceiveBuffer(); }
  CCmdDevAccess(const CCmdDevAccess&) = delete;
  CCmdDevAccess& operator=(const CCmdDevAccess&) = delete;

  // Stores device if none is stored yet, and opens the stored one.
  bool OpenDevice(IDeviceAccess* device, _DEV_IDENTIFIER& id);
  // For a device that is open already. A stored pointer is never replaced.
  void SetPointerToDeviceAccess(IDeviceAccess* device);
  bool IsOpenDevice();
  // Closes an open device and forgets it together with the receive buffer; a stored device that is not open is kept.
  // Always 0.
  QSRSLT CloseDevice();

  // One write of the whole frame. The result is the device's lastResult, whatever the write returned.
  QSRSLT SendCommand(const char* bytes, int size);

  // Reads until header and body are there. An answer whose body is empty never completes: the call ends by time-out.
  //   0x70210002  header or time-out below 1     0x10210032  larger than the buffer; the rest has been drained
  //   or the device's lastResult
  QSRSLT RecvCmdResponse(CMDRESINFO& info, long timeOutMs, bool lengthCountsItself);

  // One read of one byte (first null: it goes to second) or two.
  QSRSLT RecvCmdResult(unsigned char* first, unsigned char* second, long timeOutMs);

  unsigned char* AllocReceiveBuffer();
  void FreeReceiveBuffer();
  // True if a length field was read. bytes holds at least the header.
  static bool GetCmdResHeaderInfo(CMDRESINFO& info, unsigned char* bytes, bool lengthCountsItself);
  // Reads and drops what the device still sends.
  void DiscardsRemainData();
  void StartDiagnosisTool() {}

 private:
  QSRSLT receive(CMDRESINFO& info, int headerSize, long timeOutMs, bool lengthCountsItself, unsigned char*& end);

  IDeviceAccess* device_ = nullptr;  // not owned
  std::unique_ptr<unsigned char[]> buffer_;
  int bufferSize_ = 0;
};

}  // namespace orvalle_scan_api
