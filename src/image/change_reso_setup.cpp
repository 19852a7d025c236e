#include "image/change_reso_setup.h"

#include <cmath>

namespace {

constexpr unsigned long kMostLinePixels = 0x00FFFFFF;  // columns are whole numbers in single precision
constexpr int kMostRingRate = 0xFFFF;                  // so that the float walk over the phases always moves on

std::int32_t thousandths(float weight) { return static_cast<std::int32_t>(weight * 1000.0F); }

ChangeResoSetup::CubicRow cubicRow(float position) {
  const float frac = position - std::trunc(position);
  return {frac,
          {thousandths(ChangeResoSetup::kernel(frac + 1.0F)), thousandths(ChangeResoSetup::kernel(frac)),
           thousandths(ChangeResoSetup::kernel(1.0F - frac)), thousandths(ChangeResoSetup::kernel(2.0F - frac))}};
}

}  // namespace

bool ChangeResoSetup::GetRateNM(int in, int out, int* n, int* m) {
  if (in < 1 || out < 1) return false;
  for (int i = 1; i < 100; ++i) {
    float scaled = static_cast<float>(i) * static_cast<float>(out);
    scaled = scaled / static_cast<float>(in);
    if (scaled >= 2147483648.0F) return false;
    if (scaled != std::trunc(scaled)) continue;
    *n = i;
    *m = static_cast<int>(scaled);
    return *m > 0;
  }
  *n = in;
  *m = out;
  return true;
}

void ChangeResoSetup::SetTblRate(int n, int m, int* code) {
  const float rate = static_cast<float>(m) / static_cast<float>(n);
  *code = 0;
  if (rate == 1.0F) *code = 1;
  if (rate == 2.0F) *code = 2;
  if (rate == 3.0F) *code = 3;
  if (rate == 4.0F) *code = 4;
  if (rate == 0.5F) *code = 5;
}

float ChangeResoSetup::kernel(float t) {
  // One rounding for each written operation.
  const float cube = t * t * t;
  if (t >= 0.0F && t < 1.0F) return (t * -2.0F * t + 1.0F) + cube;
  if (t >= 1.0F && t < 2.0F) return (t * 5.0F * t + (t * -8.0F + 4.0F)) - cube;
  return 0.0F;
}

bool ChangeResoSetup::ChangeResoInit(CHRESO_OPEN* record) {
  *this = ChangeResoSetup();
  open = *record;
  if (open.inLinePixels > kMostLinePixels) return false;
  if (!GetRateNM(open.inResoX, open.outResoX, &rateXN, &rateXM)) return false;
  if (!GetRateNM(open.inResoY, open.outResoY, &rateYN, &rateYM)) return false;
  SetTblRate(rateXN, rateXM, &tblRateX);
  SetTblRate(rateYN, rateYM, &tblRateY);
  stepY = static_cast<float>(rateYN) / static_cast<float>(rateYM);
  stepX1000 = static_cast<std::int32_t>(static_cast<std::uint32_t>(rateXN / rateXM) * 1000U);
  ChangeResoSetParam();
  if (!SetFunctionPointer()) return false;
  unsigned long size = (static_cast<unsigned long>(rateYM) + static_cast<unsigned long>(rateYN) - 1) /
                       static_cast<unsigned long>(rateYN) * outStride;
  if (hasRing()) {
    if (rateYN > kMostRingRate || rateYM > kMostRingRate) return false;
    size *= 2;
    saveLineCount = 4;
    saveLineBytes = is24Bit() ? open.inLinePixels * 3 : open.inLinePixels;
  }
  if (path == ResoPath::kEnlarge && !SetCubicTbl()) return false;
  record->writeBufferSize = size;
  record->outStrideBytes = outStride;
  record->outPixels = outPixels;
  open = *record;
  fullBlocksX = outPixels / static_cast<unsigned long>(rateXM);
  restPixelsX = outPixels - static_cast<unsigned long>(rateXM) * fullBlocksX;
  return true;
}

void ChangeResoSetup::ChangeResoSetParam() {
  const auto n = static_cast<unsigned long>(rateXN);
  const auto m = static_cast<unsigned long>(rateXM);
  const unsigned long width = open.inLinePixels;
  const unsigned long pad = open.leftPadPixels;
  unsigned long lineBytes = width * m / n;
  unsigned long align = 4;
  leftOffsetBytes = pad;
  if (is24Bit()) {
    lineBytes = width * m * 3 / n;
    align = 12;
    leftOffsetBytes = pad * 3;
  } else if (is1Bit()) {
    // Kept: the bytes of the input line are scaled, not the pixels, so that the line can be one byte short of its
    // pixels. Callers rest on the distance of lines that follows. Pinned by change_reso_setup_test "A one-bit line".
    lineBytes = (width + 7) / 8 * m / n;
    leftOffsetBytes = (pad + 7) / 8;
  }
  outLineBytes = open.alignOutLine ? (lineBytes + align - 1) / align * align : lineBytes;
  outPixels = width * m / n;
  outStride = open.fixedOutLineBytes != 0 ? open.fixedOutLineBytes : leftOffsetBytes + outLineBytes;
  const unsigned long room = outStride - leftOffsetBytes;
  if (room < outLineBytes) {
    outLineBytes = room;
    outPixels = is24Bit() ? room / 3 : is1Bit() ? room * 8 : room;
  }
  outStridePixels = is24Bit() ? outStride / 3 : is1Bit() ? outStride * 8 : outStride;
}

bool ChangeResoSetup::SetFunctionPointer() {
  if (!is24Bit() && !is1Bit() && depth() != 0x200) return false;
  // The writers of 24-bit lines come in threes, by the order of the colours.
  const int order = open.colorOrder == 1 ? 0 : open.colorOrder == 3 ? 1 : 2;
  if (open.inResoX == open.outResoX && open.inResoY == open.outResoY) {
    path = ResoPath::kCopy;
    writeKind = order == 0 ? ResoWriter::kCopyRgb : order == 1 ? ResoWriter::kCopyBgr : ResoWriter::kCopyPlane;
    return true;
  }
  const bool exact = tblRateX != 0 && tblRateY != 0;
  if (is1Bit() && exact) {
    constexpr int kWriters[] = {4, 4, 1, 2, 3, 0};  // by code: 1:1, 1:2, 1:3, 1:4, 2:1
    path = ResoPath::kExact;
    writeKind = ResoWriter::kExact1Bit;
    writer2Bit = kWriters[tblRateX];
    return true;
  }
  if (!is24Bit() && !is1Bit() && (open.formatFlags & 0x10U) != 0) {
    path = ResoPath::kExact;
    writeKind = ResoWriter::kExact8Bit;
    writer8Bit = tblRateX >= 2 && tblRateX <= 4 ? 0 : 1;
    return exact;
  }
  // The ring holds four lines: an output line may span at most two input lines past its start.
  if (static_cast<std::int64_t>(rateYN) > 2 * static_cast<std::int64_t>(rateYM)) return false;
  const bool enlarges = rateXN <= rateXM;
  path = enlarges ? ResoPath::kEnlarge : ResoPath::kShrink;
  if (is24Bit()) {
    writeKind = ResoWriter::kRing24Bit;
    writerNtoM = (enlarges ? 4 : 7) + order;
  } else if (is1Bit()) {
    writeKind = ResoWriter::kRing1Bit;
    writerNtoM = enlarges ? 0 : 1;
  } else {
    writeKind = ResoWriter::kRing8Bit;
    writerNtoM = enlarges ? 2 : 3;
  }
  return true;
}

bool ChangeResoSetup::SetCubicTbl() {
  if (rateXM > kPhases || rateYM > kPhases) return false;
  const float stepX = static_cast<float>(rateXN) / static_cast<float>(rateXM);
  for (int i = 0; i < rateXM; ++i) tblX[i] = cubicRow(static_cast<float>(i) * stepX);
  for (int i = 0; i < rateYM; ++i) tblY[i] = cubicRow(static_cast<float>(i) * stepY);
  SetTblElementMultiply();
  return true;
}

void ChangeResoSetup::SetTblElementMultiply() {
  for (int row = 0; row < kPhases; ++row) {
    // Through a pointer: where both factors were written as tblY[row].w[...], GCC 12 at -O2 filled the table with 0.
    const std::int32_t* const weights = tblY[row].w;
    for (int a = 0; a < 4; ++a) {
      for (int b = 0; b < 4; ++b) tblElement[row][a][b] = weights[b] * weights[a];
    }
  }
}
