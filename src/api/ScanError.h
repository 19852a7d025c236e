// The one place where a scan's outcome is recorded: the first failure wins.
//
// CScanProc owns one object; the read thread and the workers write to it. The habit of every writer: Get a copy, change
// fields, Set it. The merge rules of Set are what make that safe against a concurrent writer.
// Threads: thread-safe; the lock is held for the copy only.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include "result_codes.h"

namespace orvalle_scan_api {

struct SCANSTATUS {
  QSRSLT status;                    // failure code, 0 when none; also 0x01000000 for cancellation
  std::uint32_t lastReceivePageNo;  // highest page fully received
  std::uint32_t errPageNo;          // the page that failed; 0 when none
  std::uint32_t cancelPageNo;       // the page at which cancellation took effect
  std::uint16_t deviceErr;          // the device's error code, 0 when none
  bool betweenPageErr;              // the failure fell between pages, no page is open
  bool scanFinished;                // the device reported the last page
  bool canceled;
};

class CScanError {
 public:
  // Merges, see the numbered rules in the source.
  void Set(SCANSTATUS next);
  SCANSTATUS Get() const;
  void Reset();

  bool IsErrorOccurred() const;  // status or deviceErr
  bool IsDeviceErr() const;      // deviceErr
  bool IsPcErr() const;          // status without deviceErr
  bool IsConnectionErr() const;  // bit 30 of status, which covers 0x4..., 0x5..., 0x6... and 0x7...
  bool IsCanceled() const { return canceled_.load(std::memory_order_acquire); }
  bool IsAllPageEnd() const;  // scanFinished

 private:
  mutable std::mutex mutex_;
  SCANSTATUS stored_{};                // guarded by mutex_
  std::atomic<bool> canceled_{false};  // stored_.canceled, for the question that takes no lock
};

}  // namespace orvalle_scan_api
