// The change of a page's resolution: what the device could not deliver is made from what it did.
#include <algorithm>
#include <cstdlib>
#include <memory>

#include "image/BitmapHeader.h"
#include "image/ImageEnhanceThread.h"
#include "image/QvChangeReso.h"
#include "image/bmp_lines.h"

namespace orvalle_scan_api {
namespace {

// A one-bit line can be a byte longer than the distance of two lines: the last one needs room behind it.
constexpr std::size_t kBufferSlack = 64;

std::uint32_t formatFlags(COLORTYPE colorType) {
  switch (colorType) {
    case COLORTYPE_BLACKANDWHITE:
      return 0x101;
    case COLORTYPE_ERRORDIFFUSION:
      return 0x102;
    case COLORTYPE_TRUEGRAY:
      return 0x208;
    default:
      return 0x420;
  }
}

struct FreeDeleter {
  void operator()(void* block) const { std::free(block); }
};

// The page under way: lines in, lines of the target out.
class ResolutionChange {
 public:
  ResolutionChange(CQvChangeReso& reso, CImageDataStore& target, unsigned lineBytes)
      : m_reso(reso), m_target(target), m_lineBytes(lineBytes) {}

  bool prepare(const CHRESO_OPEN& open) {
    const std::size_t size = open.writeBufferSize + kBufferSlack;
    m_buffer.reset(static_cast<unsigned char*>(std::calloc(size, 1)));
    m_write.writeBuffer = m_buffer.get();
    m_write.writeBufferBytes = size;
    return m_buffer != nullptr;
  }

  QSRSLT writeLines(const BmpLines& source, int lineKind, unsigned long lineBytes) {
    m_write.lineKind = lineKind;
    m_write.lineBytes = lineBytes;
    for (std::size_t i = 0; i < source.count; ++i) {
      m_write.lineData = source.line(i);
      int lines = 0;
      const int bytes = m_reso.ChangeResoWrite(&m_write, &lines);
      if (bytes <= 0 || lines <= 0) continue;
      for (int line = 0; line < lines; ++line) {
        const unsigned char* const from =
            m_buffer.get() + static_cast<std::size_t>(bytes / lines) * static_cast<std::size_t>(line);
        const QSRSLT result = m_target.WriteDataBlock(from, m_lineBytes);
        if (result != QSRSLT_SUCCESS) return result;
      }
      m_total += lines;
    }
    return QSRSLT_SUCCESS;
  }

  // What the last lines still give goes out as one block; the page is then as high as it came out. Behind a failure
  // nothing is written: a later block that found room would make a page with a hole look whole.
  QSRSLT flush(QSRSLT result) {
    int lines = 0;
    const int bytes = m_reso.ChangeResoWriteEnd(&m_write, &lines);
    if (result != QSRSLT_SUCCESS || bytes <= 0) return result;
    result = m_target.WriteDataBlock(m_buffer.get(), static_cast<unsigned>(bytes));
    if (result == QSRSLT_SUCCESS) m_target.SetImageHeight(m_total + lines);
    return result;
  }

 private:
  CQvChangeReso& m_reso;
  CImageDataStore& m_target;
  unsigned m_lineBytes;
  CHRESO_WRITE m_write{};
  std::unique_ptr<unsigned char, FreeDeleter> m_buffer;
  int m_total = 0;
};

}  // namespace

bool CImageEnhanceThread::IsNeedChangeResolution() const {
  return m_userParam.resolution.x > m_deviceParam.resolution.x || m_userParam.resolution.y > m_deviceParam.resolution.y;
}

QSRSLT CImageEnhanceThread::ChangeImageResolutionProc(const CImageDataStore& source, CImageDataStore& target) const {
  Trace trace(__func__);
  CHRESO_OPEN open{};
  open.inResoX = static_cast<std::int32_t>(m_deviceParam.resolution.x);
  open.inResoY = static_cast<std::int32_t>(m_deviceParam.resolution.y);
  open.outResoX = static_cast<std::int32_t>(m_userParam.resolution.x);
  open.outResoY = static_cast<std::int32_t>(m_userParam.resolution.y);
  open.formatFlags = formatFlags(source.GetColorType());
  open.inLinePixels = static_cast<unsigned long>(std::max(0, source.GetWidthPixel()));
  open.colorOrder = 3;
  CQvChangeReso reso;
  if (!reso.ChangeResoInit(&open) || open.outPixels == 0) return trace.qsrslt(QSRSLT_CHANGE_RESO_INIT);

  CBitmapHeader bitmap;
  const int bpp = source.GetBitPerPixel();
  const int width = static_cast<int>(open.outPixels);
  const auto lineBytes = static_cast<unsigned>(bitmap.CalcWidthBytes(width, bpp));
  const int height = static_cast<int>(static_cast<float>(source.GetHeightPixel()) *
                                      (static_cast<float>(open.outResoY) / static_cast<float>(open.inResoY)));
  target.StartWriteData(open.outResoX, open.outResoY, width, height, source.GetColorType(), source.GetDataType(),
                        source.GetCompressType());
  ResolutionChange change(reso, target, lineBytes);
  if (!change.prepare(open)) return trace.qsrslt(QSRSLT_NO_PAGE_MEMORY);

  QSRSLT result = QSRSLT_CHANGE_RESO_START;
  reso.ChangeResoWriteStart();
  // Started a second time without harm; it is this answer that counts.
  if (reso.ChangeResoWriteStart() >= 1) {
    int headerBytes = 0;
    const unsigned char* const header = bitmap.CreateBmpHeader(open.outResoX, open.outResoY, bpp, width, height,
                                                               bitmap.CreateColorTable(bpp), &headerBytes);
    result = target.WriteDataBlock(header, static_cast<unsigned>(headerBytes));
    if (result == QSRSLT_SUCCESS) {
      const BmpLines lines = bmpLines(source.GetData(), source.GetDataSize());
      result = change.writeLines(lines, static_cast<int>(open.formatFlags),
                                 std::min<unsigned long>(source.GetWidthBytes(), lines.lineBytes));
    }
  }
  result = change.flush(result);
  // A page of fewer lines than the ring holds comes out empty, a one-bit one a byte short for each line of the flush:
  // what the header promises is made up in white.
  if (result == QSRSLT_SUCCESS) result = target.CompleteBmp();
  target.FinishWriteData(false, 0);
  return trace.qsrslt(result);
}

}  // namespace orvalle_scan_api
