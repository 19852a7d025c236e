#include "reception/ImageDataStore.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "foundation/trace.h"
#include "image/BitmapImage.h"
#include "image/JpegImage.h"
#include "image/ScanDecType.h"
#include "image/bmp_lines.h"
#include "image/stream_copy.h"

namespace orvalle_scan_api {
namespace {

constexpr std::uint32_t kGrowthStepBytes = 0x1900000;  // 25 MiB
constexpr std::uint64_t kMaxBlockBytes = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kRecordWordsBytes = 12;

int clampedInt(std::uint64_t value) {
  return static_cast<int>(std::min<std::uint64_t>(value, std::numeric_limits<int>::max()));
}

// A large block is used once and given back: with small pages, touching it for the first time costs as much as copying
// it. Only a wish; where it is not granted all stays as it is.
void askForHugePages(void* block, std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
  const std::uintptr_t skipped = (kHugePage - reinterpret_cast<std::uintptr_t>(block) % kHugePage) % kHugePage;
  if (size < skipped + kHugePage) return;
  madvise(static_cast<unsigned char*>(block) + skipped, (size - skipped) / kHugePage * kHugePage, MADV_HUGEPAGE);
#endif
}

}  // namespace

struct CImageDataStore::Layout {
  using Store = CImageDataStore;
  using View = PAGE_STORE_VIEW;
  static_assert(std::is_standard_layout_v<Store> && sizeof(Store) == sizeof(View));
  static_assert(std::atomic<unsigned char*>::is_always_lock_free && std::atomic<std::int32_t>::is_always_lock_free);
  static_assert(offsetof(Store, m_data) == offsetof(View, data) && sizeof(Store::m_data) == sizeof(View::data));
  static_assert(offsetof(Store, m_dataSize) == offsetof(View, dataSize));
  static_assert(offsetof(Store, m_buffSize) == offsetof(View, blockSize));
  static_assert(offsetof(Store, m_resolutionX) == offsetof(View, resolutionX));
  static_assert(offsetof(Store, m_resolutionY) == offsetof(View, resolutionY));
  static_assert(offsetof(Store, m_widthPixel) == offsetof(View, widthPixel));
  static_assert(offsetof(Store, m_heightPixel) == offsetof(View, heightPixel));
  static_assert(offsetof(Store, m_colorType) == offsetof(View, colorType));
  static_assert(offsetof(Store, m_dataType) == offsetof(View, dataKind));
  static_assert(offsetof(Store, m_compressType) == offsetof(View, compressCode));
  static_assert(offsetof(Store, m_status) == offsetof(View, status) && sizeof(Store::m_status) == sizeof(View::status));
  static_assert(offsetof(Store, m_readPos) == offsetof(View, readPosition));
};

int bitsOfColorType(COLORTYPE colorType) {
  constexpr int kBits[] = {24, 1, 1, 8, 8, 24};
  return colorType >= COLORTYPE_AUTO && colorType <= COLORTYPE_COLOR24BIT ? kBits[colorType] : 24;
}

CImageDataStore::~CImageDataStore() { std::free(block()); }

void CImageDataStore::StartWriteData(int resX, int resY, int width, int height, COLORTYPE colorType,
                                     std::uint32_t dataType, std::uint32_t compressType) {
  DeleteData();
  m_resolutionX = resX;
  m_resolutionY = resY;
  m_widthPixel = width;
  m_heightPixel = height;
  m_colorType = colorType;
  m_dataType = dataType;
  m_compressType = compressType;
}

QSRSLT CImageDataStore::WriteDataBlock(const unsigned char* data, unsigned int size) {
  if (data == nullptr) return QSRSLT_NULL_DATA;
  unsigned char* const room = MakeRoom(size);
  if (room == nullptr) return QSRSLT_NO_PAGE_MEMORY;
  std::memcpy(room, data, size);
  m_dataSize += size;
  return QSRSLT_SUCCESS;
}

QSRSLT CImageDataStore::WriteLineData(int first, int second, const unsigned char* line, unsigned int size) {
  if (line == nullptr && size > 0) return QSRSLT_NULL_DATA;
  unsigned char* room = MakeRoom(kRecordWordsBytes + std::uint64_t{size});
  if (room == nullptr) return QSRSLT_NO_PAGE_MEMORY;
  const std::uint32_t words[] = {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second), size};
  static_assert(sizeof words == kRecordWordsBytes);
  std::memcpy(room, words, sizeof words);
  if (size > 0) std::memcpy(room + sizeof words, line, size);
  m_dataSize += static_cast<std::uint32_t>(sizeof words) + size;
  if (m_heightPixel < std::numeric_limits<std::int32_t>::max()) ++m_heightPixel;
  return QSRSLT_SUCCESS;
}

QSRSLT CImageDataStore::WriteFill(unsigned char value, std::uint64_t size) {
  unsigned char* const room = MakeRoom(size);
  if (room == nullptr) return QSRSLT_NO_PAGE_MEMORY;
  std::memset(room, value, size);
  m_dataSize += static_cast<std::uint32_t>(size);
  return QSRSLT_SUCCESS;
}

QSRSLT CImageDataStore::WriteBmpUpsideDown(const unsigned char* data, unsigned int size) {
  if (data == nullptr) return QSRSLT_NULL_DATA;
  unsigned char* const room = MakeRoom(size);
  if (room == nullptr) return QSRSLT_NO_PAGE_MEMORY;
  const std::size_t headBytes = std::min<std::size_t>(size, kBmpHeadersBytes);
  std::memcpy(room, data, headBytes);
  if (isBmp(room, size)) CBitmapHeader().SetHeightPixel(room, size, m_heightPixel);
  const BmpLines lines = bmpLines(room, size);
  const std::size_t linesAt = lines.count > 0 ? lines.offset : size;
  std::memcpy(room + headBytes, data + headBytes, linesAt - headBytes);
  // Read forwards, which the processor looks ahead on; twice as fast as the other way.
  for (std::size_t i = 0; i < lines.count; ++i) {
    streamCopy(lines.line(lines.count - 1 - i), data + linesAt + i * lines.lineBytes, lines.lineBytes);
  }
  streamCopyDone();
  const std::size_t restAt = linesAt + lines.count * lines.lineBytes;
  std::memcpy(room + restAt, data + restAt, size - restAt);
  TakeFilled(size);
  return QSRSLT_SUCCESS;
}

unsigned char* CImageDataStore::ReadLineData(int* first, int* second, unsigned int* size) {
  if (first == nullptr || second == nullptr || size == nullptr) return nullptr;
  unsigned char* const data = block();
  if (data != nullptr && m_readPos + kRecordWordsBytes <= m_dataSize) {
    std::uint32_t words[3];
    std::memcpy(words, data + m_readPos, sizeof words);
    const std::size_t lineAt = m_readPos + kRecordWordsBytes;
    if (words[2] <= m_dataSize - lineAt) {
      *first = static_cast<int>(words[0]);
      *second = static_cast<int>(words[1]);
      *size = words[2];
      m_readPos = lineAt + words[2];
      return data + lineAt;
    }
  }
  *first = 0;
  *second = 0;
  *size = 0;
  m_readPos = 0;
  return nullptr;
}

unsigned char* CImageDataStore::ReadLineData(unsigned int* size) {
  if (size == nullptr) return nullptr;
  if (CScanDecType::IsNonCompress(m_compressType)) {
    const BmpLines lines = bmpLines(block(), m_dataSize);
    const std::size_t at = std::max(m_readPos, lines.offset);
    if (lines.count > 0 && at < lines.offset + lines.count * lines.lineBytes) {
      *size = static_cast<unsigned>(lines.lineBytes);
      m_readPos = at + lines.lineBytes;
      return block() + at;
    }
  }
  *size = 0;
  m_readPos = 0;
  return nullptr;
}

void CImageDataStore::FinishWriteData(bool discard, int height) {
  if (IsWriteDataFinished()) return;
  if (m_buffSize > m_dataSize && m_dataSize > 0) {
    void* const exact = std::realloc(block(), m_dataSize);
    if (exact != nullptr) {
      setBlock(static_cast<unsigned char*>(exact));
      m_buffSize = m_dataSize;
    }
  }
  if (height > 0) m_heightPixel = height;
  correctHeightInHeader();
  if (discard) DeleteData();
  // Last, since it is what lets other threads read the rest.
  m_status.store(discard ? IMAGEDATA_DISCARDED : IMAGEDATA_FINISHED, std::memory_order_release);
}

void CImageDataStore::correctHeightInHeader() {
  if (IsJpeg()) {
    CJpegImage jpeg(block(), m_dataSize);
    const int announced = jpeg.GetHeightPix(block(), m_dataSize);
    // The height is lowered, never raised: a decoder would invent the lines between.
    const bool lowEnough = announced >= 1 && announced <= m_heightPixel;
    if (m_heightPixel >= 1 && !lowEnough) jpeg.ReduceHeightInfo(m_heightPixel);
  } else if (IsNoComp() && IsBmp()) {
    CBitmapHeader().SetHeightPixel(block(), m_dataSize, m_heightPixel);
  }
}

void CImageDataStore::DeleteData() {
  std::free(m_data.exchange(nullptr, std::memory_order_acq_rel));
  m_dataSize = 0;
  m_buffSize = 0;
  m_readPos = 0;
}

void CImageDataStore::CancelProc() {
  DeleteData();
  m_status.store(IMAGEDATA_CANCELED, std::memory_order_release);
}

void CImageDataStore::SetDataMemAddress(unsigned char* data, unsigned int size) {
  DeleteData();
  m_dataSize = size;
  m_buffSize = size;
  setBlock(data);
  m_status.store(IMAGEDATA_FINISHED, std::memory_order_release);
}

bool CImageDataStore::MoveDataBlockTo(CImageDataStore* target) {
  if (target == nullptr) return false;
  if (target == this) {
    m_status.store(IMAGEDATA_FINISHED, std::memory_order_release);
    return true;
  }
  target->StartWriteData(m_resolutionX, m_resolutionY, m_widthPixel, m_heightPixel, m_colorType, m_dataType,
                         m_compressType);
  target->m_dataSize = m_dataSize;
  target->m_buffSize = m_dataSize;
  target->setBlock(m_data.exchange(nullptr, std::memory_order_acq_rel));
  DeleteData();
  target->m_status.store(IMAGEDATA_FINISHED, std::memory_order_release);
  return true;
}

bool CImageDataStore::InvertImageWidth() {
  Trace trace(__func__);
  return trace.success(IsBmp() && CBitmapImage(block(), m_dataSize).InvertWidth());
}

bool CImageDataStore::InvertImageHeight() {
  Trace trace(__func__);
  return trace.success(IsBmp() && CBitmapImage(block(), m_dataSize).InvertHeight());
}

int CImageDataStore::TrimImageHeight(int newHeight) {
  if (newHeight < 1 || newHeight >= m_heightPixel || !IsBmp()) return 0;
  const unsigned newBmpSize = CBitmapImage(block(), m_dataSize).TrimBmpPageHeight(newHeight, true);
  g_ScanDevApiLog.WriteLog(1, "newBmpSize = %d", static_cast<int>(newBmpSize));
  if (newBmpSize != 0) {
    m_heightPixel = newHeight;
    m_dataSize = std::min(m_dataSize, newBmpSize);
  }
  return 0;
}

bool CImageDataStore::SetImageHeight(int height) {
  if (!IsBmp() || !CBitmapHeader().SetHeightPixel(block(), m_dataSize, height)) return false;
  m_heightPixel = height;
  return true;
}

QSRSLT CImageDataStore::CompleteBmp() {
  const BmpLines lines = bmpLines(block(), m_dataSize);
  std::uint64_t wanted = 0;
  if (lines.lineBytes == 0 || lines.promised == 0) return QSRSLT_SUCCESS;
  if (__builtin_mul_overflow(std::uint64_t{lines.promised}, std::uint64_t{lines.lineBytes}, &wanted)) {
    return QSRSLT_NO_PAGE_MEMORY;
  }
  wanted += lines.offset;
  if (wanted <= m_dataSize) {
    m_dataSize = static_cast<std::uint32_t>(wanted);
    return QSRSLT_SUCCESS;
  }
  // A header that is cut inside its palette cannot be mended: what follows would be taken for colours.
  if (m_dataSize < lines.offset) return QSRSLT_SUCCESS;
  const std::int32_t status = GetStatus();
  const unsigned char white = CBitmapHeader().GetWhiteDataValue(block(), m_dataSize);
  const QSRSLT result = WriteFill(white, wanted - m_dataSize);
  m_status.store(status, std::memory_order_release);
  return result;
}

bool CImageDataStore::IsBmp() const { return isBmp(block(), m_dataSize); }
bool CImageDataStore::IsJpeg() const { return CScanDecType::IsJpegCompress(m_compressType); }
bool CImageDataStore::IsPackBits() const { return CScanDecType::IsPackBitsCompress(m_compressType); }
bool CImageDataStore::IsNoComp() const { return !IsJpeg() && !IsPackBits(); }

bool CImageDataStore::IsWriteDataFinished() const {
  const std::int32_t status = GetStatus();
  return status == IMAGEDATA_FINISHED || status == IMAGEDATA_DISCARDED;
}

std::uint64_t CImageDataStore::GetWidthBytes() const {
  return CBitmapHeader().CalcWidthBytes(m_widthPixel, GetBitPerPixel());
}

unsigned char* CImageDataStore::GetPixelDataPtr(unsigned int* size) const {
  unsigned bytes = m_dataSize;
  unsigned char* pixels = block();
  if (CScanDecType::IsNonCompress(m_compressType)) {
    pixels = CBitmapHeader().GetBmpPixelDataPointer(block(), m_dataSize, &bytes);
  }
  if (size != nullptr) *size = bytes;
  return pixels;
}

tagQS_SCAN_IMAGEDATA CImageDataStore::GetImageData() const {
  tagQS_SCAN_IMAGEDATA image{};
  image.data = block();
  image.dataSize = m_dataSize;
  image.pixelData = GetPixelDataPtr(&image.pixelDataSize);
  image.resolutionX = m_resolutionX;
  image.resolutionY = m_resolutionY;
  image.bitPerPixel = GetBitPerPixel();
  image.widthPixel = m_widthPixel;
  image.heightPixel = m_heightPixel;
  image.widthBytes = clampedInt(GetWidthBytes());
  return image;
}

std::uint64_t CImageDataStore::CalcReallocBuffSize(std::uint32_t buffSize, std::uint32_t usedSize,
                                                   std::uint32_t addSize) const {
  std::uint64_t result = buffSize;
  const std::uint64_t needed = std::uint64_t{usedSize} + addSize;
  if (usedSize == 0) {
    result = kGrowthStepBytes;
    if (IsNoComp() && m_widthPixel > 0 && m_heightPixel > 0) {
      result = CBitmapHeader().CalcBmpSize(GetBitPerPixel(), m_widthPixel, m_heightPixel);
    }
    if (result >= addSize) return result;
  }
  if (needed <= buffSize) return result;
  return addSize <= kGrowthStepBytes ? result + kGrowthStepBytes : needed;
}

bool CImageDataStore::ReallocDataBlockBuffer(std::uint32_t newSize) {
  if (newSize <= m_buffSize && !IsEmpty()) return true;
  // Not cleared: only what was written is ever read, and clearing a page costs as much as copying it.
  void* const data = std::realloc(block(), newSize);
  if (data == nullptr) return false;
  setBlock(static_cast<unsigned char*>(data));
  m_buffSize = newSize;
  askForHugePages(data, newSize);
  return true;
}

unsigned char* CImageDataStore::MakeRoom(std::uint64_t size) {
  m_status.store(IMAGEDATA_WRITING, std::memory_order_release);
  if (size > kMaxBlockBytes - m_dataSize) return nullptr;
  const std::uint64_t newSize = CalcReallocBuffSize(m_buffSize, m_dataSize, static_cast<std::uint32_t>(size));
  if (newSize > kMaxBlockBytes || !ReallocDataBlockBuffer(static_cast<std::uint32_t>(newSize))) return nullptr;
  return block() + m_dataSize;
}

}  // namespace orvalle_scan_api
