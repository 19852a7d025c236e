// The writers of the plain resampler: copies, exact ratios, the ring of four lines and what is drawn from it.
#include <algorithm>
#include <cmath>

#include "tests/image/reso_reference.h"

namespace reso_reference {

// The buffer.

Destination::Destination(const CHRESO_WRITE& write) : base_(write.writeBuffer) {
  const auto bytes = static_cast<std::ptrdiff_t>(write.writeBufferBytes);
  first_ = write.bottomUp ? -bytes : 0;
  end_ = write.bottomUp ? 0 : bytes;
}
void Destination::put(std::ptrdiff_t offset, std::uint8_t value) {
  if (offset >= first_ && offset < end_) base_[offset] = value;
}
void Destination::clearBit(std::ptrdiff_t offset, int bit) {
  if (offset >= first_ && offset < end_) base_[offset] = static_cast<std::uint8_t>(base_[offset] & ~(1U << bit));
}

std::ptrdiff_t ChangeReso::GetWriteBuff(bool bottomUp, int line) const {
  const std::ptrdiff_t lines = bottomUp ? -(line + 1) : line;
  return static_cast<std::ptrdiff_t>(outStride) * lines + static_cast<std::ptrdiff_t>(leftOffsetBytes);
}

// Copies.

std::uint8_t ChangeReso::in(const CHRESO_WRITE& write, std::size_t at) {
  return at < write.lineBytes ? write.lineData[at] : std::uint8_t{0};
}

int ChangeReso::ChWriteCpy(const CHRESO_WRITE& write, int* outLines) {
  if (write.lineData == nullptr) return 0;
  Destination to(write);
  auto dest = static_cast<std::ptrdiff_t>(leftOffsetBytes);
  if (write.bottomUp) dest -= static_cast<std::ptrdiff_t>(outStride);
  if (depth() != 0x400) {
    for (std::size_t i = 0; i < write.lineBytes; ++i) to.put(dest + static_cast<std::ptrdiff_t>(i), in(write, i));
  } else if (!SetImg24Bit(write, to, dest)) {
    return 0;
  }
  *outLines = 1;
  return static_cast<int>(outStride);
}

bool ChangeReso::SetImg24Bit(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest) {
  // Where color c (0 red, 1 green, 2 blue) of pixel i goes.
  const auto place = [&](std::size_t i, std::size_t c) {
    std::size_t at = i + c * outPixels;
    if (writeKind == 5) at = 3 * i + c;
    if (writeKind == 6) at = 3 * i + 2 - c;
    return dest + static_cast<std::ptrdiff_t>(at);
  };
  if (write.lineKind >= 2 && write.lineKind <= 4) {
    const auto color = static_cast<std::size_t>(write.lineKind - 2);
    for (std::size_t i = 0; i < write.lineBytes; ++i) to.put(place(i, color), in(write, i));
    planeCount_ += 1;
  } else if (writeKind != 7 && (write.lineKind == 5) == (writeKind == 5)) {  // as they are
    for (std::size_t i = 0; i < write.lineBytes; ++i) to.put(dest + static_cast<std::ptrdiff_t>(i), in(write, i));
    planeCount_ += 3;
  } else {
    for (std::size_t i = 0; i < write.lineBytes / 3; ++i) {
      for (std::size_t k = 0; k < 3; ++k) to.put(place(i, write.lineKind == 5 ? k : 2 - k), in(write, 3 * i + k));
    }
    planeCount_ += 3;
  }
  if (planeCount_ < 3) return false;
  planeCount_ = 0;
  ++inLineCount;
  return true;
}

// Exact ratios.

int ChangeReso::ChWriteExact(const CHRESO_WRITE& write, int* outLines) {
  if (write.lineData == nullptr) return 0;
  ++inLineCount;
  if (tblRateY == 5 && inLineCount % 2 == 0) return 0;
  Destination to(write);
  int bytes = 0;
  while (*outLines < rateYM) {
    const std::ptrdiff_t dest = GetWriteBuff(write.bottomUp, *outLines);
    if (writeKind == 2) {
      Write8BitSinple(write, to, dest);
      bytes += static_cast<int>(outStride);
    } else {
      bytes += Write2Bit(write, to, dest);
    }
    ++*outLines;
  }
  return bytes;
}

void ChangeReso::Write8BitSinple(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest) const {
  const auto k = static_cast<std::size_t>(rateXN == 1 ? rateXM : rateXN);
  if (writer8Bit == 1) {
    for (std::size_t i = 0; i < write.lineBytes / k && i < outLineBytes; ++i) {
      to.put(dest + static_cast<std::ptrdiff_t>(i), in(write, i * k));
    }
    return;
  }
  const std::size_t whole = std::min<std::size_t>(outLineBytes / k, write.lineBytes);
  for (std::size_t i = 0; i < whole; ++i) {
    for (std::size_t j = 0; j < k; ++j) to.put(dest + static_cast<std::ptrdiff_t>(i * k + j), in(write, i));
  }
  if (whole < write.lineBytes) {
    for (std::size_t j = 0; j < outLineBytes % k; ++j) {
      to.put(dest + static_cast<std::ptrdiff_t>(whole * k + j), in(write, whole));
    }
  }
}

int ChangeReso::Write2Bit(const CHRESO_WRITE& write, Destination& to, std::ptrdiff_t dest) const {
  const std::size_t len = write.lineBytes;
  const std::size_t out = outLineBytes;
  std::ptrdiff_t at = dest;
  const auto next = [&](std::uint8_t value) { to.put(at++, value); };
  switch (writer2Bit) {
    case 0:  // 2 to 1
      for (std::size_t i = 0; i < len / 2 && i < out; ++i) {
        next(static_cast<std::uint8_t>(Cmp2t1H(in(write, 2 * i)) << 4 | Cmp2t1H(in(write, 2 * i + 1))));
      }
      return static_cast<int>(at - dest);
    case 1: {  // 1 to 2
      const std::size_t whole = std::min(out / 2, len);
      for (std::size_t i = 0; i < whole; ++i) {
        next(dbl(in(write, i)).first);
        next(dbl(in(write, i)).second);
      }
      if (whole < len && out % 2 == 1) next(dbl(in(write, whole)).second);
      break;
    }
    case 2: {  // 1 to 3
      const std::size_t whole = std::min(out / 3, len);
      for (std::size_t i = 0; i < whole; ++i) {
        next(B1to3_3(in(write, i)));
        next(B1to3_2(in(write, i)));
        next(B1to3_1(in(write, i)));
      }
      if (whole < len && out % 3 != 0) next(B1to3_3(in(write, whole)));
      if (whole < len && out % 3 == 2) next(B1to3_2(in(write, whole)));
      break;
    }
    case 3: {  // 1 to 4
      const std::size_t whole = std::min(out / 4, len);
      for (std::size_t i = 0; i < whole; ++i) {
        const TwoBytes half = dbl(in(write, i));
        next(dbl(half.second).first);
        next(dbl(half.second).second);
        next(dbl(half.first).first);
        next(dbl(half.first).second);
      }
      if (whole == len) break;
      const TwoBytes half = dbl(in(write, whole));
      if (out % 4 >= 2) next(dbl(half.second).first);
      if (out % 4 >= 1) next(dbl(half.second).second);
      if (out % 4 == 3) next(dbl(half.first).second);
      break;
    }
    default:  // 1 to 1
      for (std::size_t i = 0; i < len; ++i) next(in(write, i));
  }
  return static_cast<int>(outStride);
}

// The ring.

void ChangeReso::copySlot(std::size_t from, std::size_t to) {
  for (std::size_t i = 0; i < saveLineBytes; ++i) block_[to * saveLineBytes + i] = block_[from * saveLineBytes + i];
}

template <class PixelAt>
void ChangeReso::saveOnePlane(bool hasLine, PixelAt pixelAt) {
  const std::size_t slot = saveLineIndex_;
  const std::size_t last = saveLineCount - 1;
  ++saveLineIndex_;
  if (hasLine) {
    for (std::size_t x = 0; x < saveLineBytes; ++x) block_[slot * saveLineBytes + x] = pixelAt(x);
    const std::uint16_t old = inLineCount++;
    if (old == 0) copySlot(slot, last);
  } else {
    copySlot(slot == 0 ? last : slot - 1, slot);
  }
  if (saveLineIndex_ == saveLineCount) saveLineIndex_ = 0;
}

void ChangeReso::SetSaveImg8Bit(const CHRESO_WRITE& write) {
  saveOnePlane(write.lineData != nullptr, [&](std::size_t x) { return in(write, x); });
}

void ChangeReso::SetSaveImg2Bit(const CHRESO_WRITE& write) {
  saveOnePlane(write.lineData != nullptr, [&](std::size_t x) {
    return (in(write, x / 8) >> (7 - x % 8) & 1) != 0 ? std::uint8_t{10} : std::uint8_t{0};
  });
}

bool ChangeReso::SetSaveImg24Bit(const CHRESO_WRITE& write) {
  const std::size_t slot = saveLineIndex_;
  const std::size_t last = saveLineCount - 1;
  std::uint8_t* planes = block_.data() + slot * saveLineBytes;
  if (write.lineData == nullptr) {
    copySlot(slot == 0 ? last : slot - 1, slot);
    planeCount_ += 3;
  } else if (write.lineKind >= 2 && write.lineKind <= 4) {
    std::uint8_t* plane = planes + static_cast<std::size_t>(write.lineKind - 2) * planeBytes_;
    for (std::size_t x = 0; x < planeBytes_; ++x) plane[x] = in(write, x);
    planeCount_ += 1;
  } else {
    for (std::size_t x = 0; x < planeBytes_; ++x) {
      for (std::size_t c = 0; c < 3; ++c) {
        planes[(write.lineKind == 5 ? c : 2 - c) * planeBytes_ + x] = in(write, 3 * x + c);
      }
    }
    planeCount_ += 3;
  }
  if (planeCount_ < 3) return false;
  planeCount_ = 0;
  if (++saveLineIndex_ == saveLineCount) saveLineIndex_ = 0;
  const std::uint16_t old = inLineCount++;
  if (old == 0) copySlot(slot, last);
  return true;
}

std::uint8_t ChangeReso::GetSaveImg(long x, long row, std::size_t plane) const {
  std::size_t slot = saveLineIndex_ + static_cast<std::size_t>(row);
  if (slot >= saveLineCount) slot -= saveLineCount;
  if (slot > 3) return 0;
  return block(slot * saveLineBytes + plane + static_cast<std::size_t>(std::max(x, 0L)));
}

void ChangeReso::GetSaveImg4x4(long x, std::size_t plane, std::size_t planeBytes, std::uint8_t* window) const {
  const long width = static_cast<long>(planeBytes);
  for (long row = 0; row < 4; ++row) {
    for (long i = 0; i < 4; ++i) {
      long column = 0;
      if (x < 0) {
        column = std::max(x + i, 0L);
      } else if (x <= width - 5) {
        column = x + i;
      } else {
        column = std::min(x + i, width - 1);
      }
      window[4 * row + i] = GetSaveImg(column, row, plane);
    }
  }
}

// The frame of the ring paths.

int ChangeReso::ChWriteRing(const CHRESO_WRITE& write, int* outLines) {
  if (!locked_) return 0;
  if (writeKind == 4) {
    if (!SetSaveImg24Bit(write)) return 0;
  } else if (writeKind == 3) {
    SetSaveImg8Bit(write);
  } else {
    SetSaveImg2Bit(write);
  }
  const int c = inLineCount;
  if (c < 3) return 0;
  indexY_ = 0;
  const int r = (c - 3) % rateYN;
  float y = 1.0F;
  if (r != 0) {
    float acc = 0.0F;
    int k = 0;
    while (static_cast<float>(r) > acc) {
      acc += stepY;
      k += 1;
    }
    indexY_ = k;
    y = (acc + 1.0F) - static_cast<float>(r);
  }
  int n = 0;
  for (long j = 0; j < rateYM; ++j) n += j * rateYN / rateYM == r ? 1 : 0;
  Destination to(write);
  int bytes = 0;
  for (int line = 0; line < n; ++line) {
    const std::ptrdiff_t dest = GetWriteBuff(write.bottomUp, *outLines);
    if (writerNtoM == 0) {
      Write2BitXL_NtoM(y, to, dest);
    } else if (kind == 3) {
      WriteXL_NtoM(y, to, dest);
    } else {
      WriteXS_NtoM(y, to, dest);
    }
    bytes += static_cast<int>(outStride);
    y += stepY;
    indexY_ += 1;
    *outLines += 1;
  }
  return bytes;
}

// Puts a pixel of one or three planes at its place in the line.
void ChangeReso::putPixel(std::size_t p, const std::uint8_t* value, Destination& to, std::ptrdiff_t dest) const {
  if (planes_ == 1) return to.put(dest + static_cast<std::ptrdiff_t>(p), value[0]);
  for (std::size_t c = 0; c < 3; ++c) {
    std::size_t at = p + c * (outLineBytes / 3);
    if (open.colorOrder == 1) at = 3 * p + c;
    if (open.colorOrder == 3) at = 3 * p + 2 - c;
    to.put(dest + static_cast<std::ptrdiff_t>(at), value[c]);
  }
}

// Enlarging: cubic convolution over a window of four by four pixels.

std::int32_t ChangeReso::weigh(const std::uint8_t* window) const {
  static constexpr std::int32_t kNoWeights[4] = {0, 0, 0, 0};
  const std::int32_t* wx = indexX_ < 32 ? tblX[indexX_].w : kNoWeights;
  const std::int32_t* wy = indexY_ < 32 ? tblY[indexY_].w : kNoWeights;
  std::int32_t sum = 0;
  for (int i = 0; i < 4; ++i) {
    std::int32_t column = 0;
    for (int row = 0; row < 4; ++row) column += wy[row] * window[4 * row + i];
    sum += wx[i] * column;
  }
  return sum;
}

// Pixel i of the block that starts at input column base.
void ChangeReso::pixelXL(std::size_t base, int i, float y, bool rest, std::uint8_t* value) {
  indexX_ = i;
  const bool taken = !rest && i == 0 && y == std::trunc(y);
  const long x = (static_cast<long>(base) * 1000 + i * stepX1000) / 1000 - 1;
  for (std::size_t c = 0; c < planes_; ++c) {
    if (taken) {
      value[c] = GetSaveImg(static_cast<long>(base), static_cast<long>(y), c * planeBytes_);
      continue;
    }
    std::uint8_t window[16];
    GetSaveImg4x4(x, c * planeBytes_, planeBytes_, window);
    const std::int32_t sum = weigh(window);
    if (planes_ == 3) {
      value[c] = static_cast<std::uint8_t>(std::min(255, std::max(0, sum / 1000000)));
    } else if (sum < 0) {
      value[c] = 0;
    } else if (sum > 254999999) {
      value[c] = 255;
    } else {
      value[c] = static_cast<std::uint8_t>(sum / 1000000);
    }
  }
}

void ChangeReso::WriteXL_NtoM(float y, Destination& to, std::ptrdiff_t dest) {
  std::uint8_t value[3];
  std::size_t p = 0;
  for (std::size_t b = 0; b < fullBlocksX; ++b) {
    for (int i = 0; i < rateXM; ++i) {
      pixelXL(b * static_cast<std::size_t>(rateXN), i, y, false, value);
      putPixel(p++, value, to, dest);
    }
  }
  for (int i = 0; i < static_cast<int>(restPixelsX); ++i) {
    pixelXL(fullBlocksX * static_cast<std::size_t>(rateXN), i, y, true, value);
    putPixel(p++, value, to, dest);
  }
}

void ChangeReso::Write2BitXL_NtoM(float y, Destination& to, std::ptrdiff_t dest) {
  std::uint8_t value = 0;
  std::size_t p = 0;
  std::ptrdiff_t byte = dest - 1;  // the current one; each new byte is the next one
  for (std::size_t b = 0; b < fullBlocksX; ++b) {
    for (int i = 0; i < rateXM; ++i, ++p) {
      if (p % 8 == 0) to.put(++byte, 255);
      pixelXL(b * static_cast<std::size_t>(rateXN), i, y, false, &value);
      if (value < 5) to.clearBit(byte, static_cast<int>(7 - p % 8));
    }
  }
  const bool eachStartsAByte = ((fullBlocksX + p) & 7) == 0;
  for (int i = 0; i < static_cast<int>(restPixelsX); ++i) {
    if (eachStartsAByte) to.put(++byte, 255);
    pixelXL(fullBlocksX * static_cast<std::size_t>(rateXN), i, y, true, &value);
    if (value < 5) to.clearBit(byte, static_cast<int>(7 - ((p + static_cast<std::size_t>(i)) & 7)));
  }
}

// Shrinking: the mean of the pixels under a box, each with the share that the box covers.

bool ChangeReso::toSmall(float x0, float y0, float x1, float y1, std::uint8_t* value) const {
  float total = 0.0F;
  float sum[3] = {0.0F, 0.0F, 0.0F};
  for (long row = static_cast<long>(y0); row < static_cast<long>(std::ceil(y1)); ++row) {
    for (long col = static_cast<long>(x0); col < static_cast<long>(std::ceil(x1)); ++col) {
      const float w = (std::min(x1, static_cast<float>(col + 1)) - std::max(x0, static_cast<float>(col))) *
                      (std::min(y1, static_cast<float>(row + 1)) - std::max(y0, static_cast<float>(row)));
      total += w;
      for (std::size_t c = 0; c < planes_; ++c) {
        sum[c] += static_cast<float>(GetSaveImg(col, row, c * planeBytes_)) * w;
      }
    }
  }
  if (total == 0.0F) return false;
  for (std::size_t c = 0; c < planes_; ++c) {
    value[c] = static_cast<std::uint8_t>(std::trunc(static_cast<double>(sum[c] / total) + 0.5));
  }
  return true;
}

void ChangeReso::WriteXS_NtoM(float y, Destination& to, std::ptrdiff_t dest) const {
  const float dx = static_cast<float>(rateXN) / static_cast<float>(rateXM);
  const float y1 = static_cast<float>(rateYN) / static_cast<float>(rateYM) + y;
  float x0 = 0.0F;
  float x1 = dx + 0.0F;
  std::uint8_t value[3] = {0, 0, 0};
  std::ptrdiff_t byte = dest - 1;
  for (std::size_t p = 0; p < outPixels; ++p) {
    const bool found = toSmall(x0, y, x1, y1, value);
    if (writerNtoM == 1) {
      if (p % 8 == 0) to.put(++byte, 255);
      if (value[0] < 5) to.clearBit(byte, static_cast<int>(7 - p % 8));
    } else if (found) {
      putPixel(p, value, to, dest);
    }
    x0 += dx;
    x1 += dx;
  }
}

}  // namespace reso_reference
