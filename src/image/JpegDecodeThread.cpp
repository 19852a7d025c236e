#include "image/JpegDecodeThread.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "image/BitmapHeader.h"
#include "image/ScanDecType.h"
#include "image/bmp_lines.h"

namespace orvalle_scan_api {
namespace {

constexpr unsigned char kWhite = 0xFF;
constexpr std::uint64_t kMaxBlockBytes = std::numeric_limits<std::uint32_t>::max();

// What a decoded JPEG is labelled with, by its depth.
COLORTYPE colorTypeOf(int bitPerPixel) { return bitPerPixel == 24 ? COLORTYPE_COLOR24BIT : COLORTYPE_TRUEGRAY; }
std::uint32_t dataKindOf(int bitPerPixel) {
  return static_cast<std::uint32_t>(bitPerPixel == 24 ? kLineKindRgb : kLineKindMono);
}

struct ErrorRow {
  JPEGDECODESTATUS status;
  QSRSLT code;
  const char* text;
};
constexpr ErrorRow kErrors[] = {
    {JPEGDECODE_ERROR, QSRSLT_JPEG_ERROR, "Jpeg Dec error is Err"},
    {JPEGDECODE_INVALID_PARAMETER, QSRSLT_JPEG_BAD_PARAMETER, "Jpeg Dec error is invalid parameter"},
    {JPEGDECODE_LOW_MEMORY, QSRSLT_JPEG_LOW_MEMORY, "Jpeg Dec error is low memory"},
    {JPEGDECODE_MEMORY_PROC, QSRSLT_JPEG_MEMORY_PROC, "Jpeg Dec error is memory proc"},
    {JPEGDECODE_CREATE_STREAM, QSRSLT_JPEG_STREAM_CREATE, "Jpeg Dec error is create stream failed"},
    {JPEGDECODE_WRITE_STREAM, QSRSLT_JPEG_STREAM_WRITE, "Jpeg Dec error is write stream failed"},
    {JPEGDECODE_NOT_OPENED, QSRSLT_JPEG_NOT_OPENED, "Jpeg Dec error is not opened"},
    {JPEGDECODE_WRITE_BAND, QSRSLT_JPEG_BAND_WRITE, "Jpeg Dec error is write band failed"},
};

}  // namespace

QSRSLT CJpegDecodeThread::Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device,
                                      CScanError* scanError, IJpegDecode* jpegDecode) {
  if (scanError == nullptr || jpegDecode == nullptr) return QSRSLT_JPEG_NO_DECODER;
  if (IsStarted()) return QSRSLT_SUCCESS;  // a worker reads the two
  m_pScanError = scanError;
  m_pJpegDecode = jpegDecode;
  return CImageProcThread_Base::Start1Image(user, device);
}

QSRSLT CJpegDecodeThread::ConvertJpegDecErrToQSRSLT(JPEGDECODESTATUS status) {
  for (const ErrorRow& row : kErrors) {
    if (row.status != status) continue;
    g_ScanDevApiLog.WriteLog(2, "%s", row.text);
    return row.code;
  }
  return QSRSLT_SUCCESS;
}

void CJpegDecodeThread::ThreadProc() {
  RunPage(*m_pScanError, QSRSLT_JPEG_ERROR, [this] {
    QSRSLT result = IsPageWanted(*m_pScanError) ? DecodeJpegImage(m_pImage) : QSRSLT_SUCCESS;
    CImageDataStore& raw = m_pImage->m_rawData;
    const BmpLines decoded = bmpLines(raw.GetData(), raw.GetDataSize());
    // A failed decode keeps its code, also where a part of its bands is here.
    if (result == QSRSLT_SUCCESS && m_deviceParam.colorType == COLORTYPE_TRUEGRAY && decoded.bitPerPixel == 24) {
      result = Convert24BitColorToTrueGrayImageDataStore(&raw);
    }
    return result;
  });
}

bool CJpegDecodeThread::IsLongPaper() const {
  return m_userParam.paperType == PAPERTYPE_LONG_NARROW || m_userParam.paperType == PAPERTYPE_LONG;
}

bool CJpegDecodeThread::IsPageDecodeMode(unsigned int pixelDataSize) const {
  return !IsLongPaper() && m_pJpegDecode->GetDecodeMode(pixelDataSize) == 1;
}

QSRSLT CJpegDecodeThread::DecodeJpegImage(CImageData* page) {
  Trace trace(__func__);
  if (m_pJpegDecode == nullptr) return trace.ret(QSRSLT_JPEG_NO_DECODER);
  if (page == nullptr) return trace.ret(QSRSLT_SUCCESS);
  // The page was made before the device said that it sends JPEG: its place is the JPEG store, since both routes write
  // to m_rawData.
  if (page->m_pCurrentStore->IsJpeg() && page->m_pCurrentStore != &page->m_jpegData) {
    page->m_pCurrentStore->MoveDataBlockTo(&page->m_jpegData);
    page->m_pCurrentStore = &page->m_jpegData;
  }
  const CImageDataStore& source = *page->m_pCurrentStore;
  const std::uint64_t pixelBytes =
      CBitmapHeader().CalcPixelDataSize(source.GetWidthPixel(), source.GetHeightPixel(), source.GetBitPerPixel());
  const bool wholePage = IsPageDecodeMode(static_cast<unsigned>(std::min(pixelBytes, kMaxBlockBytes)));
  return trace.ret(wholePage ? DecodeJpegImage_Page(page) : DecodeJpegImage_Band(page));
}

QSRSLT CJpegDecodeThread::DecodeJpegImage_Page(CImageData* page) {
  Trace trace(__func__);
  CImageDataStore& source = *page->m_pCurrentStore;
  CImageDataStore& target = page->m_rawData;
  struct PageEnder {
    IJpegDecode* decoder;
    ~PageEnder() { decoder->EndPage(); }
  } const ender{m_pJpegDecode};
  g_ScanDevApiLog.WriteLog(1, "Start JpegDcode. JpegSize = %d", static_cast<int>(source.GetDataSize()));
  tagQS_SCAN_IMAGEDATA decoded{};
  const JPEGDECODESTATUS status = m_pJpegDecode->DecodePage(source.GetData(), source.GetDataSize(), &decoded);
  g_ScanDevApiLog.WriteLog(1, "End JpegDcode jpgDecStatus = %d", status);
  const QSRSLT failure = ConvertJpegDecErrToQSRSLT(status);
  if (failure != QSRSLT_SUCCESS) return trace.ret(failure);
  if (decoded.dataSize > kMaxBlockBytes) return trace.ret(QSRSLT_NO_PAGE_MEMORY);

  const auto decodedBytes = static_cast<unsigned>(decoded.dataSize);
  const auto bmpHeight = static_cast<unsigned>(CBitmapHeader().GetHeightPixel(decoded.data, decodedBytes));
  const auto sourceHeight = static_cast<unsigned>(source.GetHeightPixel());
  const bool heightKnown = source.GetHeightPixel() >= 1;
  const int height = static_cast<int>(heightKnown ? std::min(bmpHeight, sourceHeight) : bmpHeight);
  const int resX = source.GetResolutionX();
  const int resY = source.GetResolutionY();
  const int width = source.GetWidthPixel();
  const COLORTYPE colorType = colorTypeOf(decoded.bitPerPixel);
  const std::uint32_t dataKind = dataKindOf(decoded.bitPerPixel);
  g_ScanDevApiLog.WriteLog(1,
                           "Write Jpeg Decoded Data. resoX = %d, resoY = %d, widthPix = %d, heightPix = %d, "
                           "colorType =%d, dataType =%d",
                           resX, resY, width, height, colorType, static_cast<int>(dataKind));
  target.StartWriteData(resX, resY, width, height, colorType, dataKind, kCompressNone);
  source.DeleteData();
  const QSRSLT result = target.WriteBmpUpsideDown(decoded.data, decodedBytes);
  target.FinishWriteData(false, 0);
  g_ScanDevApiLog.WriteLog(1, "Invert bmp height");
  TraceImageTurned(target);
  page->m_pCurrentStore = &target;
  return trace.ret(result);
}

QSRSLT CJpegDecodeThread::DecodeJpegImage_Band(CImageData* page) {
  Trace trace(__func__);
  CImageDataStore* source = page->m_pCurrentStore;
  CImageDataStore& target = page->m_rawData;
  g_ScanDevApiLog.WriteLog(1, "Open JpegDcode. JpegSize = %d", static_cast<int>(source->GetDataSize()));
  JPEGBANDINFO info{};
  JPEGDECODESTATUS status = m_pJpegDecode->OpenBand(source->GetData(), source->GetDataSize(), &info);
  g_ScanDevApiLog.WriteLog(1, "Open JpegDcode. result status = %d", status);
  QSRSLT result = ConvertJpegDecErrToQSRSLT(status);
  if (result != QSRSLT_SUCCESS) return trace.ret(result);
  struct BandCloser {
    IJpegDecode* decoder;
    void close() {
      if (decoder != nullptr) decoder->CloseBand();
      decoder = nullptr;
    }
    ~BandCloser() { close(); }
  } band{m_pJpegDecode};
  if (source == &target) {  // starting the target would free the bytes that are yet to be fed
    source->MoveDataBlockTo(&page->m_jpegData);
    source = &page->m_jpegData;
  }

  const int height = source->GetHeightPixel() >= 1 ? source->GetHeightPixel() : info.heightPixel;
  CBitmapHeader bitmap;
  int headerSize = 0;
  const unsigned char* const header = bitmap.CreateBmpHeader(info.resolutionX, info.resolutionY, info.bitPerPixel,
                                                             info.widthPixel, height, nullptr, &headerSize);
  g_ScanDevApiLog.WriteLog(1, "Start JpegDcode jpgDecStatus = %d", status);
  target.StartWriteData(source->GetResolutionX(), source->GetResolutionY(), info.widthPixel, info.heightPixel,
                        colorTypeOf(info.bitPerPixel), dataKindOf(info.bitPerPixel), kCompressNone);
  result = target.WriteDataBlock(header, static_cast<unsigned>(headerSize));
  if (result != QSRSLT_SUCCESS) {
    g_ScanDevApiLog.WriteLog(0, "Write Jpeg Docoded band failed. ret = %d", static_cast<int>(result));
    return trace.ret(result);
  }
  result = FeedBands(source->GetData(), source->GetDataSize(), info, target);
  band.close();  // the decoder may refer to the stream until here
  source->DeleteData();
  if (result != QSRSLT_SUCCESS) return trace.ret(result);
  // The lines came top first and stay so: the line stage turns them.
  target.FinishWriteData(false, 0);
  page->m_pCurrentStore = &target;
  return trace.ret(result);
}

QSRSLT CJpegDecodeThread::FeedBands(const unsigned char* jpeg, unsigned int jpegSize, const JPEGBANDINFO& info,
                                    CImageDataStore& target) {
  const std::uint64_t widthBytes = CBitmapHeader().CalcWidthBytes(info.widthPixel, info.bitPerPixel);
  if (widthBytes > kMaxBlockBytes) return QSRSLT_NO_PAGE_MEMORY;
  unsigned span = std::min(static_cast<unsigned>(std::max(0, info.writeSizeSpan)), jpegSize);
  unsigned written = 0;
  int lineCount = 0;
  g_ScanDevApiLog.WriteLog(1, "jpgSize = %d, widthBytesSize = %d, writtenSize = %d, writeSizeSpan = %d",
                           static_cast<int>(jpegSize), static_cast<int>(widthBytes), static_cast<int>(written),
                           static_cast<int>(span));
  while (span != 0) {
    g_ScanDevApiLog.WriteLog(2, "Write Jpeg data. size = %d", static_cast<int>(span));
    JPEGDECODESTATUS status = m_pJpegDecode->WriteBand(jpeg + written, span);
    if (status != JPEGDECODE_OK) {
      const QSRSLT refused = ConvertJpegDecErrToQSRSLT(status);
      g_ScanDevApiLog.WriteLog(1, "WriteJpegBlockData failed. ret = 0x%X", refused);
      return refused;
    }
    written += span;
    span = std::min(span, jpegSize - written);
    const QSRSLT result = DrainBand(static_cast<unsigned>(widthBytes), target, &lineCount, &status);
    if (result != QSRSLT_SUCCESS || status != JPEGDECODE_NEED_INPUT || m_end) return result;
  }
  return QSRSLT_SUCCESS;
}

QSRSLT CJpegDecodeThread::DrainBand(unsigned int widthBytes, CImageDataStore& target, int* lineCount,
                                    JPEGDECODESTATUS* status) {
  QSRSLT result = QSRSLT_SUCCESS;
  do {
    void* line = nullptr;
    unsigned lineSize = 0;
    *status = m_pJpegDecode->ReadBandLine(&line, &lineSize);
    g_ScanDevApiLog.WriteLog(2, "ReadBandLineData. readensize = %d, jpgDecStatus = %d", static_cast<int>(lineSize),
                             *status);
    result = ConvertJpegDecErrToQSRSLT(*status);
    if (lineSize != 0) {
      // A line that is shorter than it should be is made up with white.
      const unsigned present = std::min(lineSize, widthBytes);
      QSRSLT wrote = target.WriteDataBlock(static_cast<const unsigned char*>(line), present);
      if (wrote == QSRSLT_SUCCESS && present < widthBytes) wrote = target.WriteFill(kWhite, widthBytes - present);
      if (wrote != QSRSLT_SUCCESS) return wrote;
      ++*lineCount;
      g_ScanDevApiLog.WriteLog(2, "WriteDataBlock. ret = %d. line cnt = %d", static_cast<int>(wrote), *lineCount);
    }
  } while (*status == JPEGDECODE_MORE_LINES && !m_end);
  return result;
}

QSRSLT CJpegDecodeThread::Convert24BitColorToTrueGrayImageDataStore(CImageDataStore* store) {
  if (store == nullptr) return QSRSLT_GRAY_NULL_IMAGE;
  Trace trace(__func__);
  const BmpLines lines = bmpLines(store->GetData(), store->GetDataSize());
  CBitmapHeader bitmap;
  // The description's, since a BMP header holds them in pixels per metre, where 150 dots per inch come back as 149.
  const int resX = store->GetResolutionX();
  const int resY = store->GetResolutionY();
  const int height = static_cast<int>(lines.promised);
  constexpr int kGrayBits = 8;
  int headerSize = 0;
  const unsigned char* const header =
      bitmap.CreateBmpHeader(resX, resY, kGrayBits, lines.widthPx, height, bitmap.CreateGrayColorTable(), &headerSize);
  const std::uint64_t grayBytes = bitmap.CalcBmpSize(kGrayBits, lines.widthPx, height);
  // Cleared: pixels that the source does not have are 0.
  auto* const gray = static_cast<unsigned char*>(grayBytes > kMaxBlockBytes ? nullptr : std::calloc(1, grayBytes));
  if (gray == nullptr) return trace.ret(QSRSLT_GRAY_NO_MEMORY);
  std::memcpy(gray, header, static_cast<std::size_t>(headerSize));
  // Neither form pads its lines, so that the pixels follow each other.
  const std::size_t present = store->GetDataSize() - std::min<std::size_t>(store->GetDataSize(), lines.offset);
  const std::size_t pixels = std::min<std::size_t>(grayBytes - static_cast<std::size_t>(headerSize), present / 3);
  const unsigned char* in = store->GetData() + (pixels > 0 ? lines.offset : 0);
  unsigned char* const out = gray + headerSize;
  for (std::size_t i = 0; i < pixels; ++i, in += 3) out[i] = static_cast<unsigned char>((in[0] + in[1] + in[2]) / 3);
  store->StartWriteData(resX, resY, lines.widthPx, height, COLORTYPE_TRUEGRAY, kLineKindGray, kCompressNone);
  store->SetDataMemAddress(gray, static_cast<unsigned>(grayBytes));
  return trace.ret(QSRSLT_SUCCESS);
}

}  // namespace orvalle_scan_api
