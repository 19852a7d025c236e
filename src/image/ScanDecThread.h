// The line stage: feeds a page's lines, or the BMP of the JPEG stage, through IScanDec and collects a BMP, bottom line
// first, turned as the side of the sheet asks for.
#pragma once

#include "image/ImageProcThread.h"
#include "image/decoded_lines.h"
#include "modules/ScanDec.h"

namespace orvalle_scan_api {

class CScanDecThread : public CImageProcThread_Base {
 public:
  ~CScanDecThread() { End(); }

  // As the base form; 0x30406007 for a null pointer. Neither is owned; both outlive the page's work.
  QSRSLT Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device, CScanError* scanError,
                     IScanDec* scanDec);

  // The back of a sheet bound on the short edge is mirrored, every other page turned upside down: together with the
  // bottom-up order of a BMP the mirrored one has made a turn of 180 degrees.
  static bool IsImageHeightInvertStatus(DUPLEXTYPE type, int pageNo) { return !IsImageWidthInvertStatus(type, pageNo); }
  static bool IsImageWidthInvertStatus(DUPLEXTYPE type, int pageNo) {
    return type == DUPLEXTYPE_SHORT_EDGE && pageNo % 2 == 0;
  }

  // What one answer of IScanDec::Write means.
  enum WriteStatus { kNeedInput = 0, kWrite = 1, kWriteAndFinish = 2, kFailed = 3 };
  static WriteStatus GetScanDecWriteStatus(int result, int outLines, std::int64_t lineRemain);

 private:
  void ThreadProc() override;
  QSRSLT DecodeImage(CImageData* page);
  QSRSLT DecodeOpened(CImageData* page);
  QSRSLT DecodeLines(CImageDataStore* source, CImageDataStore* target, SCANDEC_WRITE& write, DecodedLines& lines);
  bool OpenScanDec();
  void CloseScanDec();
  SCANDEC_OPEN CreateScanDecOpen(const CImageDataStore* source) const;
  // All zero when there is no output buffer to be had.
  static SCANDEC_WRITE CreateScanDecWrite(const CImageData* page, const SCANDEC_OPEN& open);
  int CalcOutputWidth(const CImageDataStore* source) const;
  QSRSLT Start_WriteDecodeDataToImageData(const CImageDataStore* source, CImageDataStore* target) const;
  static bool ReadImageBlock(CImageDataStore* source, SCANDEC_WRITE* write);

  IScanDec* m_pScanDec = nullptr;
  CScanError* m_pScanError = nullptr;
};

}  // namespace orvalle_scan_api
