// What the core requires of QsDeviceAccs.so, its only way to a device.
//
// The module exports `extern "C" IDeviceAccess* CreateInstance()`. The object is released with delete. Nothing is
// thrown across this boundary; failures are told by return values, lastResult and lastDetail.
// Threads: one caller at a time; during a scan the read thread only.
#pragma once

#include "dev_identifier.h"

namespace orvalle_scan_api {

class IDeviceAccess {
 public:
  virtual ~IDeviceAccess() = default;

  // Called once, straight after loading, with the identifier of the driver.
  virtual void SetClientId(const char* id) = 0;

  // Two slots that the core never calls.
  virtual void ReservedFirst() = 0;
  virtual void ReservedSecond() = 0;

  // Opens the device: 0 on success, otherwise a non-zero code, lastDetail holding a detail for the log. Only this call
  // connects.
  virtual int Open(_DEV_IDENTIFIER& id) = 0;

  // Safe when not open.
  virtual void Close() = 0;

  // False as soon as the peer is known to be gone.
  virtual bool IsOpen() = 0;

  // Reads at most size bytes and returns their number; 0 on time-out (lastResult 0x40500031) or when nothing came
  // (lastResult 0), negative on failure. wanted always equals size. A time-out of 0 returns at once. A read of more
  // than 0x40000 bytes belongs to the image stream: there silence returns 0 with lastResult 0 after at most 250 ms, so
  // that an abort can go out, and 0x40500031 only after the whole time-out since the last byte.
  virtual int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) = 0;

  // Writes the whole frame and returns the bytes written, 0 or less on failure. flags is always 0.
  virtual int Write(const void* data, int size, int flags) = 0;

  // Outcome of the last call: 0 after success; a failure has the top digit 4. These two follow the virtual pointer.
  std::uint32_t lastResult = 0;
  std::uint32_t lastDetail = 0;
};

}  // namespace orvalle_scan_api
