#include "tests/image/reso_reference.h"

#include <algorithm>
#include <cmath>

namespace reso_reference {

float kernel(float t) {
  if (t >= 0.0F && t < 1.0F) return (t * -2.0F * t + 1.0F) + t * t * t;
  if (t >= 1.0F && t < 2.0F) return (t * 5.0F * t + (t * -8.0F + 4.0F)) - t * t * t;
  return 0.0F;
}

bool GetRateNM(int in, int out, int* n, int* m) {
  if (in < 1 || out < 1) return false;
  for (*n = 1; *n <= 99; ++*n) {
    const float rate = static_cast<float>(*n) * static_cast<float>(out) / static_cast<float>(in);
    if (rate == std::trunc(rate)) {
      if (rate >= 2147483648.0F) return false;
      *m = static_cast<int>(rate);
      return true;
    }
  }
  *n = in;
  *m = out;
  return true;
}

int SetTblRate(int n, int m) {
  const float r = static_cast<float>(m) / static_cast<float>(n);
  if (r == 1.0F) return 1;
  if (r == 2.0F) return 2;
  if (r == 3.0F) return 3;
  if (r == 4.0F) return 4;
  if (r == 0.5F) return 5;
  return 0;
}

// Bit tables.

namespace {

unsigned repeatBits(std::uint8_t b, int times) {
  unsigned bits = 0;
  for (int bit = 7; bit >= 0; --bit) {
    for (int i = 0; i < times; ++i) bits = bits << 1 | (b >> bit & 1U);
  }
  return bits;
}

}  // namespace

TwoBytes dbl(std::uint8_t b) {
  const unsigned bits = repeatBits(b, 2);
  return {static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits)};
}
std::uint8_t B1to3_3(std::uint8_t b) { return static_cast<std::uint8_t>(repeatBits(b, 3) >> 16); }
std::uint8_t B1to3_2(std::uint8_t b) { return static_cast<std::uint8_t>(repeatBits(b, 3) >> 8); }
std::uint8_t B1to3_1(std::uint8_t b) { return static_cast<std::uint8_t>(repeatBits(b, 3)); }
std::uint8_t Cmp2t1H(std::uint8_t b) {
  unsigned bits = 0;
  for (int pair = 3; pair >= 0; --pair) bits = bits << 1 | ((b >> (2 * pair) & 3U) != 0 ? 1U : 0U);
  return static_cast<std::uint8_t>(bits);
}

// Set-up.

bool ChangeReso::ChangeResoInit(CHRESO_OPEN* record) {
  block_.clear();
  locked_ = false;
  saveLineCount = 0;
  if (!GetRateNM(record->inResoX, record->outResoX, &rateXN, &rateXM)) return false;
  if (!GetRateNM(record->inResoY, record->outResoY, &rateYN, &rateYM)) return false;
  tblRateX = SetTblRate(rateXN, rateXM);
  tblRateY = SetTblRate(rateYN, rateYM);
  stepY = static_cast<float>(rateYN) / static_cast<float>(rateYM);
  stepX1000 = (rateXN / rateXM) * 1000;
  open = *record;
  ChangeResoSetParam();
  if (!SetFunctionPointer()) return false;
  unsigned long size = static_cast<unsigned long>((rateYM + rateYN - 1) / rateYN) * outStride;
  if (kind == 3 || kind == 4) {
    size *= 2;
    saveLineCount = 4;
    planes_ = depth() == 0x400 ? 3 : 1;
    planeBytes_ = open.inLinePixels;
    saveLineBytes = open.inLinePixels * planes_;
  }
  if (kind == 3 && !SetCubicTbl()) return false;
  block_.assign(saveLineCount * saveLineBytes, 0);
  record->writeBufferSize = size;
  record->outStrideBytes = outStride;
  record->outPixels = outPixels;
  open = *record;
  fullBlocksX = outPixels / static_cast<unsigned long>(rateXM);
  restPixelsX = outPixels - static_cast<unsigned long>(rateXM) * fullBlocksX;
  return true;
}

void ChangeReso::ChangeResoSetParam() {
  const auto n = static_cast<unsigned long>(rateXN);
  const auto m = static_cast<unsigned long>(rateXM);
  const unsigned long w = open.inLinePixels;
  const unsigned long pad = open.leftPadPixels;
  outPixels = w * m / n;
  switch (depth()) {
    case 0x400:
      outLineBytes = w * m * 3 / n;
      if (open.alignOutLine) outLineBytes = (outLineBytes + 11) / 12 * 12;
      leftOffsetBytes = pad * 3;
      break;
    case 0x200:
      outLineBytes = w * m / n;
      if (open.alignOutLine) outLineBytes = (outLineBytes + 3) / 4 * 4;
      leftOffsetBytes = pad;
      break;
    default:
      outLineBytes = ((w + 7) / 8) * m / n;
      if (open.alignOutLine) outLineBytes = (outLineBytes + 3) / 4 * 4;
      leftOffsetBytes = (pad + 7) / 8;
  }
  outStride = open.fixedOutLineBytes != 0 ? open.fixedOutLineBytes : leftOffsetBytes + outLineBytes;
  const unsigned long room = outStride - leftOffsetBytes;
  const bool cut = room < outLineBytes;
  if (cut) outLineBytes = room;
  switch (depth()) {
    case 0x400:
      if (cut) outPixels = room / 3;
      outStridePixels = outStride / 3;
      break;
    case 0x200:
      if (cut) outPixels = room;
      outStridePixels = outStride;
      break;
    default:
      if (cut) outPixels = room * 8;
      outStridePixels = outStride * 8;
  }
}

bool ChangeReso::SetFunctionPointer() {
  writer2Bit = writer8Bit = writerNtoM = 0;
  if (depth() != 0x100 && depth() != 0x200 && depth() != 0x400) return false;  // has no line geometry
  const int order = open.colorOrder;
  if (open.inResoX == open.outResoX && open.inResoY == open.outResoY) {
    writeKind = order == 1 ? 5 : order == 3 ? 6 : 7;
    kind = 1;
    return true;
  }
  const bool exact = tblRateX != 0 && tblRateY != 0;
  const bool tooFlat = rateYN > 2L * rateYM;
  const bool larger = rateXN <= rateXM;
  if (depth() == 0x100) {
    if (exact) {
      writeKind = 0;
      writer2Bit = tblRateX == 2 ? 1 : tblRateX == 3 ? 2 : tblRateX == 4 ? 3 : tblRateX == 5 ? 0 : 4;
      kind = 2;
      return true;
    }
    if (tooFlat) return false;
    writeKind = 1;
    writerNtoM = larger ? 0 : 1;
    kind = larger ? 3 : 4;
    return true;
  }
  if (depth() == 0x200) {
    if (open.formatFlags & 0x10) {
      if (!exact) return false;
      writeKind = 2;
      writer8Bit = tblRateX == 2 || tblRateX == 3 || tblRateX == 4 ? 0 : 1;
      kind = 2;
      return true;
    }
    if (tooFlat) return false;
    writeKind = 3;
    writerNtoM = larger ? 2 : 3;
    kind = larger ? 3 : 4;
    return true;
  }
  if (tooFlat) return false;
  writeKind = 4;
  writerNtoM = (larger ? 4 : 7) + (order == 1 ? 0 : order == 3 ? 1 : 2);
  kind = larger ? 3 : 4;
  return true;
}

bool ChangeReso::fillRows(CubicRow* table, int m, float step) {
  for (int i = 0; i < m; ++i) {
    if (i > 31) return false;
    const float f = static_cast<float>(i) * step;
    const float frac = f - std::trunc(f);
    table[i].frac = frac;
    table[i].w[0] = static_cast<int>(kernel(frac + 1.0F) * 1000.0F);
    table[i].w[1] = static_cast<int>(kernel(frac) * 1000.0F);
    table[i].w[2] = static_cast<int>(kernel(1.0F - frac) * 1000.0F);
    table[i].w[3] = static_cast<int>(kernel(2.0F - frac) * 1000.0F);
  }
  return true;
}

bool ChangeReso::SetCubicTbl() {
  if (!fillRows(tblX, rateXM, static_cast<float>(rateXN) / static_cast<float>(rateXM))) return false;
  if (!fillRows(tblY, rateYM, stepY)) return false;
  for (int r = 0; r < 32; ++r) {
    for (int a = 0; a < 4; ++a) {
      for (int b = 0; b < 4; ++b) tblElement[r][a][b] = tblY[r].w[b] * tblY[r].w[a];
    }
  }
  return true;
}

// The calls.

int ChangeReso::ChangeResoWriteStart() {
  saveLineIndex_ = 0;
  planeCount_ = 0;
  inLineCount = 0;
  std::fill(block_.begin(), block_.end(), std::uint8_t{0});
  locked_ = true;
  return 1;
}

int ChangeReso::ChangeResoWrite(CHRESO_WRITE* write, int* outLines) {
  *outLines = 0;
  return run(*write, outLines);
}

int ChangeReso::ChangeResoWriteEnd(CHRESO_WRITE* write, int* outLines) {
  *outLines = 0;
  int bytes = 0;
  if (write->writeBuffer != nullptr && locked_ && saveLineCount != 0 && inLineCount >= 3) {
    bytes += run(*write, outLines);
    bytes += run(*write, outLines);
  }
  locked_ = false;
  return bytes;
}

int ChangeReso::run(const CHRESO_WRITE& write, int* outLines) {
  switch (writeKind) {
    case 0:
    case 2:
      return ChWriteExact(write, outLines);
    case 1:
    case 3:
    case 4:
      return ChWriteRing(write, outLines);
    default:
      return ChWriteCpy(write, outLines);
  }
}

}  // namespace reso_reference
