// Many scans, and one long one: nothing is left behind, and memory does not grow with the pages.
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>

#include "tests/reception/interrupted_scan.h"
#include "tests/reception/jpeg_pages.h"

// What a sanitizer keeps in memory for itself says nothing about the library.
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#define QS_HAS_LEAK_CHECK 1
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QS_IS_SANITIZED 1
#endif

namespace reception_test {
namespace {

constexpr std::size_t kMiB = 1024 * 1024;

// Blocks of the size of a page go back to the system as soon as they are freed, so that what is resident is what is
// held.
[[maybe_unused]] const bool kGivesBack = mallopt(M_MMAP_THRESHOLD, 64 * 1024) == 1 && mallopt(M_ARENA_MAX, 1) == 1;

std::size_t residentBytes() {
  malloc_trim(0);
  unsigned long pages = 0;
  if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%*u %lu", &pages) != 1) pages = 0;
    std::fclose(file);
  }
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

void expectNoGrowth(std::size_t early, std::size_t late, std::size_t allowed, const char* what) {
  testing::Test::RecordProperty(std::string(what) + " early KiB", std::to_string(early / 1024));
  testing::Test::RecordProperty(std::string(what) + " late KiB", std::to_string(late / 1024));
  std::printf("%s: %zu KiB resident after 10, %zu KiB after 1000\n", what, early / 1024, late / 1024);
#ifndef QS_IS_SANITIZED
  EXPECT_LT(late, early + allowed) << what;
#else
  static_cast<void>(allowed);
#endif
}

void expectNoLeaks() {
#ifdef QS_HAS_LEAK_CHECK
  EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#endif
}

class Soak : public BothGenerations {
 protected:
  const Dialect& dialect() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Generations, Soak, testing::ValuesIn(kGenerations), nameOfGeneration);

// Scans of every kind of page, of which some are cancelled, some fail and some lose the device. A page has 117 KiB: if
// each scan left but one behind, it would show.
TEST_P(Soak, AThousandScansLeaveNothingBehind) {
  constexpr int kWidthPx = 200;
  const auto settings = settingsFor(kWidthPx, kWidthPx, 24);
  const Picture picture = drawPicture(kWidthPx, kWidthPx, 24);
  const JpegPage jpeg = makeJpegPage(kWidthPx, kWidthPx, 3);
  ASSERT_LT(jpeg.file.size(), 0x10000u) << "one record holds it";
  const ByteString end = dialect().pageEnd(1) + dialect().allPagesEnd();
  const struct {
    ByteString lines;
    ByteString bmp;
  } kinds[] = {{dialect().rawLines(picture), expectedBmp(picture)},
               {dialect().packedLines(picture), expectedBmp(picture)},
               {dialect().jpegBlock(24, 1, jpeg.file, kWidthPx), jpeg.bmp}};
  ScanHarness harness(dialect().generation());
  std::size_t early = 0;
  for (int n = 1; n <= 1000; ++n) {
    const auto& kind = kinds[n % 3];
    switch (n % 7) {
      case 0:
        harness.device.stream({MemoryDevice::data(kind.lines), MemoryDevice::quietForEver()});
        ASSERT_EQ(harness.start(settings), 0u);
        harness.core.AbortScanning();
        ASSERT_EQ(harness.collect().last, XFERCANCELED) << n;
        break;
      case 1:
        ASSERT_EQ(harness.scan(settings, kind.lines + dialect().jam()).result, 0x50000002u) << n;
        break;
      case 2:
        harness.device.stream({MemoryDevice::data(kind.lines), MemoryDevice::gone()});
        ASSERT_EQ(harness.scan(settings).result, MemoryDevice::kFailure) << n;
        break;
      case 3:  // overtaken by the next
        harness.device.stream({MemoryDevice::data(kind.lines), MemoryDevice::quietForEver()});
        ASSERT_EQ(harness.start(settings), 0u);
        break;
      default: {
        const Outcome outcome = harness.scan(settings, kind.lines + end);
        ASSERT_EQ(outcome.last, ALLEND) << n;
        ASSERT_EQ(outcome.pages(), std::vector<ByteString>{kind.bmp}) << n;
      }
    }
    if (n == 10) early = residentBytes();
  }
  expectNoGrowth(early, residentBytes(), 8 * kMiB, "scans");
  expectNoLeaks();
}

// A page has 264 KiB, and twelve of them may be on their way.
TEST_P(Soak, AScanOfAThousandPagesHoldsNoMoreThanOneOfTen) {
  constexpr int kWidthPx = 300;
  constexpr int kHeightPx = 300;
  const Picture picture = drawPicture(kWidthPx, kHeightPx, 24);
  const ByteString expected = expectedBmp(picture);
  std::atomic<unsigned> taken{0};
  unsigned made = 0;
  ScanHarness harness(dialect().generation());
  // No more than ten pages ahead: from 21 on the scan waits for a tenth of a second at a time.
  harness.device.stream({MemoryDevice::made([&] {
    if (made > taken + 10 || made > 1000) return ByteString();
    if (++made > 1000) return dialect().allPagesEnd();
    return dialect().rawLines(picture, made) + dialect().pageEnd(made);
  })});
  ASSERT_EQ(harness.start(settingsFor(kWidthPx, kHeightPx, 24)), 0u);
  std::size_t early = 0;
  std::size_t most = 0;
  for (int n = 1; n <= 1000; ++n) {
    ASSERT_EQ(harness.waitForStatusOtherThanReceiving(), XFERREADY) << n;
    const Delivery delivery = harness.read();
    ASSERT_EQ(delivery.bytes, expected) << n;
    harness.core.FreeImageData(delivery.pageNo);
    ++taken;
    if (n == 10) early = residentBytes();
    if (n >= 10 && n % 10 == 0) most = std::max(most, residentBytes());
  }
  const std::size_t late = residentBytes();
  EXPECT_EQ(harness.waitForStatusOtherThanReceiving(), ALLEND);
  expectNoGrowth(early, late, 8 * kMiB, "pages");
  expectNoGrowth(early, most, 8 * kMiB, "pages at most");
  expectNoLeaks();
}

}  // namespace
}  // namespace reception_test
