// The last stage: runs IImageEnhance over the page's BMP, pads a page that ended early, raises the resolution where the
// device delivered less than was asked for, and leaves the result in m_finalData. A failure of the module alone gives
// an unenhanced page and no error.
#pragma once

#include "image/ImageProcThread.h"
#include "modules/ImageEnhance.h"

namespace orvalle_scan_api {

class CImageEnhanceThread : public CImageProcThread_Base {
 public:
  ~CImageEnhanceThread() { End(); }

  // As the base form; 0x10405005 for a null pointer. Neither is owned; both outlive the page's work.
  QSRSLT Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device, CScanError* scanError,
                     IImageEnhance* imageEnhance, const _IE_PARAM& ieParam);

 private:
  void ThreadProc() override;
  QSRSLT ImageEnhancementProc(CImageData* page);
  // Takes the module's result into store; a result without data keeps what store has.
  static QSRSLT TakeResult(const tagQS_SCAN_IMAGEDATA& result, CImageDataStore& store);
  // The user asked for more than the device delivers. Less is not made from more here.
  bool IsNeedChangeResolution() const;
  // The page at the user's resolution, in target. 0x10703001: a ratio that cannot be served, target stays unfinished;
  // 0x10703002: it could not be started; 0x30402001: no memory.
  QSRSLT ChangeImageResolutionProc(const CImageDataStore& source, CImageDataStore& target) const;
  QSRSLT DetectEndOfPageProc(CImageDataStore& store) const;
  static QSRSLT AddImageHeight(CImageDataStore& store, int height);

  IImageEnhance* m_pImageEnhance = nullptr;
  CScanError* m_pScanError = nullptr;
  _IE_PARAM m_ieParam{};
};

}  // namespace orvalle_scan_api
