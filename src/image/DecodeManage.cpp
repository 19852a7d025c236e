#include "image/DecodeManage.h"

#include "image/enhance_param.h"

namespace orvalle_scan_api {

CDecodeManage::~CDecodeManage() {
  // The modules are destroyed before the stages, which use them.
  EndStages();
}

void CDecodeManage::EndStages() {
  {
    const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
    m_queue.clear();
  }
  m_cJpegDecThread.EndAndForget();
  m_cScanDecThread.EndAndForget();
  m_cImgEnhanceThread.EndAndForget();
}

QSRSLT CDecodeManage::Initialize() {
  Trace trace(__func__);
  if (m_modules.GetJpegDecodeInstance() == nullptr) return trace.ret(QSRSLT_JPEG_NOT_LOADED);
  if (m_modules.GetScanDecInstance() == nullptr) return trace.ret(QSRSLT_NO_LINE_DECODER);
  if (m_modules.GetImageEnhanceInstance() == nullptr) return trace.ret(QSRSLT_ENHANCE_NOT_LOADED);
  return trace.ret(QSRSLT_SUCCESS);
}

void CDecodeManage::SetScanProcStatus(CScanError* scanStatus) {
  m_mutex.LockReadMutex();
  m_pScanStatus = scanStatus;
  m_mutex.UnlockReadMutex();
}

CScanError* CDecodeManage::GetScanProcStatus() {
  m_mutex.LockReadMutex();
  CScanError* const scanStatus = m_pScanStatus;
  m_mutex.UnlockReadMutex();
  return scanStatus;
}

bool CDecodeManage::WriteImage(CImageData* page) {
  if (page == nullptr) return false;
  if (!page->HandOverToDecoder()) return true;
  const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
  m_queue.push_back(page);
  return true;
}

QSRSLT CDecodeManage::DecodeProcess(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device,
                                    const QS_SCANNER_CAPABILITY& capability) {
  Trace trace(__func__, 2);
  m_userParam = user;
  m_deviceParam = device;
  m_capability = capability;
  if (!m_ieParamReady) {
    m_ieParam = GetImageEnhanceParam();
    m_ieParamReady = true;
  }
  CImageData* page = nullptr;
  {
    const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
    if (!m_queue.empty()) {
      page = m_queue.front();
      m_queue.pop_front();
    }
  }
  const QSRSLT result = IsJpgHandlingMode(page) ? DecodeJpegImage(page) : DecodeImage(page);
  ReadEnhancedImage();
  return trace.ret(result);
}

// Kept: once a JPEG page was seen every later call takes the JPEG route, also for a page of lines, which then fails in
// the JPEG decoder, and also without a page, so that pages in the later stages keep moving. Pinned by DecodeManage_test
// "a page of lines after a JPEG page".
bool CDecodeManage::IsJpgHandlingMode(const CImageData* page) {
  if (!m_isJpgMode) m_isJpgMode = page != nullptr && page->m_pCurrentStore->IsJpeg();
  return m_isJpgMode;
}

QSRSLT CDecodeManage::DecodeJpegImage(CImageData* page) {
  const QSRSLT result = JpegImageProcess(page);
  if (result != QSRSLT_SUCCESS) return result;
  return DecodeImage(m_cJpegDecThread.GetResultImageData());
}

QSRSLT CDecodeManage::DecodeImage(CImageData* page) {
  const QSRSLT result = ScanDecProcess(page);
  if (result != QSRSLT_SUCCESS) return result;
  return ImageEnhanceProcess(m_cScanDecThread.GetResultImageData());
}

QSRSLT CDecodeManage::JpegImageProcess(CImageData* page) {
  const QSRSLT result = Queue(m_cJpegDecThread, page, QSRSLT_DECODE_NOT_QUEUED);
  if (result != QSRSLT_SUCCESS) return result;
  return m_cJpegDecThread.Start1Image(m_userParam, m_deviceParam, GetScanProcStatus(),
                                      m_modules.GetJpegDecodeInstance());
}

QSRSLT CDecodeManage::ScanDecProcess(CImageData* page) {
  const QSRSLT result = Queue(m_cScanDecThread, page, QSRSLT_DECODE_NOT_QUEUED);
  if (result != QSRSLT_SUCCESS) return result;
  return m_cScanDecThread.Start1Image(m_userParam, m_deviceParam, GetScanProcStatus(), m_modules.GetScanDecInstance());
}

QSRSLT CDecodeManage::ImageEnhanceProcess(CImageData* page) {
  const QSRSLT result = Queue(m_cImgEnhanceThread, page, QSRSLT_ENHANCE_NOT_QUEUED);
  if (result != QSRSLT_SUCCESS) return result;
  return m_cImgEnhanceThread.Start1Image(m_userParam, m_deviceParam, GetScanProcStatus(),
                                         m_modules.GetImageEnhanceInstance(), m_ieParam);
}

// A page that failed or was cancelled leaves the pipeline here.
QSRSLT CDecodeManage::Queue(CImageProcThread_Base& stage, CImageData* page, QSRSLT refused) {
  if (page == nullptr) return QSRSLT_SUCCESS;
  const CScanError* const scanError = GetScanProcStatus();
  const SCANSTATUS status = scanError == nullptr ? SCANSTATUS{} : scanError->Get();
  if (page->HasFailed() || page->GetPageNo() == status.errPageNo || page->GetPageNo() == status.cancelPageNo) {
    page->Settle();
    return QSRSLT_SUCCESS;
  }
  return stage.WriteImage(page) ? QSRSLT_SUCCESS : refused;
}

void CDecodeManage::ReadEnhancedImage() {
  g_ScanDevApiLog.WriteLog(2, "%s", __func__);
  CImageData* const page = m_cImgEnhanceThread.GetResultImageData();
  if (page == nullptr) return;
  g_ScanDevApiLog.WriteLog(1, "m_cImgEnhanceThread.End() start");
  m_cImgEnhanceThread.End();
  g_ScanDevApiLog.WriteLog(1, "m_cImgEnhanceThread.End() end");
  page->Settle();
}

_IE_PARAM CDecodeManage::GetImageEnhanceParam() const { return makeEnhanceParam(m_userParam, m_capability); }

}  // namespace orvalle_scan_api
