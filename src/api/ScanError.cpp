#include "api/ScanError.h"

#include "foundation/OutputLog.h"

namespace orvalle_scan_api {
namespace {
constexpr QSRSLT kConnectionBit = 0x40000000;
}

void CScanError::Set(SCANSTATUS next) {
  const std::lock_guard<std::mutex> lock(mutex_);
  // The gate is tested once: storing a status in step 1 does not stop steps 2 to 6.
  if (stored_.status == 0) {
    if (next.status != 0) {  // 1
      stored_.status = next.status;
      g_ScanDevApiLog.WriteLog(1, "Set status = 0x%X", next.status);
    }
    if (next.lastReceivePageNo > stored_.lastReceivePageNo) {  // 2
      stored_.lastReceivePageNo = next.lastReceivePageNo;
      g_ScanDevApiLog.WriteLog(1, "Set lastReceivePageNo = %d", static_cast<int>(next.lastReceivePageNo));
    }
    // 3. A stored 0 wraps to the maximum, so that anything is taken; otherwise only a lower page, or 0, replaces it.
    if (stored_.errPageNo - 1U >= next.errPageNo) {
      stored_.errPageNo = next.errPageNo;
      g_ScanDevApiLog.WriteLog(1, "Set errPageNo = %d", static_cast<int>(next.errPageNo));
    }
    stored_.deviceErr = next.deviceErr;  // 4
    if (next.deviceErr != 0) g_ScanDevApiLog.WriteLog(1, "Set deviceErr = 0x%X", next.deviceErr);
    if (!stored_.betweenPageErr) {  // 5
      stored_.betweenPageErr = next.betweenPageErr;
      g_ScanDevApiLog.WriteLog(1, "Set betweenPageErr = %d", next.betweenPageErr);
    }
    if (!stored_.scanFinished) {  // 6
      stored_.scanFinished = next.scanFinished;
      g_ScanDevApiLog.WriteLog(1, "Set scanFinished = %d", next.scanFinished);
    }
  }
  // The first cancellation is taken also after a failure.
  if (!stored_.canceled) {
    stored_.canceled = next.canceled;
    stored_.cancelPageNo = next.cancelPageNo;
    canceled_.store(next.canceled, std::memory_order_release);
    g_ScanDevApiLog.WriteLog(1, "Set canceled = %d, cancelPageNo = %d", next.canceled,
                             static_cast<int>(next.cancelPageNo));
  }
}

SCANSTATUS CScanError::Get() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return stored_;
}

void CScanError::Reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  stored_ = {};
  canceled_.store(false, std::memory_order_release);
}

bool CScanError::IsErrorOccurred() const {
  const SCANSTATUS s = Get();
  return s.status != 0 || s.deviceErr != 0;
}

bool CScanError::IsDeviceErr() const { return Get().deviceErr != 0; }

bool CScanError::IsPcErr() const {
  const SCANSTATUS s = Get();
  return s.status != 0 && s.deviceErr == 0;
}

bool CScanError::IsConnectionErr() const { return (Get().status & kConnectionBit) != 0; }

bool CScanError::IsAllPageEnd() const { return Get().scanFinished; }

}  // namespace orvalle_scan_api
