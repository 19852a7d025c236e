#include "image/ImageProcThread.h"

#include <system_error>

namespace orvalle_scan_api {

QSRSLT CImageProcThread_Base::Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device) {
  if (IsStarted()) return QSRSLT_SUCCESS;
  {
    const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
    if (m_queue.empty()) return QSRSLT_SUCCESS;
    m_pImage = m_queue.front();
    m_queue.pop_front();
  }
  m_userParam = user;
  m_deviceParam = device;
  m_finished.store(false);
  try {
    if (Start()) return QSRSLT_SUCCESS;
  } catch (const std::system_error&) {
  }
  const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
  m_queue.push_front(m_pImage);
  m_pImage = nullptr;
  return QSRSLT_WORKER_NOT_STARTED;
}

bool CImageProcThread_Base::WriteImage(CImageData* page) {
  const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
  m_queue.push_back(page);
  return true;
}

CImageData* CImageProcThread_Base::GetResultImageData() {
  if (!m_finished.load(std::memory_order_acquire)) return nullptr;
  CImageData* const page = m_pImage;
  End();
  m_finished.store(false);
  m_pImage = nullptr;
  return page;
}

void CImageProcThread_Base::EndAndForget() {
  End();
  m_finished.store(false);
  m_pImage = nullptr;
  const CWriteReadMutex_Base::WriteGuard guard(m_mutex);
  m_queue.clear();
}

bool CImageProcThread_Base::IsPageWanted(const CScanError& scanError) const {
  const SCANSTATUS status = scanError.Get();
  return m_pImage->GetPageNo() != status.errPageNo && m_pImage->GetPageNo() != status.cancelPageNo;
}

void CImageProcThread_Base::RecordPageError(CScanError& scanError, QSRSLT result) const {
  m_pImage->SetFailed();
  SCANSTATUS status = scanError.Get();
  status.status = result;
  status.errPageNo = m_pImage->GetPageNo();
  scanError.Set(status);
}

}  // namespace orvalle_scan_api
