// Moves the pages of a scan through the stages: JPEG decode, line decode, enhancement.
//
// It converts nothing itself. The read thread calls DecodeProcess again and again, and each call advances whatever can
// advance: a page goes into the pipeline, a finished stage hands its page to the next. Pages leave in the order in
// which they came. One object serves one scan.
// Threads: bound to the read thread, except Initialize and SetScanProcStatus, which come before that thread is started.
#pragma once

#include <deque>

#include "api/ModuleInstances.h"
#include "image/ImageEnhanceThread.h"
#include "image/JpegDecodeThread.h"
#include "image/ScanDecThread.h"
#include "scanner_capability.h"

namespace orvalle_scan_api {

class CDecodeManage {
 public:
  CDecodeManage() = default;
  // Ends the stages, then frees the modules.
  ~CDecodeManage();
  CDecodeManage(const CDecodeManage&) = delete;
  CDecodeManage& operator=(const CDecodeManage&) = delete;

  // Loads the modules: 0x20403001 JPEG, 0x30406007 lines, 0x20405004 enhancement, in this order.
  QSRSLT Initialize();

  // Not owned; outlives this object's work.
  void SetScanProcStatus(CScanError* scanStatus);
  CScanError* GetScanProcStatus();

  // Queues a received page. Not owned: it must live until it is settled or EndStages has returned. A page that was
  // handed over before is not queued again. False for null only.
  bool WriteImage(CImageData* page);

  // One step of the pipeline. A failure means that the scan cannot go on; what befalls a single page goes into the
  // scan's status from its stage.
  QSRSLT DecodeProcess(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device,
                       const QS_SCANNER_CAPABILITY& capability);

  // Forgets the waiting pages and joins the workers: afterwards no page is touched any more. The destructor does the
  // same; who deletes pages earlier calls this first.
  void EndStages();

 private:
  bool IsJpgHandlingMode(const CImageData* page);
  QSRSLT DecodeJpegImage(CImageData* page);
  QSRSLT DecodeImage(CImageData* page);
  QSRSLT JpegImageProcess(CImageData* page);
  QSRSLT ScanDecProcess(CImageData* page);
  QSRSLT ImageEnhanceProcess(CImageData* page);
  void ReadEnhancedImage();
  _IE_PARAM GetImageEnhanceParam() const;
  QSRSLT Queue(CImageProcThread_Base& stage, CImageData* page, QSRSLT refused);

  QS_SCANNER_PARAMETERS m_userParam{};
  QS_SCANNER_PARAMETERS m_deviceParam{};
  QS_SCANNER_CAPABILITY m_capability{};
  _IE_PARAM m_ieParam{};
  bool m_isJpgMode = false;
  bool m_ieParamReady = false;
  CScanError* m_pScanStatus = nullptr;
  CJpegDecodeThread m_cJpegDecThread;
  CScanDecThread m_cScanDecThread;
  CImageEnhanceThread m_cImgEnhanceThread;
  CModuleInstances m_modules;
  CWriteReadMutex_Base m_mutex;
  std::deque<CImageData*> m_queue;  // guarded by the write half of m_mutex
};

}  // namespace orvalle_scan_api
