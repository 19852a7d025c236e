// The JPEG stage: turns the JPEG of a page into a BMP, top line first, in m_rawData - the whole page at once, or band
// by band where the page is too large for that.
#pragma once

#include "image/ImageProcThread.h"
#include "modules/JpegDecode.h"

namespace orvalle_scan_api {

class CJpegDecodeThread : public CImageProcThread_Base {
 public:
  ~CJpegDecodeThread() { End(); }

  // As the base form; 0x1040300B for a null pointer. Neither is owned; both outlive the page's work.
  QSRSLT Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device, CScanError* scanError,
                     IJpegDecode* jpegDecode);

  // 0 for a status that is no failure.
  static QSRSLT ConvertJpegDecErrToQSRSLT(JPEGDECODESTATUS status);

  // Replaces the 24-bit BMP in store by its grey form: the mean of the three bytes, not a weighted luminance.
  //   0x70601001 null store   0x30601002 no memory
  static QSRSLT Convert24BitColorToTrueGrayImageDataStore(CImageDataStore* store);

 private:
  void ThreadProc() override;
  bool IsLongPaper() const;
  bool IsPageDecodeMode(unsigned int pixelDataSize) const;
  QSRSLT DecodeJpegImage(CImageData* page);
  QSRSLT DecodeJpegImage_Page(CImageData* page);
  QSRSLT DecodeJpegImage_Band(CImageData* page);
  QSRSLT FeedBands(const unsigned char* jpeg, unsigned int jpegSize, const JPEGBANDINFO& info, CImageDataStore& target);
  QSRSLT DrainBand(unsigned int widthBytes, CImageDataStore& target, int* lineCount, JPEGDECODESTATUS* status);

  IJpegDecode* m_pJpegDecode = nullptr;
  CScanError* m_pScanError = nullptr;
};

}  // namespace orvalle_scan_api
