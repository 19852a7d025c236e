// The pages of a scan: made, counted, ended, thrown away, and held back while too many wait in memory.
#include <algorithm>

#include "foundation/qvtcl/TTime.h"
#include "foundation/trace.h"
#include "reception/ReadThread_base.h"

namespace orvalle_scan_api {
namespace {

constexpr unsigned long kPollMs = 100;

bool isLongPaper(PAPERTYPE paper) { return paper == PAPERTYPE_LONG_NARROW || paper == PAPERTYPE_LONG; }

}  // namespace

void CReadThread_base::ClearImageDataFromArray(unsigned int firstPage) {
  const std::size_t keep = firstPage == 0 ? 0 : firstPage - 1;
  const std::lock_guard<std::mutex> lock(m_arrayMutex);
  while (m_imageDataArray.size() > keep) {
    const CImageData& last = *m_imageDataArray.back();
    // A page that a stage works on stays until the stages have ended.
    if (firstPage > 1 && last.IsHandedOver() && !last.IsSettled()) return;
    m_imageDataArray.pop_back();
  }
  m_firstHeldPage = std::min(m_firstHeldPage, m_imageDataArray.size());
}

void CReadThread_base::TerminateDataReadProcess(bool* found) {
  if (found == nullptr) return;
  for (const auto& page : m_imageDataArray) {
    if (page->IsHandedOver()) continue;
    CImageDataStore& store = *page->m_pCurrentStore;
    if (store.IsEmpty() || store.IsWriteDataFinished()) continue;
    store.FinishWriteData(true, 0);
    store.DeleteData();
    *found = true;
  }
}

unsigned int CReadThread_base::GetCountOfNotXferedImageData() {
  const auto isDone = [](const CImageData& page) { return page.IsSettled() && page.IsEmpty(); };
  while (m_firstHeldPage < m_imageDataArray.size() && isDone(*m_imageDataArray[m_firstHeldPage])) ++m_firstHeldPage;
  return static_cast<unsigned>(std::count_if(m_imageDataArray.begin() + static_cast<std::ptrdiff_t>(m_firstHeldPage),
                                             m_imageDataArray.end(),
                                             [](const auto& page) { return !page->IsEmpty(); }));
}

bool CReadThread_base::IsImageDataWritableCondition() {
  const std::uint32_t resolution = std::min(m_userParam.resolution.x, m_userParam.resolution.y);
  const unsigned int fewest = m_userParam.duplexType != DUPLEXTYPE_SIMPLEX ? 4 : 3;
  unsigned int limit = fewest;
  if (!isLongPaper(m_userParam.paperType)) {
    limit = resolution <= 300 ? 21 : resolution <= 400 ? 13 : resolution <= 600 ? 6 : fewest;
  }
  return GetCountOfNotXferedImageData() < limit;
}

// Kept: while it waits the thread neither reads the device nor looks for an abort, which waits until the caller frees a
// page. It leaves the wait when the thread is to end: otherwise a host that never frees a page could not uninitialise.
QSRSLT CReadThread_base::WaitForImageDataWritableCondition() {
  for (;;) {
    qvtcl::CTTime().Sleep_ms(kPollMs);
    m_decodeManage.DecodeProcess(m_userParam, m_deviceParam, m_capability);
    if (IsImageDataWritableCondition()) return QSRSLT_SUCCESS;
    AbortTimeoutProcess();
    if (m_pScanError->IsErrorOccurred() || m_pScanError->IsCanceled()) return m_pScanError->Get().status;
    if (m_end) return QSRSLT_CANCELED;
    if (!callerCanFreePages()) return QSRSLT_NO_PAGE_MEMORY;
  }
}

// Pages go out in order: with none in memory before the first that is still open, the caller has nothing to fetch, and
// waiting for it would never end.
bool CReadThread_base::callerCanFreePages() const {
  const auto open = m_imageDataArray.begin() + static_cast<std::ptrdiff_t>(lowestOpenPage() - 1);
  return std::any_of(m_imageDataArray.begin(), open, [](const auto& page) { return !page->IsEmpty(); });
}

CImageData* CReadThread_base::pageAt(unsigned int pageNo) const {
  return pageNo == 0 || pageNo > m_imageDataArray.size() ? nullptr : m_imageDataArray[pageNo - 1].get();
}

void CReadThread_base::appendPage(std::unique_ptr<CImageData> page) {
  const std::lock_guard<std::mutex> lock(m_arrayMutex);
  m_imageDataArray.push_back(std::move(page));
}

unsigned int CReadThread_base::lowestOpenPage() const {
  const auto isOpen = [](const auto& page) {
    return !page->IsHandedOver() && !page->IsSettled() && !page->GetIsBlankPage();
  };
  const auto open = std::find_if(m_imageDataArray.begin(), m_imageDataArray.end(), isOpen);
  return static_cast<unsigned>(open - m_imageDataArray.begin()) + 1;
}

QSRSLT CReadThread_base::WriteImgeDataFinishProc(unsigned int pageNo, int height) {
  CImageData* page = pageAt(pageNo);
  // A page that is settled, a blank one, is the caller's by now.
  if (page == nullptr || page->IsHandedOver() || page->IsSettled()) return QSRSLT_SUCCESS;
  CImageDataStore& store = *page->m_pCurrentStore;
  // A page without any data would never come out of the stages.
  if (store.IsEmpty()) page->SetIsBlankPage(true);
  store.FinishWriteData(false, height);
  if (!page->GetIsBlankPage()) {
    return m_decodeManage.WriteImage(page) ? QSRSLT_SUCCESS : QSRSLT_PAGE_NOT_HANDED_OVER;
  }
  store.DeleteData();
  page->Settle();
  return QSRSLT_SUCCESS;
}

// At the end of all pages a page that has had no end of its own has one now. Such a page is received: a restart or a
// stop that still lies in the buffer must not take it away again.
void CReadThread_base::finishOpenPages(SCANSTATUS& status) {
  for (unsigned int pageNo = 1; pageNo <= pageCount(); ++pageNo) {
    if (!pageAt(pageNo)->GetIsBlankPage()) WriteImgeDataFinishProc(pageNo, 0);
  }
  status.lastReceivePageNo = std::max(status.lastReceivePageNo, pageCount());
}

int CReadThread_base::believedPixels(std::uint32_t told) {
  // 22 metres at 1200 dpi: sizes in bytes of such lines fit an int, and a page is not made huge by a damaged number.
  constexpr std::uint32_t kMostPixels = 0xFFFFF;
  return static_cast<int>(std::min(told, kMostPixels));
}

}  // namespace orvalle_scan_api
