// One scanned page: four stores, one for each stage, and what is known of the page.
//
//   m_jpegData     the JPEG stream                          read thread
//   m_rawData      line records, or the decoded JPEG        read thread, JPEG worker
//   m_decodedData  a BMP                                    line worker
//   m_finalData    the BMP that the caller gets             enhancement worker
//
// A stage reads the current store, writes the next one, empties its source and moves m_pCurrentStore forward.
//
// Who may touch the stores: the read thread until HandOverToDecoder, then the worker that has the page, and the caller
// once the page is settled. A page is settled when nothing of the library will write to it any more: it came out of the
// last stage, was dropped on the way, or was given up or found blank by the read thread. A settled page whose final
// store is not finished never will be.
// Threads: the calls say who may make them; those marked "any thread" are thread-safe.
#pragma once

#include <atomic>
#include <mutex>

#include "reception/ImageDataStore.h"

namespace orvalle_scan_api {

class CImageData {
 public:
  CImageDataStore* m_pCurrentStore = &m_rawData;
  CImageDataStore m_jpegData;
  CImageDataStore m_rawData;
  CImageDataStore m_decodedData;
  CImageDataStore m_finalData;

  CImageData() = default;
  CImageData(const CImageData&) = delete;
  CImageData& operator=(const CImageData&) = delete;

  // The record of the finished page; of an empty store while it is not finished or after it was freed; for a blank page
  // zeroes with isBlankPage set. The block stays owned by the page. Any thread.
  tagQS_SCAN_IMAGEDATA GetFinalImage();

  // Frees the blocks of all stores. Only for the owner of the stores; others use FreeWhenSettled.
  void FreeImageDatas();
  // All four stores are empty. Any thread.
  bool IsEmpty() const;

  // Notes that the pipeline has the page; from here on the read thread leaves the stores alone. False if it had it
  // already, so that no page is queued twice. Read thread.
  bool HandOverToDecoder();
  bool IsHandedOver() const;  // any thread
  // Notes that nothing of the library will write to the page any more, and frees it if that was asked for. Read thread.
  void Settle();
  bool IsSettled() const;  // any thread
  // Frees the blocks, at once when the page is settled, otherwise as soon as it is. Any thread.
  void FreeWhenSettled();

  // Before the page is seen by another thread.
  void SetPageNo(std::uint32_t pageNo) { m_pageNo = pageNo; }

  // Any thread.
  std::uint32_t GetPageNo() const { return m_pageNo; }
  void SetIsBlankPage(bool isBlank) { m_isBlankPage = isBlank; }
  bool GetIsBlankPage() const { return m_isBlankPage; }
  // Depth that the device found for an automatic-colour page: 1, 8 or 24; 0 when it said nothing.
  void SetAutoColorBpp(int bitPerPixel) { m_autoColorBpp = bitPerPixel; }
  int GetAutoColorBpp() const { return m_autoColorBpp; }
  void SetPageScanIsTerminated(bool isTerminated) { m_pageScanIsTerminated = isTerminated; }
  // A stage failed on the page: no later one takes it, whatever the scan's status could still note of it.
  void SetFailed() { m_hasFailed = true; }
  bool HasFailed() const { return m_hasFailed; }
  void SetImageEnhanceTerminated(IMAGEENHACETERMINATEREASON reason) { m_imageEnhanceTerminated = reason; }

 private:
  std::uint32_t m_pageNo = 0;
  std::atomic<bool> m_isBlankPage{false};
  std::atomic<std::int32_t> m_autoColorBpp{0};
  std::atomic<bool> m_pageScanIsTerminated{false};
  std::atomic<bool> m_hasFailed{false};
  std::atomic<IMAGEENHACETERMINATEREASON> m_imageEnhanceTerminated{IMAGEENHANCE_NOT_TERMINATED};

  mutable std::mutex m_ownerMutex;
  // Guarded by m_ownerMutex.
  bool m_isHandedOver = false;
  bool m_isSettled = false;
  bool m_isFreeAsked = false;
};

}  // namespace orvalle_scan_api
