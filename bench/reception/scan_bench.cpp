// Whole scans of A4 at 300 dpi through the facade, from a device in memory to the pages that a host gets.
//
//   pages_per_s   pages by the clock on the wall
//   of_bare       time of a page by the time that libjpeg takes for the same sheet as a JPEG into one buffer, in colour
//                 for colour and in grey for grey and mono, measured in the same run
//   cpu_*_ms      processor time of a page on each thread, and of that JPEG. The read thread's loop has no sleep of its
//   own: once the
//                 device has sent everything it runs on until the last page is through.
#include <benchmark/benchmark.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>

#include "api/ScanProtocol.h"
#include "bench/modules/sheet.h"
#include "tests/modules/jpeg_pictures.h"
#include "tests/reception/keep_modules.h"
#include "tests/reception/scan_pictures.h"

namespace {

// The threads of a scan by the operation that a thread carries out.
constexpr const char* kOperations[] = {"ThreadProc", "DecodeJpegImage", "DecodeImage", "ImageEnhancementProc"};
constexpr const char* kThreads[] = {"cpu_read_ms", "cpu_jpeg_ms", "cpu_line_ms", "cpu_enhance_ms"};
constexpr std::size_t kThreadCount = std::size(kOperations);

std::array<std::atomic<std::int64_t>, kThreadCount> threadNs{};

std::int64_t threadClockNs() {
  std::timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

void noteOperation(const char* operation, bool isEntry) {
  thread_local std::array<std::int64_t, kThreadCount> enteredNs{};
  for (std::size_t i = 0; i < kThreadCount; ++i) {
    if (std::strcmp(operation, kOperations[i]) != 0) continue;
    if (isEntry) {
      enteredNs[i] = threadClockNs();
    } else {
      threadNs[i] += threadClockNs() - enteredNs[i];
    }
  }
}

}  // namespace

// The linker leads every call of COutputLog::WriteLog here; the log itself is off.
extern "C" __attribute__((format(printf, 3, 4))) void __wrap__ZN10COutputLog8WriteLogEiPKcz(void*, int,
                                                                                            const char* format, ...) {
  const bool isEntry = std::strcmp(format, ">>>>> %s >>>>>") == 0;
  if (!isEntry && std::strncmp(format, "<<<<< %s <<<<<", 14) != 0) return;
  std::va_list arguments;
  va_start(arguments, format);
  noteOperation(va_arg(arguments, const char*), isEntry);
  va_end(arguments);
}

namespace {

using namespace orvalle_scan_api;
using namespace reception_test;
using fakes::MemoryDevice;

// Below the number at which a scan waits for its caller.
constexpr unsigned kPages = 10;

struct Sort {
  COLORTYPE colorType;
  int bits;
  bool isJpeg;
};
constexpr Sort kColorJpeg{COLORTYPE_COLOR24BIT, 24, true};
constexpr Sort kGrayPackBits{COLORTYPE_TRUEGRAY, 8, false};
constexpr Sort kMonoPackBits{COLORTYPE_BLACKANDWHITE, 1, false};

module_test::Pixels sheet(bool isColor) {
  return {bench_sheet::kWidthPx, bench_sheet::kHeightPx, isColor ? 3 : 1,
          isColor ? bench_sheet::drawRgb() : bench_sheet::drawGray()};
}

Picture pictureOf(const ByteString& bytes, int bits) {
  Picture picture{bench_sheet::kWidthPx, bench_sheet::kHeightPx, bits, {}};
  const std::ptrdiff_t lineBytes = bench_sheet::kWidthPx * bits / 8;
  for (auto at = bytes.begin(); at != bytes.end(); at += lineBytes) picture.lines.emplace_back(at, at + lineBytes);
  return picture;
}

ByteString jpegBlocks(const ByteString& jpeg, unsigned pageNo) {
  constexpr std::size_t kBlockBytes = 0x10000;
  ByteString records;
  for (std::size_t at = 0; at < jpeg.size(); at += kBlockBytes) {
    const std::size_t end = std::min(jpeg.size(), at + kBlockBytes);
    const auto start = jpeg.begin() + static_cast<std::ptrdiff_t>(at);
    records += block(pageNo, kJpeg | kColor, ByteString(start, start + static_cast<std::ptrdiff_t>(end - at)),
                     static_cast<std::uint32_t>(bench_sheet::kHeightPx * end / jpeg.size()));
  }
  return records;
}

struct Batch {
  ByteString jpeg;  // the bare one
  ByteString expected;
  std::vector<MemoryDevice::Part> stream;
};

Batch makeBatch(const Sort& sort) {
  Batch batch;
  batch.jpeg = module_test::encodeJpeg(sheet(sort.bits == 24));
  Picture picture;
  if (sort.isJpeg) {
    module_test::Pixels decoded;
    module_test::decodeWithLibjpeg(batch.jpeg, decoded);
    picture = pictureOf(decoded.bytes, sort.bits);
  } else {
    picture = pictureOf(sort.bits == 8 ? bench_sheet::drawGray() : bench_sheet::drawMono(), sort.bits);
  }
  batch.expected = expectedBmp(picture);
  for (unsigned page = 1; page <= kPages; ++page) {
    batch.stream.push_back(
        MemoryDevice::data((sort.isJpeg ? jpegBlocks(batch.jpeg, page) : packedLines(picture, page)) + pageEnd(page)));
  }
  batch.stream.push_back(MemoryDevice::data(allPagesEnd()));
  return batch;
}

class Host {
 public:
  explicit Host(const Batch& batch) {
    keepModulesLoaded();
    device_.answer("SSP", fakes::sspAnswer(300, 300, 2550, 3600));
    device_.stream(batch.stream);
    core_.SetDeviceAccess(&device_);
    core_.Initialize();
    _QS_SELECT_DEVICE_INFO info{};
    info.connectionType = 1;
    std::strcpy(info.primaryName, "memory");
    core_.SelectDevice(info);
  }

  // Whether all pages came, each of them the expected one where that is given.
  bool scan(const Sort& sort, const ByteString* expected) {
    QS_SCANNER_PARAMETERS settings{};
    settings.resolution = {300, 300};
    settings.colorType = sort.colorType;
    settings.paperType = PAPERTYPE_A4;
    settings.useScanArea = 1;
    settings.scanArea = {0, 0, bench_sheet::kWidthPx, bench_sheet::kHeightPx, UNIT_PIXEL};
    settings.paperSource = PAPERSOURCE_FLATBED;
    settings.detectEndOfPage = 1;
    if (core_.StartScanning(&settings) != 0) return false;
    for (unsigned pages = 0;;) {
      const SCANAPISTATUS status = core_.GetScanStatus();
      if (status == RECEIVING) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      } else if (status == ALLEND) {
        return pages == kPages;
      } else {
        tagQS_SCAN_IMAGEDATA page{};
        int pageNo = 0;
        if (status != XFERREADY || core_.ReadImageData(&page, &pageNo) != 0) return false;
        if (expected != nullptr &&
            !std::equal(expected->begin(), expected->end(), page.data, page.data + page.dataSize)) {
          return false;
        }
        core_.FreeImageData(pageNo);
        ++pages;
      }
    }
  }

 private:
  MemoryDevice device_;
  CScanProtocol core_;  // ends before the device
};

double secondsOf(const auto& act) {
  const auto start = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void scan(benchmark::State& state, const Sort& sort) {
  const Batch batch = makeBatch(sort);
  Host host(batch);
  if (!host.scan(sort, &batch.expected)) return state.SkipWithError("wrong pages");
  for (auto& ns : threadNs) ns = 0;

  double bareSeconds = 0;
  std::int64_t bareNs = 0;
  double scanSeconds = 0;
  double callerSeconds = 0;
  for (auto _ : state) {
    const std::int64_t callerNs = threadClockNs();
    scanSeconds += secondsOf([&] { host.scan(sort, nullptr); });
    callerSeconds += static_cast<double>(threadClockNs() - callerNs) / 1e9;
    state.PauseTiming();
    const std::int64_t beforeNs = threadClockNs();
    bareSeconds += secondsOf([&] {
      for (unsigned page = 0; page < kPages; ++page) {
        module_test::Pixels decoded;
        module_test::decodeWithLibjpeg(batch.jpeg, decoded);
        benchmark::DoNotOptimize(decoded.bytes.data());
      }
    });
    bareNs += threadClockNs() - beforeNs;
    state.ResumeTiming();
  }
  const double pages = static_cast<double>(state.iterations()) * kPages;
  state.counters["pages_per_s"] = pages / scanSeconds;
  state.counters["of_bare"] = scanSeconds / bareSeconds;
  state.counters["cpu_bare_ms"] = static_cast<double>(bareNs) / 1e6 / pages;
  state.counters["cpu_caller_ms"] = callerSeconds * 1000 / pages;
  for (std::size_t i = 0; i < kThreadCount; ++i) {
    state.counters[kThreads[i]] = static_cast<double>(threadNs[i]) / 1e6 / pages;
  }
}

BENCHMARK_CAPTURE(scan, color_jpeg, kColorJpeg)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(scan, gray_packbits, kGrayPackBits)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(scan, mono_packbits, kMonoPackBits)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
