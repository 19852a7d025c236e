// One stage of the pipeline: a queue of pages and one worker thread, made and joined for each page.
//
//   WriteImage -> queue -> Start1Image -> worker, one page -> finished -> GetResultImageData joins and returns the page
//
// A finished page waits here until it is collected, and the next one does not start before.
// Threads: everything but ThreadProc belongs to the read thread. The worker owns the page from Start1Image until
// m_finished, its last touch; the join in GetResultImageData hands the page on.
#pragma once

#include <atomic>
#include <deque>
#include <new>

#include "api/ScanError.h"
#include "foundation/trace.h"
#include "reception/ImageData.h"
#include "reception/Thread.h"
#include "reception/WriteReadMutex.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

class CImageProcThread_Base : public CThread_Base {
 public:
  // Takes the first page of the queue and starts the worker; 0 without a page and while a page is in work or waits to
  // be collected. 0x10404001: no thread could be made; the page is then first in the queue again.
  QSRSLT Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device);

  // Appends a page. Not owned. True.
  bool WriteImage(CImageData* page);

  // The finished page, after joining its worker; null when there is none.
  CImageData* GetResultImageData();

  // Joins the worker and forgets every page: the one in work, a finished one, and those in the queue.
  void EndAndForget();

 protected:
  ~CImageProcThread_Base() = default;

  // The scan's status names this page neither as failed nor as cancelled.
  bool IsPageWanted(const CScanError& scanError) const;

  // The trace of InvertImageHeight for a page whose lines were turned round on their way into the store.
  static void TraceImageTurned(const CImageDataStore& store) { Trace("InvertImageHeight").success(store.IsBmp()); }

  // The frame of every stage's ThreadProc: traces, runs work, records its code with the page's number and marks the
  // page finished. No exception leaves: a lack of memory becomes 0x30402001, anything else codeOfException.
  template <class Work>
  void RunPage(CScanError& scanError, QSRSLT codeOfException, Work work) {
    {
      Trace trace("ThreadProc");
      QSRSLT result = QSRSLT_SUCCESS;
      try {
        result = work();
      } catch (const std::bad_alloc&) {
        result = QSRSLT_NO_PAGE_MEMORY;
      } catch (...) {
        result = codeOfException;
      }
      if (result != QSRSLT_SUCCESS) RecordPageError(scanError, result);
    }
    m_finished.store(true, std::memory_order_release);
  }

  // Constant while the worker runs.
  CImageData* m_pImage = nullptr;  // not owned
  QS_SCANNER_PARAMETERS m_userParam{};
  QS_SCANNER_PARAMETERS m_deviceParam{};

  std::atomic<bool> m_finished{false};
  CWriteReadMutex_Base m_mutex;
  std::deque<CImageData*> m_queue;  // guarded by the write half of m_mutex

 private:
  void RecordPageError(CScanError& scanError, QSRSLT result) const;
};

}  // namespace orvalle_scan_api
