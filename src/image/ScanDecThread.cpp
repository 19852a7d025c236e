#include "image/ScanDecThread.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "image/BitmapHeader.h"
#include "image/BitmapImage.h"
#include "image/bmp_lines.h"

namespace orvalle_scan_api {
namespace {

// What the decoder is told of a colour type.
struct DecodeColor {
  std::int32_t code;
  int bitPerPixel;
  bool takesTone;
};
DecodeColor decodeColor(COLORTYPE colorType) {
  switch (colorType) {
    case COLORTYPE_BLACKANDWHITE:
      return {0x101, 1, false};
    case COLORTYPE_ERRORDIFFUSION:
      return {0x102, 1, false};
    case COLORTYPE_TRUEGRAY:
      return {0x208, 8, true};
    case COLORTYPE_COLOR256:
      return {0x210, 8, false};
    default:
      return {0x420, 24, false};
  }
}

std::size_t count(int value) { return static_cast<std::size_t>(std::max(0, value)); }

struct FreeDeleter {
  void operator()(void* block) const { std::free(block); }
};

}  // namespace

QSRSLT CScanDecThread::Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device,
                                   CScanError* scanError, IScanDec* scanDec) {
  if (scanError == nullptr || scanDec == nullptr) return QSRSLT_NO_LINE_DECODER;
  if (IsStarted()) return QSRSLT_SUCCESS;  // a worker reads the two
  m_pScanError = scanError;
  m_pScanDec = scanDec;
  return CImageProcThread_Base::Start1Image(user, device);
}

CScanDecThread::WriteStatus CScanDecThread::GetScanDecWriteStatus(int result, int outLines, std::int64_t lineRemain) {
  if (result < 0) return kFailed;
  if (outLines <= 0) return kNeedInput;
  return lineRemain < 1 ? kWriteAndFinish : kWrite;
}

void CScanDecThread::ThreadProc() {
  RunPage(*m_pScanError, QSRSLT_LINE_DECODER_REFUSED,
          [this] { return IsPageWanted(*m_pScanError) ? DecodeImage(m_pImage) : QSRSLT_SUCCESS; });
}

QSRSLT CScanDecThread::DecodeImage(CImageData* page) {
  Trace trace(__func__);
  CImageDataStore& raw = page->m_rawData;
  g_ScanDevApiLog.WriteDump(raw.GetData(), static_cast<int>(raw.GetDataSize()), "DumpPreScanDec",
                            static_cast<int>(page->GetPageNo()));
  if (!OpenScanDec()) return trace.ret(QSRSLT_LINE_DECODER_NOT_OPENED);
  struct Closer {
    CScanDecThread* stage;
    ~Closer() { stage->CloseScanDec(); }
  } const closer{this};
  return trace.ret(DecodeOpened(page));
}

QSRSLT CScanDecThread::DecodeOpened(CImageData* page) {
  CImageDataStore* const source = page->m_pCurrentStore;
  CImageDataStore* const target = &page->m_decodedData;
  SCANDEC_OPEN open = CreateScanDecOpen(source);
  if (m_pScanDec->SetOpenParam(&open) != 1) return QSRSLT_LINE_DECODER_REFUSED;
  SCANDEC_WRITE write = CreateScanDecWrite(page, open);
  const std::unique_ptr<std::uint8_t, FreeDeleter> outputBuffer(write.pWriteBuff);
  if (outputBuffer == nullptr) return QSRSLT_LINE_DECODER_REFUSED;
  g_ScanDevApiLog.WriteLog(
      1, "ScanDec Start In Data. resoX = %d, resoY = %d, width = %d, height = %d, colortype = %d, DataType = %d",
      source->GetResolutionX(), source->GetResolutionY(), source->GetWidthPixel(), source->GetHeightPixel(),
      source->GetColorType(), static_cast<int>(source->GetDataType()));

  // The lines come top line first: a page that is to be turned upside down takes them from its end.
  const bool isTurned = IsImageHeightInvertStatus(m_userParam.duplexType, static_cast<int>(page->GetPageNo()));
  DecodedLines lines(outputBuffer.get(), open.dwWriteBuffSize,
                     isTurned ? DecodedLines::Order::BottomFirst : DecodedLines::Order::TopFirst);
  QSRSLT result = Start_WriteDecodeDataToImageData(source, target);
  if (result == QSRSLT_SUCCESS) result = lines.open(target);
  if (result == QSRSLT_SUCCESS) result = DecodeLines(source, target, write, lines);
  lines.finish();
  target->FinishWriteData(false, lines.total());
  source->DeleteData();
  page->m_pCurrentStore = target;
  if (result != QSRSLT_SUCCESS) {
    // A page that failed is left as it came.
    if (isTurned) CBitmapImage(target->GetData(), target->GetDataSize()).InvertHeight();
    return result;
  }
  if (target->GetHeightPixel() > lines.total()) target->TrimImageHeight(lines.total());
  // A page without a single line keeps the height that was announced; it is then white.
  result = target->CompleteBmp();
  if (result != QSRSLT_SUCCESS) return result;
  if (isTurned) {
    TraceImageTurned(*target);
  } else {
    target->InvertImageWidth();
  }
  return QSRSLT_SUCCESS;
}

QSRSLT CScanDecThread::DecodeLines(CImageDataStore* source, CImageDataStore* target, SCANDEC_WRITE& write,
                                   DecodedLines& lines) {
  const std::int64_t height = source->GetHeightPixel();
  WriteStatus status = kFailed;
  bool finished = false;
  int outLines = 0;
  int outBytes = 0;
  ReadImageBlock(source, &write);
  for (std::int64_t i = 1;; ++i) {
    if (write.pLineData == nullptr) {
      g_ScanDevApiLog.WriteLog(2, "scanDecWrite.pLineData == nullptr");
      break;
    }
    outLines = 0;
    outBytes = 0;
    write.pWriteBuff = lines.room();
    const int written = m_pScanDec->Write(&write, &outLines, &outBytes);
    g_ScanDevApiLog.WriteLog(2, "ScanDecWrite. result = %d", written);
    status = GetScanDecWriteStatus(written, outLines, height - i);
    g_ScanDevApiLog.WriteLog(2, "ScanDecWriteStatus = %d", status);
    if (status == kFailed) {
      target->CancelProc();
      return QSRSLT_CANCELED;
    }
    if (status == kNeedInput) {
      ReadImageBlock(source, &write);
    } else {
      finished = status == kWriteAndFinish;
      const QSRSLT result = lines.take(outLines, outBytes);
      g_ScanDevApiLog.WriteLog(2, "totalWrittenLineCnt = %d", lines.total());
      if (!ReadImageBlock(source, &write)) finished = true;
      if (result != QSRSLT_SUCCESS) return result;
    }
    if (i >= height || finished || m_end) break;
  }
  outLines = 0;
  outBytes = 0;
  write.pWriteBuff = lines.room();
  const int ended = m_pScanDec->PageEnd(&write, &outLines, &outBytes);
  g_ScanDevApiLog.WriteLog(1, "ScanDecPageEnd. result = %d", ended);
  // Kept: what PageEnd flushes counts only when the last line came out with the last of the height. Pinned by
  // ScanDecThread_test "flushed lines".
  if (status != kWriteAndFinish || outLines <= 0) return QSRSLT_SUCCESS;
  const QSRSLT result = lines.take(outLines, outBytes);
  g_ScanDevApiLog.WriteLog(1, "ScanDecData TotalWriteLineCnt = %d", lines.total());
  return result;
}

bool CScanDecThread::OpenScanDec() {
  Trace trace(__func__);
  return trace.success(m_pScanDec != nullptr && m_pScanDec->Open(0) == 1);
}

void CScanDecThread::CloseScanDec() {
  m_pScanDec->Close();
  m_pScanDec = nullptr;
  g_ScanDevApiLog.WriteLog(1, "%s", __func__);
}

SCANDEC_OPEN CScanDecThread::CreateScanDecOpen(const CImageDataStore* source) const {
  SCANDEC_OPEN open{};
  // Line records have no header to ask, whatever their compress code says.
  const BmpLines bmp = bmpLines(source->GetData(), source->GetDataSize());
  const int bmpHeight = static_cast<int>(bmp.promised);
  const bool askHeader = source->IsBmp() && !source->IsPackBits() && source->GetDataType() != kLineKindMono;
  int width = askHeader ? bmp.widthPx : source->GetWidthPixel();
  const int height = askHeader ? bmpHeight : source->GetHeightPixel();
  if (width < 1) width = CalcOutputWidth(source);
  const DecodeColor color = decodeColor(m_deviceParam.colorType);
  open.nPageNum = 1;
  open.nInResoX = static_cast<int>(m_deviceParam.resolution.x);
  open.nInResoY = static_cast<int>(m_deviceParam.resolution.y);
  open.nOutResoX = open.nInResoX;
  open.nOutResoY = open.nInResoY;
  open.nColorType = color.code;
  open.dwInLinePixCnt = count(width);
  open.dwInHeightPixCnt = count(height);
  open.reservedOne = 1;
  open.nBrightness = color.takesTone ? m_userParam.brightness : 0;
  open.nContrast = color.takesTone ? m_userParam.contrast : 0;
  open.reservedText = "";
  // Kept: the line holds the whole input width, though the page may be narrower: the wish for the page's width loses
  // against the input width in every case. Pinned by ScanDecThread_test "output lines hold the whole input width".
  open.dwOutLineByteCnt = CBitmapHeader().CalcWidthBytes(width, color.bitPerPixel);

  const struct {
    const char* field;
    std::int64_t value;
  } kLogged[] = {{"nPageNum", open.nPageNum},
                 {"nInResoX", open.nInResoX},
                 {"nInResoY", open.nInResoY},
                 {"nOutResoX", open.nOutResoX},
                 {"nOutResoY", open.nOutResoY},
                 {"nColorType", open.nColorType},
                 {"dwInLinePixCnt", static_cast<std::int64_t>(open.dwInLinePixCnt)},
                 {"dwInHeightPixCnt", static_cast<std::int64_t>(open.dwInHeightPixCnt)},
                 {"nBrightness", open.nBrightness},
                 {"nContrast", open.nContrast},
                 {"dwOutLineByteCnt", static_cast<std::int64_t>(open.dwOutLineByteCnt)}};
  for (const auto& row : kLogged) {
    g_ScanDevApiLog.WriteLog(1, "scanDecOpen.%s = %d", row.field, static_cast<int>(row.value));
  }
  return open;
}

SCANDEC_WRITE CScanDecThread::CreateScanDecWrite(const CImageData* page, const SCANDEC_OPEN& open) {
  SCANDEC_WRITE write{};
  if (open.dwWriteBuffSize > 0) write.pWriteBuff = static_cast<std::uint8_t*>(std::calloc(open.dwWriteBuffSize, 1));
  if (write.pWriteBuff != nullptr) {
    write.nInDataComp = static_cast<std::int32_t>(page->m_pCurrentStore->GetCompressType());
    write.nInDataKind = static_cast<std::int32_t>(page->m_pCurrentStore->GetDataType());
    write.writeBuffSize = open.dwWriteBuffSize;
  }
  g_ScanDevApiLog.WriteLog(1, "scanDecWrite.nInDataComp = %d", write.nInDataComp);
  g_ScanDevApiLog.WriteLog(1, "scanDecWrite.nInDataKind = %d", write.nInDataKind);
  g_ScanDevApiLog.WriteLog(1, "scanDecWrite.dwWriteBuffSize = %d", static_cast<int>(write.writeBuffSize));
  return write;
}

int CScanDecThread::CalcOutputWidth(const CImageDataStore* source) const {
  const int limit = m_deviceParam.scanArea.right;
  int width = source->GetWidthPixel();
  if (limit >= 1) width = std::min(width, limit);
  if (width < 1) width = limit;
  if (width < 1) width = bmpLines(source->GetData(), source->GetDataSize()).widthPx;
  return width;
}

QSRSLT CScanDecThread::Start_WriteDecodeDataToImageData(const CImageDataStore* source, CImageDataStore* target) const {
  const int bpp = source->GetBitPerPixel();
  int resX = source->GetResolutionX();
  int resY = source->GetResolutionY();
  int height = source->GetHeightPixel();
  const int width = CalcOutputWidth(source);
  if (resX < 1) resX = static_cast<int>(m_deviceParam.resolution.x);
  if (resY < 1) resY = static_cast<int>(m_deviceParam.resolution.y);
  if (height < 1) height = m_deviceParam.scanArea.bottom;
  if (height < 1) height = static_cast<int>(bmpLines(source->GetData(), source->GetDataSize()).promised);
  target->StartWriteData(resX, resY, width, height, source->GetColorType(), source->GetDataType(), kCompressNone);
  CBitmapHeader bitmap;
  int headerSize = 0;
  const unsigned char* const header =
      bitmap.CreateBmpHeader(resX, resY, bpp, width, height, bitmap.CreateColorTable(bpp), &headerSize);
  const QSRSLT result = target->WriteDataBlock(header, static_cast<unsigned>(headerSize));
  g_ScanDevApiLog.WriteLog(
      1, "nInResoX = %d, nInResoY = %d, bpp = %d, widthPix = %d, heightPix = %d, bmpHeaderSize = %d, ", resX, resY, bpp,
      width, height, headerSize);
  return result;
}

bool CScanDecThread::ReadImageBlock(CImageDataStore* source, SCANDEC_WRITE* write) {
  if (source == nullptr) return false;
  unsigned size = 0;
  write->pLineData = source->IsBmp() ? source->ReadLineData(&size)
                                     : source->ReadLineData(&write->nInDataKind, &write->nInDataComp, &size);
  write->inSize = size;
  return write->pLineData != nullptr;
}

}  // namespace orvalle_scan_api
