// Long batches, scan after scan, and several scanners at once: what a program takes must not grow with its work.
//
// The tests are short forms. QS_LONG_RUNS=1 in the environment makes them whole: 500 A4 pages at 300 dpi for each
// format, 200 scans, and four scanners of 50 pages each. Both forms print what they have measured.
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include "core_host.h"
#include "figures.h"
#include "likeness.h"
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

using namespace orvalle_scan_api;

const bool kWhole = std::getenv("QS_LONG_RUNS") != nullptr;
// Sanitizers make everything slow and say nothing of memory.
int inForm(int brief, int whole) { return kWhole ? whole : kMemoryIsTelling ? brief : brief / 4; }
const std::chrono::seconds kRunLimit = kWhole ? std::chrono::hours(1) : 2 * kPatience;

constexpr double kA4WidthInches = 210 / 25.4;
constexpr double kA4HeightInches = 297 / 25.4;
// JPEG twice over costs the small letters at 100 dpi that much. Two of the pages are far more unlike.
constexpr double kSamePictureDb = 25;
constexpr double kOtherPictureDb = 20;

struct Kind {
  COLORTYPE color;
  bool bothSides;
};
constexpr Kind kKinds[] = {{COLORTYPE_COLOR24BIT, false},
                           {COLORTYPE_BLACKANDWHITE, true},
                           {COLORTYPE_TRUEGRAY, false},
                           {COLORTYPE_COLOR24BIT, true}};

class LongRuns : public ScanTest {
 protected:
  // Pages of A4 as files. The stack holds the four of them over and over.
  Arguments drawStack(int pages, int dpi, Picture (*draw)(int, int, double, unsigned), unsigned seed) {
    const std::string name = "sheet" + std::to_string(seed) + "-";
    drawn_.clear();
    for (unsigned i = 0; i < 4; ++i) {
      const auto px = [dpi](double inches) { return static_cast<int>(std::lround(inches * dpi)); };
      drawn_.push_back(draw(px(kA4WidthInches), px(kA4HeightInches), dpi, seed + i));
      writeBytes(file(name + std::to_string(i) + ".jpg"), encodeJpeg(drawn_.back(), 95, 1, 1));
    }
    EXPECT_LT(psnrDb(drawn_[0], drawn_[1]), kOtherPictureDb);
    Arguments stack;
    for (int i = 0; i < pages; ++i) stack.push_back(file(name + std::to_string(i % 4) + ".jpg"));
    return stack;
  }
  // Pages count from 0.
  bool isPage(int page, const Picture& picture) const {
    const Picture& drawn = drawn_[static_cast<std::size_t>(page) % drawn_.size()];
    return psnrDb(drawn, drawn.channels == 1 ? withoutIdleColor(picture) : picture) >= kSamePictureDb;
  }
  // Of a colour page.
  long pageKib() const { return 3L * drawn_[0].widthPx * drawn_[0].heightPx / 1024; }

  // Scans a stack into the output and watches the memory of qsscan.
  void scanLongBatch(Arguments stack, int dpi, const Arguments& output);
  // Scans the stack of four at 100 dpi; the pages must be its pages.
  void scanStack(CoreHost& host, const Kind& kind) const;
  // Scans over and over within this process, and watches what it and the scanner take.
  void scanAgainAndAgain(int scans, const std::function<void(const std::string& address)>& scanOnce);

  std::vector<Picture> drawn_;
};

// How many pages "qsscan -p" has told of.
int pagesTold(const std::string& progress) {
  const auto last = progress.rfind("Page ");
  return last == std::string::npos ? 0 : std::atoi(progress.c_str() + last + 5);
}

void LongRuns::scanLongBatch(Arguments stack, int dpi, const Arguments& output) {
  const auto pages = static_cast<int>(stack.size());
  VirtualScanner& scanner = startScanner(std::move(stack));
  Arguments arguments = {"--page-size", "a4", "-p", "--resolution", std::to_string(dpi)};
  arguments.insert(arguments.end(), output.begin(), output.end());
  const auto run = startScan(scanner.address(), arguments);

  // The core holds 21 pages before it makes the device wait: a batch takes its room in the beginning.
  const int settled = kWhole ? pages / 10 : pages / 2;
  Figures atSettled;
  Figures last;
  std::vector<long> residentKib;
  int nextToPrint = settled;
  const auto limit = Process::Clock::now() + kRunLimit;
  while (run->isRunning() && Process::Clock::now() < limit) {
    const int told = pagesTold(contentOf(run->errPath()));
    const Figures now = figuresOf(run->pid());
    if (now.peakKib != 0) last = now;
    residentKib.push_back(last.residentKib);
    if (told <= settled) atSettled = last;
    if (told >= nextToPrint) {
      std::sort(residentKib.begin(), residentKib.end());
      std::printf("until page %3d: %4ld MiB resident in the middle, %4ld MiB at most so far\n", told,
                  residentKib[residentKib.size() / 2] / 1024, last.peakKib / 1024);
      residentKib.clear();
      nextToPrint = told + std::max(1, pages / 10);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  const auto finished = finish(*run);
  ASSERT_TRUE(endedWith(0, finished));
  const long grownKib = last.peakKib - atSettled.peakKib;
  std::printf("%d pages at %d dpi in %.0f s: %ld MiB at most, %ld of them after page %d\n", pages, dpi,
              finished.exit.seconds, last.peakKib / 1024, grownKib / 1024, settled);
  EXPECT_EQ(pagesTold(finished.err), pages);
  if (!kMemoryIsTelling) return;
  // The library's 21 pages, those in work held twice, seven of the program's own, and what the allocator keeps of small
  // ones. How many meet is chance, so that growth tells something in a long run alone.
  EXPECT_LE(last.peakKib, (kWhole ? 36 : 45) * pageKib() + 32 * 1024);
  EXPECT_TRUE(!kWhole || grownKib <= 10 * pageKib());
}

TEST_F(LongRuns, ABatchIntoOnePdfTakesNoMoreMemoryAsItGrows) {
  const int pages = inForm(70, 500);
  const int dpi = kWhole ? 300 : 100;
  scanLongBatch(drawStack(pages, dpi, drawColor, 20), dpi, {"-o", file("long.pdf")});
  int read = 0;
  int right = 0;
  readPdf(file("long.pdf"), [&](const PdfPage& page) { right += isPage(read++, page.picture); });
  EXPECT_EQ(read, pages);
  EXPECT_EQ(right, pages);
}

// Text on white: 500 pages with photographs would not fit into the 4 GiB of a TIFF.
TEST_F(LongRuns, ABatchIntoOneTiffTakesNoMoreMemoryAsItGrows) {
  const int pages = inForm(70, 500);
  const int dpi = kWhole ? 300 : 100;
  scanLongBatch(drawStack(pages, dpi, drawText, 20), dpi, {"-o", file("long.tif")});
  int read = 0;
  int right = 0;
  readTiffPages(file("long.tif"), [&](const Picture& page) { right += isPage(read++, page); });
  EXPECT_EQ(read, pages);
  EXPECT_EQ(right, pages);
}

TEST_F(LongRuns, ABatchOfFilesTakesNoMoreMemoryAsItGrows) {
  const int pages = inForm(70, 500);
  const int dpi = kWhole ? 300 : 100;
  scanLongBatch(drawStack(pages, dpi, drawText, 20), dpi, {"--batch", file("page%d.png")});
  int right = 0;
  for (int i = 0; i < pages; ++i) right += isPage(i, readPng(file("page" + std::to_string(i + 1) + ".png")));
  EXPECT_EQ(right, pages);
}

void LongRuns::scanStack(CoreHost& host, const Kind& kind) const {
  const bool isColor = kind.color == COLORTYPE_COLOR24BIT;
  int read = 0;
  const auto take = [&](const tagQS_SCAN_IMAGEDATA& page) {
    const Picture picture = pictureOf(page);
    EXPECT_EQ(picture.channels, isColor ? 3 : 1);
    EXPECT_EQ(picture.lineBytes() * 3 / static_cast<std::size_t>(picture.channels), drawn_[0].lineBytes());
    EXPECT_TRUE(!isColor || isPage(read, picture)) << "page " << read + 1;
    ++read;
  };
  EXPECT_EQ(host.scan(settingsFor(kind.color, 100, 21000, 29700, kind.bothSides), take), QSRSLT_SUCCESS);
  EXPECT_EQ(read, 4);
}

// What this program has allocated and not freed. Its resident size is larger by what the allocator keeps for later.
std::size_t allocatedBytes() {
  const auto pools = ::mallinfo2();
  return pools.uordblks + pools.hblkhd;
}

void LongRuns::scanAgainAndAgain(int scans, const std::function<void(const std::string& address)>& scanOnce) {
  Arguments arguments = drawStack(4, 100, drawColor, 20);
  arguments.push_back("--reload");
  VirtualScanner& scanner = startScanner(arguments);
  // The first scans fill the pools of the allocator and of the loader.
  const int settled = scans / 4;
  Figures host;
  Figures device;
  std::size_t allocated = 0;
  for (int i = 0; i < scans; ++i) {
    if (i == settled) {
      host = figuresOf(::getpid());
      device = figuresOf(scanner.pid());
      allocated = allocatedBytes();
    }
    SCOPED_TRACE("scan " + std::to_string(i + 1));
    scanOnce(scanner.address());
    if (HasFailure()) return;
  }
  const auto grownBytes = static_cast<std::ptrdiff_t>(allocatedBytes() - allocated);
  const Figures hostNow = figuresOf(::getpid());
  // A connection that has ended may still be tidied up over there.
  Figures deviceNow;
  for (int tries = 0; tries < 100; ++tries) {
    deviceNow = figuresOf(scanner.pid());
    if (deviceNow.descriptors <= device.descriptors && deviceNow.threads <= device.threads) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  const auto print = [&](const char* who, const Figures& before, const Figures& after) {
    std::printf("%s after %d and %d scans: %ld and %ld KiB resident, %d and %d descriptors, %d and %d threads\n", who,
                settled, scans, before.residentKib, after.residentKib, before.descriptors, after.descriptors,
                before.threads, after.threads);
  };
  print("host", host, hostNow);
  print("scanner", device, deviceNow);
  EXPECT_LE(hostNow.descriptors, host.descriptors);
  EXPECT_LE(hostNow.threads, host.threads);
  EXPECT_LE(deviceNow.descriptors, device.descriptors);
  EXPECT_LE(deviceNow.threads, device.threads);
  if (!kMemoryIsTelling) return;
  std::printf("allocated by the host and not freed since: %td bytes\n", grownBytes);
  EXPECT_LE(grownBytes, 65536);
  EXPECT_LE(hostNow.residentKib - host.residentKib, 32 * 1024);
  // Six pages, of nearly a hundred that were sent: the allocator takes more in steps.
  EXPECT_LE(deviceNow.residentKib - device.residentKib, 16 * 1024);
}

TEST_F(LongRuns, ScanAfterScanOfOneInstanceLeavesNothingBehind) {
  std::unique_ptr<CoreHost> host;
  int scan = 0;
  scanAgainAndAgain(inForm(32, 200), [&](const std::string& address) {
    if (!host) host = std::make_unique<CoreHost>(address);
    const Kind& kind = kKinds[scan++ % std::size(kKinds)];
    scanStack(*host, kind);
  });
}

TEST_F(LongRuns, InstanceAfterInstanceLeavesNothingBehind) {
  scanAgainAndAgain(inForm(32, 200), [&](const std::string& address) {
    CoreHost host(address);
    scanStack(host, kKinds[0]);
  });
}

TEST_F(LongRuns, FourScannersServeFourProgramsAtOnce) {
  constexpr std::size_t kPrograms = 4;
  const int pages = inForm(8, 50);
  std::vector<std::vector<Picture>> drawn;
  std::vector<std::string> addresses;
  for (std::size_t i = 0; i < kPrograms; ++i) {
    Arguments arguments = drawStack(pages, 300, drawColor, 100 * static_cast<unsigned>(i));
    if (i % 2 == 1) arguments.insert(arguments.end(), {"--profile", "classic"});
    drawn.push_back(std::move(drawn_));
    addresses.push_back(startScanner(arguments).address());
  }
  const auto nameOf = [&](std::size_t i) { return file("at-once" + std::to_string(i) + ".pdf"); };
  std::vector<std::unique_ptr<Process>> runs;
  for (std::size_t i = 0; i < kPrograms; ++i) {
    runs.push_back(startScan(addresses[i], {"--page-size", "a4", "-o", nameOf(i)}));
  }
  std::vector<double> seconds;
  // Asked for in turn, so that each end is seen when it comes.
  const auto limit = Process::Clock::now() + kRunLimit;
  while (std::count_if(runs.begin(), runs.end(), [](const auto& run) { return run->isRunning(); }) > 0 &&
         Process::Clock::now() < limit) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  for (std::size_t i = 0; i < kPrograms; ++i) {
    const auto finished = finish(*runs[i]);
    ASSERT_TRUE(endedWith(0, finished));
    seconds.push_back(finished.exit.seconds);
    drawn_ = drawn[i];
    int read = 0;
    int right = 0;
    readPdf(nameOf(i), [&](const PdfPage& page) { right += isPage(read++, page.picture); });
    EXPECT_EQ(read, pages) << "program " << i;
    EXPECT_EQ(right, pages) << "program " << i;
  }
  const auto [quickest, slowest] = std::minmax_element(seconds.begin(), seconds.end());
  std::printf("four times %d pages at once: %.1f to %.1f s\n", pages, *quickest, *slowest);
  // None has to wait until another has finished.
  EXPECT_LE(*slowest, 2 * *quickest + 1);
}

}  // namespace
}  // namespace e2e
