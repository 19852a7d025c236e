// Any stream of a device ends in bounded time, whatever it holds: the caller's loop comes to an end, at the latest
// after an abort, and the next scan runs. Each stream is told by its seed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/fakes/moved_clock.h"
#include "tests/modules/jpeg_pictures.h"
#include "tests/reception/dialect.h"
#include "tests/reception/scan_harness.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;
using namespace std::chrono_literals;

// QS_SEEDS in the environment asks for more.
unsigned seedCount() {
  const char* wanted = std::getenv("QS_SEEDS");
  return wanted != nullptr ? static_cast<unsigned>(std::atoi(wanted)) : 2000;
}

class StreamMaker {
 public:
  StreamMaker(const Dialect& dialect, unsigned seed) : dialect_(dialect), engine_(seed) {}

  unsigned below(unsigned n) { return static_cast<unsigned>(engine_()) % n; }
  bool oneIn(unsigned n) { return below(n) == 0; }

  std::vector<MemoryDevice::Part> parts() {
    ByteString stream;
    const unsigned records = 1 + below(40);
    for (unsigned i = 0; i < records; ++i) {
      stream = stream + (dialect_.isFirst() ? recordOfTheFirst() : recordOfTheSecond());
    }
    if (oneIn(2)) stream = stream + dialect_.allPagesEnd();
    if (oneIn(3)) damage(stream);
    return cut(stream);
  }

 private:
  std::uint8_t byte() { return static_cast<std::uint8_t>(engine_()); }
  ByteString bytes(unsigned n) {
    ByteString result;
    for (unsigned i = 0; i < n; ++i) result.push_back(byte());
    return result;
  }

  // Pages go up slowly, with strays.
  unsigned page() {
    if (oneIn(10)) ++page_;
    return oneIn(15) ? below(6) : page_;
  }

  std::uint32_t size() {
    static constexpr std::uint32_t kExtremes[] = {0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    return oneIn(12) ? kExtremes[below(std::size(kExtremes))] : below(20);
  }

  // A whole one, or its beginning.
  ByteString jpeg() {
    static const ByteString whole = module_test::encodeJpeg(module_test::drawPicture(8, 6, 3));
    return ByteString(whole.begin(), whole.end() - (oneIn(2) ? 0 : below(static_cast<unsigned>(whole.size()))));
  }

  ByteString recordOfTheFirst() {
    const auto header = static_cast<std::uint8_t>(0x40 + below(0x40));
    const int stray = oneIn(20) ? -static_cast<int>(below(3)) : static_cast<int>(page());
    switch (below(12)) {
      case 0:
        return oneIn(2) ? v1::pageEnd(stray) : v1::pageEnd(stray, size());
      case 1:
        return v1::pageEnd(static_cast<int>(page_));
      case 2:
        return v1::line(v1::kJpeg, stray, oneIn(2) ? jpeg() : bytes(below(60)));
      case 3:
        return oneIn(6) ? v1::whiteLine(stray, static_cast<std::uint8_t>(below(0x40))) : v1::line(header, stray, {});
      case 4:
        return oneIn(6) ? v1::status(static_cast<std::uint8_t>(0x80 + below(0x80)), stray) : v1::pageEnd(stray);
      case 5:
        return oneIn(8) ? v1::canceled() : oneIn(6) ? v1::allPagesEnd() : v1::line(header, stray, bytes(9), size());
      case 6:
        return oneIn(8) ? ByteString{header} + u16(below(10)) + bytes(12) : v1::line(v1::kColor, stray, bytes(24));
      default:
        return v1::line(header, stray, bytes(below(30)));
    }
  }

  ByteString recordOfTheSecond() {
    static constexpr std::uint8_t kFormats[] = {0x00, 0x04, 0x05, 0x08, 0x0C, 0x0D, 0x14, 0x15, 0x91, 0x1D};
    const std::uint8_t format = kFormats[below(std::size(kFormats))];
    switch (below(16)) {
      case 0:
        return pageEnd(page());
      case 1:
        return whiteLine(page());
      case 2:
        return block(page(), format, oneIn(2) ? jpeg() : bytes(below(60)), size());
      case 3:
        return pageSize(page(), size(), size());
      case 4:
        return colorCheck(page(), format);
      case 5:
        return oneIn(4) ? blankPageEnd(page()) : pageEnd(page_);
      case 6:
        return oneIn(4) ? tooLongPageEnd(page()) : pageEnd(page_);
      case 7:
        return oneIn(8) ? timer(static_cast<std::uint8_t>(0x50 + below(2)), below(3)) : whiteLine(page_);
      case 8:
        return oneIn(8) ? deviceError(byte()) : pageStatus(static_cast<std::uint8_t>(0x72 + below(3)), page_);
      case 9:
        return oneIn(8) ? status(byte()) : oneIn(4) ? allPagesEnd() : pageStatus(0x71, page_) + u32(8) + u32(8);
      default:
        return line(page(), format, bytes(below(30)), below(12));
    }
  }

  void damage(ByteString& stream) {
    for (unsigned i = 1 + below(4); i > 0 && !stream.empty(); --i) {
      const std::size_t at = below(static_cast<unsigned>(stream.size()));
      const auto place = stream.begin() + static_cast<std::ptrdiff_t>(at);
      if (oneIn(3)) {
        stream.erase(place);
      } else if (oneIn(2)) {
        stream.insert(place, byte());
      } else {
        *place = byte();
      }
    }
  }

  std::vector<MemoryDevice::Part> cut(const ByteString& stream) {
    std::vector<MemoryDevice::Part> parts;
    for (std::size_t at = 0; at < stream.size();) {
      const std::size_t size = std::min<std::size_t>(stream.size() - at, 1 + below(oneIn(2) ? 8 : 400));
      const auto start = stream.begin() + static_cast<std::ptrdiff_t>(at);
      parts.push_back(MemoryDevice::data(ByteString(start, start + static_cast<std::ptrdiff_t>(size))));
      if (oneIn(30)) parts.push_back(MemoryDevice::quiet());
      at += size;
    }
    if (oneIn(12)) parts.push_back(MemoryDevice::timeOut());
    if (oneIn(12)) parts.push_back(MemoryDevice::failure(oneIn(2) ? 0x40500010 : 0x10500010));
    if (oneIn(12)) parts.push_back(MemoryDevice::gone());
    return parts;
  }

  const Dialect& dialect_;
  std::mt19937 engine_;
  unsigned page_ = 1;
};

class RandomStreams : public testing::TestWithParam<std::tuple<Dialect, int>> {};

// Eight groups, so that a runner can spread them.
TEST_P(RandomStreams, EndInBoundedTime) {
  const auto& [dialect, group] = GetParam();
  ScanHarness harness(dialect.generation());
  for (unsigned seed = static_cast<unsigned>(group); seed < seedCount(); seed += 8) {
    StreamMaker maker(dialect, seed);
    auto settings = settingsFor(8, 6, maker.oneIn(2) ? 24 : maker.oneIn(2) ? 8 : 1);
    if (maker.oneIn(4)) settings.colorType = COLORTYPE_AUTO;
    if (maker.oneIn(4)) settings.duplexType = DUPLEXTYPE_SHORT_EDGE;
    settings.detectEndOfPage = maker.oneIn(2);
    harness.device.stream(maker.parts());
    ASSERT_EQ(harness.start(settings), 0u) << "seed " << seed;

    const bool abortsAtOnce = maker.oneIn(6);
    const bool walksAway = maker.oneIn(6);
    if (abortsAtOnce) harness.core.AbortScanning();
    unsigned pages = 0;
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < end) {
      const SCANAPISTATUS state = harness.core.GetScanStatus();
      if (state == XFERREADY) {
        const Delivery delivery = harness.read();
        if (delivery.result != 0) break;
        harness.core.FreeImageData(delivery.pageNo);
        EXPECT_LT(++pages, 70000u) << "seed " << seed << ": page numbers are 16-bit";
      } else if (state != RECEIVING) {
        break;
      } else if (harness.device.isQuiet()) {
        // Nothing more will come: what is left to the caller is to abort, or to leave.
        if (walksAway) break;
        harness.core.AbortScanning();
        if (harness.device.wroteAbort()) fakes::clockAdvance += fakes::kAbortLimitPassed;
      }
      std::this_thread::sleep_for(100us);
    }
    EXPECT_LT(std::chrono::steady_clock::now(), end) << "seed " << seed;
    if (HasFailure()) return;
  }
  const Picture picture = drawPicture(8, 6, 24);
  const Outcome after =
      harness.scan(settingsFor(8, 6, 24), dialect.rawLines(picture) + dialect.pageEnd(1) + dialect.allPagesEnd());
  EXPECT_EQ(after.last, ALLEND);
  EXPECT_EQ(after.pages(), std::vector<ByteString>{expectedBmp(picture)});
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomStreams, testing::Combine(testing::ValuesIn(kGenerations), testing::Range(0, 8)),
                         [](const auto& info) {
                           return std::get<0>(info.param).name() + std::to_string(std::get<1>(info.param));
                         });

}  // namespace
}  // namespace reception_test
