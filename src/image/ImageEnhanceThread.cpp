#include "image/ImageEnhanceThread.h"

#include <functional>
#include <limits>
#include <vector>

#include "image/BitmapHeader.h"
#include "image/ScanDecType.h"

namespace orvalle_scan_api {
namespace {

struct Label {
  COLORTYPE colorType;
  std::uint32_t dataKind;
};
Label labelOfDepth(int bitPerPixel) {
  switch (bitPerPixel) {
    case 1:
      return {COLORTYPE_BLACKANDWHITE, kLineKindMono};
    case 8:
      return {COLORTYPE_TRUEGRAY, kLineKindGray};
    default:
      return {COLORTYPE_COLOR24BIT, kLineKindBgr};
  }
}

int autoColorMode(int autoColorBpp) {
  if (autoColorBpp == 1) return 2;
  return autoColorBpp == 8 ? 1 : 0;
}

bool liesInside(const std::uint8_t* data, const CImageDataStore& store) {
  const std::less<const std::uint8_t*> before;
  return !store.IsEmpty() && !before(data, store.GetData()) && before(data, store.GetData() + store.GetBuffSize());
}

}  // namespace

QSRSLT CImageEnhanceThread::Start1Image(const QS_SCANNER_PARAMETERS& user, const QS_SCANNER_PARAMETERS& device,
                                        CScanError* scanError, IImageEnhance* imageEnhance, const _IE_PARAM& ieParam) {
  if (scanError == nullptr || imageEnhance == nullptr) return QSRSLT_ENHANCE_NULL;
  if (IsStarted()) return QSRSLT_SUCCESS;  // a worker reads the three
  m_pScanError = scanError;
  m_pImageEnhance = imageEnhance;
  m_ieParam = ieParam;
  return CImageProcThread_Base::Start1Image(user, device);
}

void CImageEnhanceThread::ThreadProc() {
  RunPage(*m_pScanError, QSRSLT_ENHANCE_NULL, [this] {
    const QSRSLT result = IsPageWanted(*m_pScanError) ? ImageEnhancementProc(m_pImage) : QSRSLT_SUCCESS;
    if (result != QSRSLT_SUCCESS) {
      m_pImage->SetImageEnhanceTerminated(result == QSRSLT_ENHANCE_STOPPED ? IMAGEENHANCE_STOPPED
                                                                           : IMAGEENHANCE_FAILED);
    }
    return result;
  });
}

QSRSLT CImageEnhanceThread::ImageEnhancementProc(CImageData* page) {
  Trace trace(__func__);
  if (page == nullptr) return trace.qsrslt(QSRSLT_SUCCESS);
  CImageDataStore& store = *page->m_pCurrentStore;
  g_ScanDevApiLog.WriteDump(store.GetData(), static_cast<int>(store.GetDataSize()), "DumpPreImagEnhance",
                            static_cast<int>(page->GetPageNo()));
  const unsigned failed = m_pImageEnhance->Process(&store, &m_ieParam, autoColorMode(page->GetAutoColorBpp()));
  if (failed != 0) {
    g_ScanDevApiLog.WriteLog(0, "Image Enhance process failed. imageEnhanceRslt = 0x%X", failed);
  } else {
    const QSRSLT taken = TakeResult(m_pImageEnhance->GetResult(), store);
    if (taken != QSRSLT_SUCCESS) return trace.qsrslt(taken);
  }
  QSRSLT result = DetectEndOfPageProc(store);
  if (result != QSRSLT_SUCCESS) return trace.qsrslt(result);

  if (IsNeedChangeResolution()) {
    g_ScanDevApiLog.WriteLog(0, "Change resolution");
    result = ChangeImageResolutionProc(store, page->m_finalData);
    store.DeleteData();
  } else {
    g_ScanDevApiLog.WriteLog(0, "No Change resolution");
    store.MoveDataBlockTo(&page->m_finalData);
  }
  page->m_pCurrentStore = &page->m_finalData;
  return trace.qsrslt(result);
}

QSRSLT CImageEnhanceThread::TakeResult(const tagQS_SCAN_IMAGEDATA& result, CImageDataStore& store) {
  if (result.data == nullptr || result.dataSize == 0) {
    const Label label = labelOfDepth(CBitmapHeader().GetBitPerPixel(store.GetData(), store.GetDataSize()));
    store.UpdateColorType(label.colorType);
    store.UpdateDataType(label.dataKind);
    return QSRSLT_SUCCESS;
  }
  if (result.dataSize > std::numeric_limits<std::uint32_t>::max()) return QSRSLT_NO_PAGE_MEMORY;
  const auto size = static_cast<unsigned>(result.dataSize);
  // A result that points into the page itself would be freed before it is copied.
  std::vector<std::uint8_t> saved;
  const std::uint8_t* data = result.data;
  if (liesInside(data, store)) {
    saved.assign(data, data + size);
    data = saved.data();
  }
  const Label label = labelOfDepth(result.bitPerPixel);
  store.StartWriteData(result.resolutionX, result.resolutionY, result.widthPixel, result.heightPixel, label.colorType,
                       label.dataKind, store.GetCompressType());
  const QSRSLT wrote = store.WriteDataBlock(data, size);
  if (wrote != QSRSLT_SUCCESS) return wrote;
  store.FinishWriteData(false, 0);
  return store.CompleteBmp();
}

// A page of fixed size that the feeder ended early is made up to the size that was ordered, unless the user allowed it
// to end.
QSRSLT CImageEnhanceThread::DetectEndOfPageProc(CImageDataStore& store) const {
  Trace trace(Trace::NoEntryLine{}, __func__);
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> detectEndOfPage = %d", __func__, m_userParam.detectEndOfPage);
  const PAPERTYPE paper = m_userParam.paperType;
  const bool fixedSize = paper != PAPERTYPE_AUTO && paper != PAPERTYPE_LONG_NARROW && paper != PAPERTYPE_LONG;
  const int target = m_deviceParam.scanArea.bottom;
  if (m_userParam.detectEndOfPage || m_userParam.autoRotate || !fixedSize || target <= 0) {
    return trace.qsrslt(QSRSLT_SUCCESS);
  }
  g_ScanDevApiLog.WriteLog(1, "Line data is less than user param. output length = %d, current length = %d", target,
                           store.GetHeightPixel());
  return trace.qsrslt(store.GetHeightPixel() < target ? AddImageHeight(store, target) : QSRSLT_SUCCESS);
}

QSRSLT CImageEnhanceThread::AddImageHeight(CImageDataStore& store, int height) {
  Trace trace(Trace::NoEntryLine{}, __func__);
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> CurrentHeight = %d", __func__, store.GetHeightPixel());
  if (height <= store.GetHeightPixel()) return trace.qsrslt(QSRSLT_SUCCESS);
  // Top line first, so that what is appended to the block is the bottom of the picture.
  if (!store.InvertImageHeight()) return trace.qsrslt(QSRSLT_SUCCESS);
  const unsigned char white = CBitmapHeader().GetWhiteDataValue(store.GetData(), store.GetDataSize());
  const int widthBytes = static_cast<int>(store.GetWidthBytes());
  g_ScanDevApiLog.WriteLog(1, "widthBytes = %d, fillLineDataSize = %d, whiteData = 0x%X", widthBytes, widthBytes,
                           white);
  g_ScanDevApiLog.WriteLog(1, "Start write white data");
  store.SetImageHeight(height);
  const QSRSLT wrote = store.CompleteBmp();
  if (wrote != QSRSLT_SUCCESS) return trace.qsrslt(wrote);
  g_ScanDevApiLog.WriteLog(1, "Write white data succeed");
  return trace.qsrslt(store.InvertImageHeight() ? QSRSLT_SUCCESS : QSRSLT_PADDED_PAGE_NOT_TURNED);
}

}  // namespace orvalle_scan_api
