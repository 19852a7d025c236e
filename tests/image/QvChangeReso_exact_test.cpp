// The product against the plain form of the resampler, byte for byte, on a seeded sample of settings and images.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/image/reso_compare.h"

using reso_compare::Bytes;
using reso_compare::Job;
using reso_compare::Line;

// Images of each kind; fewer where a sanitizer slows the run down.
#ifndef QS_RESO_IMAGES
#define QS_RESO_IMAGES 7000
#endif

namespace {

struct Kind {
  const char* name;
  std::uint32_t format;
  std::uint32_t seed;
  bool paths[5];  // which of them the sample has to reach: none, copy, exact, enlarged, shrunk
};
constexpr Kind kKinds[] = {
    {"OneBit", 0x101, 11, {false, true, true, true, true}},
    {"Grey", 0x208, 12, {false, true, false, true, true}},
    {"GreySimple", 0x210, 13, {false, true, true, false, false}},
    {"Color", 0x420, 14, {false, true, false, true, true}},
};

class Sample {
 public:
  explicit Sample(const Kind& kind) : format_(kind.format), random_(kind.seed) {}

  Job next() {
    Job job;
    CHRESO_OPEN& open = job.open;
    open.formatFlags = format_;
    open.inResoX = resolution();
    open.outResoX = oneOf(8) ? open.inResoX : resolution();
    open.inResoY = resolution();
    open.outResoY = oneOf(8) ? open.inResoY : resolution();
    open.inLinePixels = oneOf(100) ? 1000 + below(4000) : 1 + below(70);
    open.colorOrder = static_cast<std::int32_t>(below(5));
    open.alignOutLine = oneOf(3);
    open.leftPadPixels = oneOf(3) ? below(20) : 0;
    if (oneOf(4)) open.fixedOutLineBytes = someStride(open);
    job.bottomUp = oneOf(2);
    job.nullFlush = oneOf(3);
    if (oneOf(10)) job.pages = 2;
    if (oneOf(4)) job.spareBytes = static_cast<long>(below(200)) - 100;
    if (oneOf(20)) job.spareBytes = -static_cast<long>(below(100000));
    job.fillSeed = static_cast<std::uint32_t>(random_());
    addLines(job);
    return job;
  }

 private:
  unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }
  bool oneOf(unsigned chances) { return below(chances) == 0; }
  std::int32_t resolution() {
    constexpr std::int32_t kResolutions[] = {75, 100, 150, 199, 200, 300, 400, 600, 1200, 2400};
    return kResolutions[below(10)];
  }

  static unsigned long bitsOf(std::uint32_t format) { return format >= 0x400 ? 24 : format >= 0x200 ? 8 : 1; }

  // Around the line's own length, above and below; at times next to nothing.
  unsigned long someStride(const CHRESO_OPEN& open) {
    if (oneOf(5)) return 1 + below(20);
    const unsigned long pixels =
        open.inLinePixels * static_cast<unsigned long>(open.outResoX) / static_cast<unsigned long>(open.inResoX) +
        open.leftPadPixels;
    const unsigned long own = (pixels * bitsOf(format_) + 7) / 8;
    return std::max(1UL, own + below(40) - std::min<unsigned long>(own, 20));
  }

  // An image so high that the output stays small; each hundredth may be large.
  unsigned someHeight(const CHRESO_OPEN& open) {
    const double scaleX = static_cast<double>(open.outResoX) / open.inResoX;
    const double scaleY = static_cast<double>(open.outResoY) / open.inResoY;
    const double linePixels = static_cast<double>(open.inLinePixels) * std::max(1.0, scaleX) * std::max(1.0, scaleY);
    const double most = (oneOf(100) ? 1e6 : 4e4) / linePixels;
    return std::min(1 + below(40), static_cast<unsigned>(most) + 3);
  }

  void addLines(Job& job) {
    const unsigned height = someHeight(job.open);
    const unsigned nullEach = oneOf(6) ? 2 + below(5) : 0;
    const unsigned shortEach = oneOf(6) ? 1 + below(4) : 0;
    const unsigned content = below(4);
    const unsigned feed = below(4);
    int planes[3] = {2, 3, 4};
    std::shuffle(planes, planes + 3, random_);
    for (unsigned y = 0; y < height; ++y) {
      for (unsigned part = 0; part < (format_ == 0x420 && feed == 0 ? 3U : 1U); ++part) {
        Line line;
        switch (feed) {
          case 0:  // a plane at a time
            line.kind = planes[part];
            break;
          case 1:
            line.kind = 5;
            break;
          case 2:
            line.kind = 6;
            break;
          default:  // anything goes
            line.kind = oneOf(10) ? 1 + static_cast<int>(below(6)) : 5;
        }
        const bool plane = line.kind >= 2 && line.kind <= 4;
        const unsigned long pixels = job.open.inLinePixels;
        std::size_t size = (pixels * bitsOf(format_) + 7) / 8;
        if (format_ == 0x420 && plane) size = pixels;
        if (shortEach && oneOf(shortEach)) size = below(static_cast<unsigned>(size) + 10);
        line.null = nullEach && oneOf(nullEach);
        line.bytes = pixelBytes(size, content, y);
        job.lines.push_back(std::move(line));
      }
    }
  }

  Bytes pixelBytes(std::size_t size, unsigned content, unsigned y) {
    Bytes bytes(size);
    for (std::size_t x = 0; x < size; ++x) {
      unsigned value = 0;
      switch (content) {
        case 0:
          value = below(256);
          break;
        case 1:  // hard edges: the cubic sum overshoots
          value = oneOf(3) ? 255 : 0;
          break;
        case 2:
          value = static_cast<unsigned>(x * 5 + y * 9);
          break;
        default:
          value = 255;
      }
      bytes[x] = static_cast<std::uint8_t>(value);
    }
    return bytes;
  }

  std::uint32_t format_;
  std::mt19937 random_;
};

class ResoExact : public testing::TestWithParam<Kind> {};

TEST_P(ResoExact, EveryKernelSetGivesTheBytesOfThePlainForm) {
  Sample sample(GetParam());
  int byPath[5] = {};
  int served = 0;
  long lines = 0;
  for (int asked = 0; served < QS_RESO_IMAGES; ++asked) {
    const auto outcome = reso_compare::compare(sample.next());
    ASSERT_EQ(outcome.difference, "") << "image " << asked;
    ++byPath[outcome.path];
    served += outcome.served ? 1 : 0;
    lines += outcome.lines;
    ASSERT_LT(asked, QS_RESO_IMAGES * 20) << "the sample is mostly refused";
  }
  EXPECT_GT(byPath[0], 0) << "no refused set-up was compared";
  EXPECT_GT(lines, served * 5L);
  for (int path = 1; path < 5; ++path) {
    EXPECT_EQ(byPath[path] > QS_RESO_IMAGES / 100, GetParam().paths[path]) << "path " << path << ": " << byPath[path];
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, ResoExact, testing::ValuesIn(kKinds),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
