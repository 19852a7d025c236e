// The read thread of a scan.
//
// One thread reads the device into one large buffer, hands the bytes to the dispatcher of the generation, drives the
// decode manager, watches for an abort, and answers two questions of the caller's thread: the state of page n, and page
// n itself. It owns the pages of the scan.
//
// The loop has no sleep of its own: after the device has closed it runs on the decode manager until End. It reads no
// further while too many pages wait in memory; the device is not told, it simply is not read.
//
// A failed read is recorded once the caller asks for a page behind those that were received whole: a recorded
// connection failure answers every page, and pages that came before it must not be lost to it.
//
// After a failure or a cancellation every page number is answered in bounded time: a finished page as it is, a page
// that a stage still has once it is finished, every other with the failure or the cancellation.
//
// Threads: Start, Abort, GetReadStatus, GetScanData, FreeScanData, GetColorProfile and End are the caller's; everything
// else runs on the read thread.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "command/scancmd_param.h"
#include "image/DecodeManage.h"
#include "parse/parse_records.h"
#include "reception/IReadThread.h"
#include "reception/ImageData.h"

namespace orvalle_scan_api {

class CReadThread_base : public IReadThread {
 public:
  ~CReadThread_base() override;

  //   0x70401009, 0x70401002  null argument     0x10401001  the thread could not be started
  //   or the code of the image module that could not be loaded
  QSRSLT Start(QS_SCANNER_PARAMETERS user, IScanCmd* command, IDeviceAccess* device, CScanError* error,
               QS_SCANNER_CAPABILITY capability) override;
  void Abort() override;
  SCANAPISTATUS GetReadStatus(unsigned int pageNo) override;
  CImageData* GetScanData(unsigned int pageNo, bool* canceled, unsigned int* result) override;
  void FreeScanData(unsigned int pageNo) override;

 protected:
  // What each generation provides, beside GetColorProfile.
  // Tells the device to send and fills m_deviceParam. Non-zero ends the scan.
  virtual QSRSLT StartScan() = 0;
  // Consumes whole records; *escape becomes a new array of the bytes that it could not use yet, null if there are none.
  // Records every failure itself.
  virtual QSRSLT DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                                      unsigned int* escapeSize) = 0;
  virtual QSRSLT ConvertDeviceErrorToQSRSLT(unsigned short deviceError) = 0;

  // The first steps of StartScan, the same for both generations: adjusts m_userParam, sends the wishes, takes what the
  // device will really do, and puts its resolution and the area that follows from it into the command record.
  //   0x1010000C  the generation could not be selected    or the code of the command that failed
  QSRSLT negotiate(_SCANCMD_SCANPARAM& command, ACTUALSCANPARAM& actual);

  // Kept: the unit is milliseconds in spite of the name. 0 or less keeps the old value.
  void SetScanTimeOutSec(long milliseconds);
  // A copy in a new array; null when out of memory.
  static unsigned char* SaveDataToEscapeBuffer(const unsigned char* data, unsigned int size);
  // Saves the bytes from position on as the dispatcher's *escape. 0x30401006, in status too, when out of memory.
  QSRSLT escapeRest(const unsigned char* position, const unsigned char* end, unsigned char** escape,
                    unsigned int* escapeSize, SCANSTATUS& status);
  // Removes the pages numbered firstPage or higher, the last first; 0 and 1 remove all.
  void ClearImageDataFromArray(unsigned int firstPage);
  // Ends and empties every page that has data, is not finished and was not handed over; *found tells whether there was
  // one. Does nothing for null.
  void TerminateDataReadProcess(bool* found);
  // Pages that hold memory and that the caller has not freed.
  unsigned int GetCountOfNotXferedImageData();
  bool IsImageDataWritableCondition();
  // Waits until fewer pages are held. 0, or the code that ends the wait: 0x30402001 when the pages in memory are all
  // behind one that is still open, so that the caller cannot free any.
  QSRSLT WaitForImageDataWritableCondition();

  // Ends the page and hands it to the decode manager; a height of 0 leaves the one that was counted. A page without
  // data becomes a blank one. 0 for a page that there is not or that has ended; 0x30404002 when it was refused.
  QSRSLT WriteImgeDataFinishProc(unsigned int pageNo, int height);
  // Ends every page that is still open, and counts all pages as received.
  void finishOpenPages(SCANSTATUS& status);
  // A width or height of the device, cut to what can be true.
  static int believedPixels(std::uint32_t told);

  // The page, or null. Read thread.
  CImageData* pageAt(unsigned int pageNo) const;
  unsigned int pageCount() const { return static_cast<unsigned>(m_imageDataArray.size()); }
  void appendPage(std::unique_ptr<CImageData> page);
  // The lowest page whose end has not come.
  unsigned int lowestOpenPage() const;

  // Set before the thread starts, or by StartScan before any page exists.
  QS_SCANNER_PARAMETERS m_userParam{};    // StartScan puts the adjusted settings here
  QS_SCANNER_PARAMETERS m_deviceParam{};  // what the device will send
  QS_SCANNER_CAPABILITY m_capability{};
  IDeviceAccess* m_pDevAcs = nullptr;  // not owned
  IScanCmd* m_pScanCmd = nullptr;      // not owned
  CScanError* m_pScanError = nullptr;  // not owned

  // Read thread only.
  CDecodeManage m_decodeManage;

 private:
  void ThreadProc() override;
  void runScan();
  void readLoop(unsigned char* buffer);
  int readDevice(unsigned char* buffer, unsigned int room);
  bool dispatch(unsigned char* buffer, unsigned int& carry);
  bool IsDeviceReadableCondition();
  void DeviceAccessInterfaceErrorProcess(QSRSLT code);
  void recordReadFailure();
  void noteAskedPage(unsigned int pageNo);
  bool callerCanFreePages() const;
  QSRSLT AbortScanProc();
  void AbortTimeoutProcess();
  SCANCMD_EJECTION_TYPE ejectionType() const;
  QSRSLT GetQSRSLTCode(const SCANSTATUS& status, bool* canceled);
  bool isDelivered(unsigned int pageNo, CImageData*& page, bool& pending);

  // Guarded by m_arrayMutex against the caller's thread; changed by the read thread only, which reads without it.
  std::vector<std::unique_ptr<CImageData>> m_imageDataArray;  // page number minus 1
  mutable std::mutex m_arrayMutex;
  std::size_t m_firstHeldPage = 0;  // read thread only: every page before it is done with and empty

  std::mutex m_abortMutex;
  bool m_abortTrigger = false;  // guarded by m_abortMutex
  bool m_abortSent = false;     // guarded by m_abortMutex
  long m_abortClock = 0;        // guarded by m_abortMutex; 0 while no abort is pending

  std::atomic<bool> m_loopEnded{false};        // no page moves any more
  std::atomic<unsigned int> m_askedPageNo{0};  // the highest page that the caller has asked for

  // Read thread only.
  long m_receiveTimeOut = 90000;          // ms
  QSRSLT m_readFailure = QSRSLT_SUCCESS;  // of the device, not recorded yet
};

}  // namespace orvalle_scan_api
