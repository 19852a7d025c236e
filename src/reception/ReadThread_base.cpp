#include "reception/ReadThread_base.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <new>
#include <system_error>

#include "foundation/qvtcl/TTime.h"
#include "foundation/trace.h"
#include "settings/AdjustScanSetting.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

constexpr unsigned int kReadBufferBytes = 0xA00000;
constexpr unsigned long kPollMs = 100;
// Processor time of the process, which the loop without a sleep makes comparable to the time on the wall.
constexpr long kAbortLimitTicks = 10000000;

}  // namespace

CReadThread_base::~CReadThread_base() {
  End();
  m_decodeManage.EndStages();
  ClearImageDataFromArray(0);
}

QSRSLT CReadThread_base::Start(QS_SCANNER_PARAMETERS user, IScanCmd* command, IDeviceAccess* device, CScanError* error,
                               QS_SCANNER_CAPABILITY capability) {
  Trace trace("Start");
  if (command == nullptr) return trace.ret(QSRSLT_READ_NULL_SCAN_COMMAND);
  if (device == nullptr) return trace.ret(QSRSLT_READ_NULL_DEVICE_ACCESS);
  if (IsStarted()) return trace.ret(QSRSLT_SUCCESS);
  if (const QSRSLT result = m_decodeManage.Initialize(); result != 0) return trace.ret(result);
  m_pScanCmd = command;
  m_pDevAcs = device;
  m_pScanError = error;
  m_userParam = user;
  m_capability = capability;
  m_decodeManage.SetScanProcStatus(error);
  m_decodeManage.EndStages();
  ClearImageDataFromArray(0);
  {
    // Here and nowhere else, so that an abort that comes before the thread's first step is not lost.
    const std::lock_guard<std::mutex> lock(m_abortMutex);
    m_abortTrigger = false;
    m_abortSent = false;
    m_abortClock = 0;
  }
  m_loopEnded = false;
  m_askedPageNo = 0;
  m_readFailure = QSRSLT_SUCCESS;
  bool started = false;
  try {
    started = CThread_Base::Start();
  } catch (const std::system_error&) {
    started = false;
  }
  if (!started) {
    g_ScanDevApiLog.WriteLog(0, "Start thread failed");
    return trace.ret(QSRSLT_READ_THREAD_NOT_STARTED);
  }
  return trace.ret(QSRSLT_SUCCESS);
}

void CReadThread_base::Abort() {
  const std::lock_guard<std::mutex> lock(m_abortMutex);
  m_abortTrigger = true;
}

void CReadThread_base::ThreadProc() {
  Trace trace("ThreadProc");
  try {
    runScan();
  } catch (...) {
    SCANSTATUS status = m_pScanError->Get();
    status.status = QSRSLT_NO_PAGE_MEMORY;
    status.errPageNo = lowestOpenPage();
    m_pScanError->Set(status);
  }
  g_ScanDevApiLog.WriteLog(1, "Close Device Access");
  m_pDevAcs->Close();
  m_loopEnded = true;
}

void CReadThread_base::runScan() {
  if (const QSRSLT result = StartScan(); result != 0) {
    SCANSTATUS status = m_pScanError->Get();
    status.status = result;
    status.betweenPageErr = true;
    m_pScanError->Set(status);
    return;
  }
  const std::unique_ptr<unsigned char[]> buffer(new (std::nothrow) unsigned char[kReadBufferBytes]);
  if (buffer == nullptr) {
    SCANSTATUS status = m_pScanError->Get();
    status.status = QSRSLT_NO_ESCAPE_BUFFER;
    status.errPageNo = lowestOpenPage();
    m_pScanError->Set(status);
    return;
  }
  readLoop(buffer.get());
  g_ScanDevApiLog.WriteLog(1, "Read Thread loop end");
}

void CReadThread_base::readLoop(unsigned char* buffer) {
  unsigned int carry = 0;  // bytes of a partial record at the start of the buffer
  do {
    AbortScanProc();
    int received = 0;
    if (IsDeviceReadableCondition()) received = readDevice(buffer + carry, kReadBufferBytes - carry);
    recordReadFailure();
    AbortTimeoutProcess();
    if (!m_pScanError->IsErrorOccurred()) {
      if (received > 0) {
        g_ScanDevApiLog.WriteLog(1, "%d bytes data received", received);
        carry += static_cast<unsigned>(received);
        if (!dispatch(buffer, carry)) DeviceAccessInterfaceErrorProcess(QSRSLT_UNKNOWN_DATA);
      } else {
        g_ScanDevApiLog.WriteLog(2, "0 bytes received");
      }
    }
    if (const QSRSLT result = m_decodeManage.DecodeProcess(m_userParam, m_deviceParam, m_capability); result != 0) {
      m_end = true;
      SCANSTATUS status{};
      status.status = result;
      status.errPageNo = lowestOpenPage();
      m_pScanError->Set(status);
    }
    std::this_thread::yield();
  } while (!m_end);
}

int CReadThread_base::readDevice(unsigned char* buffer, unsigned int room) {
  const int received = m_pDevAcs->Read(buffer, room, room, m_receiveTimeOut);
  const QSRSLT lastResult = m_pDevAcs->lastResult;
  if (received == 0 && lastResult == QSRSLT_DEVICE_READ_TIME_OUT) {
    g_ScanDevApiLog.WriteLog(1, "Receive Time out occured");
    m_readFailure = QSRSLT_RECEIVE_TIME_OUT;
  } else if (received < 0) {
    g_ScanDevApiLog.WriteLog(0, "Error occurred during receive data. ret = %d(%d)", static_cast<int>(lastResult),
                             static_cast<int>(m_pDevAcs->lastDetail));
    m_readFailure = lastResult;
  }
  return std::min(received, static_cast<int>(room));
}

// False when a record fills the whole buffer and still is not complete: it never will be.
bool CReadThread_base::dispatch(unsigned char* buffer, unsigned int& carry) {
  unsigned char* escape = nullptr;
  unsigned int escapeSize = 0;
  DispatchReceivedData(buffer, carry, &escape, &escapeSize);
  carry = 0;
  if (escape != nullptr) {
    std::memcpy(buffer, escape, escapeSize);
    delete[] escape;
    carry = escapeSize;
  }
  return carry < kReadBufferBytes;
}

void CReadThread_base::recordReadFailure() {
  if (m_readFailure == 0) return;
  const unsigned int receivedPages = lowestOpenPage() - 1;
  if (receivedPages > 0 && m_askedPageNo <= receivedPages) return;
  DeviceAccessInterfaceErrorProcess(m_readFailure);
  m_readFailure = QSRSLT_SUCCESS;
}

bool CReadThread_base::IsDeviceReadableCondition() {
  return m_readFailure == 0 && m_pDevAcs->IsOpen() && !m_pScanError->IsConnectionErr() &&
         !m_pScanError->IsDeviceErr() && !m_pScanError->IsCanceled();
}

void CReadThread_base::DeviceAccessInterfaceErrorProcess(QSRSLT code) {
  if (m_pScanError == nullptr) return;
  SCANSTATUS status = m_pScanError->Get();
  status.status = code;
  m_pScanError->Set(status);
}

SCANCMD_EJECTION_TYPE CReadThread_base::ejectionType() const {
  const auto& cancel = m_capability.baseFunc.cancelSystem;
  if (cancel.cap != 2) return SCANCMD_EJECTION_UNSPECIFIED;
  if (cancel.ejectNone != 0) return SCANCMD_EJECTION_NO;
  if (cancel.ejectOne != 0) return SCANCMD_EJECTION_ONE;
  return static_cast<SCANCMD_EJECTION_TYPE>(cancel.ejectAll);
}

// The lock is not held while the command goes out, so that Abort returns at once whatever the device does. A failed
// command is not repeated: the trigger is clear by then.
QSRSLT CReadThread_base::AbortScanProc() {
  {
    const std::lock_guard<std::mutex> lock(m_abortMutex);
    if (!m_abortTrigger || m_abortSent) return QSRSLT_SUCCESS;
    g_ScanDevApiLog.WriteLog(1, "Abort Trigger is true");
    m_abortTrigger = false;
  }
  // There is nothing to stop any more; the command would only open the device again.
  if (m_pScanError->IsAllPageEnd()) return QSRSLT_SUCCESS;
  const QSRSLT result = m_pScanCmd->AbortScanning(ejectionType());
  if (result == 0) {
    const std::lock_guard<std::mutex> lock(m_abortMutex);
    m_abortSent = true;
    m_abortClock = std::clock();
  } else if (!m_pDevAcs->IsOpen()) {
    // The device was lost over the command. It is read no more, so that no read would ever tell.
    m_readFailure = result;
  }
  return result;
}

void CReadThread_base::AbortTimeoutProcess() {
  {
    const std::lock_guard<std::mutex> lock(m_abortMutex);
    if (m_abortClock <= 0 || std::clock() - m_abortClock <= kAbortLimitTicks) return;
    g_ScanDevApiLog.WriteLog(1, "Abort Time out occured");
    m_abortClock = 0;
  }
  SCANSTATUS status = m_pScanError->Get();
  status.status = QSRSLT_CANCELED;
  status.canceled = true;
  status.cancelPageNo = status.lastReceivePageNo + 1;
  m_pScanError->Set(status);
  m_pDevAcs->Close();
}

void CReadThread_base::noteAskedPage(unsigned int pageNo) {
  // One thread writes it.
  if (pageNo > m_askedPageNo) m_askedPageNo = pageNo;
}

SCANAPISTATUS CReadThread_base::GetReadStatus(unsigned int pageNo) {
  const auto answer = [](SCANAPISTATUS status, const char* text) {
    g_ScanDevApiLog.WriteLog(2, "%s", text);
    return status;
  };
  if (!IsStarted()) return READY;
  noteAskedPage(pageNo);
  const SCANSTATUS s = m_pScanError->Get();
  const bool failed = s.status != 0 || s.deviceErr != 0;
  const bool over = failed || s.canceled || m_loopEnded;
  if (s.cancelPageNo == pageNo || (s.canceled && s.cancelPageNo != 0 && pageNo >= s.cancelPageNo)) {
    return answer(XFERCANCELED, "cancel return XFERCANCELED");
  }
  if (m_pScanError->IsConnectionErr()) return answer(XFERREADY, "connection error return XFERREADY");

  const std::lock_guard<std::mutex> lock(m_arrayMutex);
  if (const CImageData* page = pageAt(pageNo); page != nullptr) {
    const std::int32_t finished = page->m_finalData.GetStatus();
    if (finished >= IMAGEDATA_FINISHED) {
      g_ScanDevApiLog.WriteLog(2, "Finished return XFERREADY. finishstatus = %d", finished);
      return XFERREADY;
    }
    if (page->GetIsBlankPage()) return answer(XFERREADY, "Blank Page return XFERREADY");
    // Nothing moves this page any more: its data ended with the scan, or it left the stages unfinished.
    const bool stuck = over && (!page->IsHandedOver() || page->IsSettled() || m_loopEnded);
    if (s.errPageNo != pageNo && !stuck) return answer(RECEIVING, "return RECEIVING");
    if (stuck && s.canceled) return answer(XFERCANCELED, "cancel return XFERCANCELED");
    return answer(XFERREADY, "Page process error return XFERREADY");
  }
  if (s.betweenPageErr && (failed || s.canceled)) return answer(XFERREADY, "BetweenPage return XFERREADY");
  if (s.errPageNo == pageNo) return answer(XFERREADY, "Page receive error return XFERREADY");
  if (s.scanFinished) return answer(ALLEND, "All Page End return ALLEND");
  if (over) return answer(XFERREADY, "Page receive error return XFERREADY");
  return answer(RECEIVING, "Receiving return RECEIVING");
}

// Whether the page can be handed out; pending: a stage still has it.
bool CReadThread_base::isDelivered(unsigned int pageNo, CImageData*& page, bool& pending) {
  const std::lock_guard<std::mutex> lock(m_arrayMutex);
  page = pageAt(pageNo);
  pending = false;
  if (page == nullptr) return false;
  const std::int32_t finalStatus = page->m_finalData.GetStatus();
  if (finalStatus == IMAGEDATA_FINISHED || finalStatus == IMAGEDATA_DISCARDED) {
    g_ScanDevApiLog.WriteLog(2, "finalStatus = %d", finalStatus);
    return true;
  }
  if (page->GetIsBlankPage()) {
    g_ScanDevApiLog.WriteLog(2, "Blank page");
    return true;
  }
  pending = page->IsHandedOver() && !page->IsSettled() && !m_loopEnded;
  return false;
}

CImageData* CReadThread_base::GetScanData(unsigned int pageNo, bool* canceled, unsigned int* result) {
  if (m_pScanError == nullptr || canceled == nullptr || result == nullptr) return nullptr;
  noteAskedPage(pageNo);
  for (;;) {
    // Before the page is looked at: what is true here stays true.
    const bool loopEnded = m_loopEnded;
    const SCANSTATUS s = m_pScanError->Get();
    const bool failed = s.status != 0 || s.deviceErr != 0;
    bool stop = false;
    if (s.canceled) {
      *canceled = true;
      stop = true;
    } else if (failed) {
      g_ScanDevApiLog.WriteLog(2, "Receiving return RECEIVING");
      // A device error on a later page does not stop the delivery of the earlier ones.
      if (m_pScanError->IsPcErr() || s.errPageNo == pageNo || m_pScanError->IsConnectionErr()) {
        *result = GetQSRSLTCode(s, canceled);
        g_ScanDevApiLog.WriteLog(1, "ErrCode = %d, Canclled = %d", static_cast<int>(*result), *canceled);
        return nullptr;
      }
    }
    CImageData* page = nullptr;
    bool pending = false;
    if (isDelivered(pageNo, page, pending)) return page;
    if (stop && !pending) return page;
    if (!pending && (failed || loopEnded || (s.scanFinished && page == nullptr))) {
      *result = failed ? GetQSRSLTCode(s, canceled) : QSRSLT_WRONG_STATE;
      return nullptr;
    }
    qvtcl::CTTime().Sleep_ms(kPollMs);
  }
}

QSRSLT CReadThread_base::GetQSRSLTCode(const SCANSTATUS& status, bool* canceled) {
  if (canceled == nullptr) return QSRSLT_SUCCESS;
  if (status.canceled) {
    *canceled = true;
    return QSRSLT_SUCCESS;
  }
  return status.deviceErr != 0 ? ConvertDeviceErrorToQSRSLT(status.deviceErr) : status.status;
}

void CReadThread_base::FreeScanData(unsigned int pageNo) {
  const std::lock_guard<std::mutex> lock(m_arrayMutex);
  CImageData* page = pageAt(pageNo);
  if (page == nullptr) return;
  page->FreeWhenSettled();
  g_ScanDevApiLog.WriteLog(2, "Free [%d]the page", static_cast<int>(pageNo));
}

void CReadThread_base::SetScanTimeOutSec(long milliseconds) {
  if (milliseconds > 0) m_receiveTimeOut = milliseconds;
}

unsigned char* CReadThread_base::SaveDataToEscapeBuffer(const unsigned char* data, unsigned int size) {
  auto* copy = new (std::nothrow) unsigned char[size];
  if (copy != nullptr) std::memcpy(copy, data, size);
  return copy;
}

// Leaves the bytes from position on for the next read.
QSRSLT CReadThread_base::escapeRest(const unsigned char* position, const unsigned char* end, unsigned char** escape,
                                    unsigned int* escapeSize, SCANSTATUS& status) {
  *escape = nullptr;
  *escapeSize = 0;
  if (position >= end) return QSRSLT_SUCCESS;
  const auto rest = static_cast<unsigned>(end - position);
  *escape = SaveDataToEscapeBuffer(position, rest);
  if (*escape == nullptr) {
    g_ScanDevApiLog.WriteLog(0, "Alloc escape buffer failed");
    status.status = QSRSLT_NO_ESCAPE_BUFFER;
    status.errPageNo = lowestOpenPage();
    return QSRSLT_NO_ESCAPE_BUFFER;
  }
  g_ScanDevApiLog.WriteLog(0, "Escape %d bytes data", static_cast<int>(rest));
  *escapeSize = rest;
  return QSRSLT_SUCCESS;
}

QSRSLT CReadThread_base::negotiate(_SCANCMD_SCANPARAM& command, ACTUALSCANPARAM& actual) {
  CScanParam settings;
  m_userParam = CAdjustScanSetting().ConvertUserSetting(m_userParam, m_capability);  // 1
  command = settings.ConvertScanPramToCmdParam(m_userParam, m_capability);           // 2
  if (!m_pScanCmd->SelectCommandVersion(m_capability.generation)) {                  // 3
    return QSRSLT_SCAN_GENERATION;
  }
  if (const QSRSLT result = m_pScanCmd->SetScanParam(&command); result != 0) return result;                   // 4
  if (const QSRSLT result = settings.GetDeviceActualParam(m_pScanCmd, &actual, m_capability); result != 0) {  // 5
    g_ScanDevApiLog.WriteLog(0, "Get Device Param failed");
    return result;
  }
  command.resolution.x = actual.resolution.x;  // 6
  command.resolution.y = actual.resolution.y;
  command.scanArea = settings.CalcScanCmdArea(actual.resolution.x, actual.resolution.y, actual.paperSource,
                                              actual.maxSizePixel, m_userParam, m_capability);
  command.scanArea = settings.ReviseScanCmd_Area(command.scanArea, actual, m_capability);
  return QSRSLT_SUCCESS;
}

}  // namespace orvalle_scan_api
