// Whole scans: qsscan from the virtual scanner over loopback into files.
//
// Each job is checked first, page by page. Then it is run several times, each time once with the real modules, for time
// and memory, once with timed stand-ins, for the shares, and beside them the JPEGs of the same pages are decoded by
// libjpeg alone into one buffer. Medians are printed, and in brackets the least and the most.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "jobs.h"
#include "measured_run.h"
#include "scan_test.h"
#include "temporary_folder.h"
#include "tests/modules/jpeg_pictures.h"
#include "timed/thread_clock.h"

namespace {

using namespace qsscan_bench;

struct Wish {
  int pages = 24;  // of a job at 300 dpi; a quarter of them at 600
  int runs = 5;
  std::string only;  // a part of the job's name
};

struct Spread {
  double median = 0;
  double least = 0;
  double most = 0;
};

Spread spreadOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return {values[values.size() / 2], values.front(), values.back()};
}

// The processor time of one page's decode, over all pages that were kept.
double bareSecondsOfPage(const std::vector<std::vector<std::uint8_t>>& jpegs) {
  static module_test::Pixels buffer;
  const auto start = timed::threadClockNs();
  for (const auto& jpeg : jpegs) {
    if (!module_test::decodeWithLibjpeg(jpeg, buffer)) throw std::runtime_error("a JPEG cannot be decoded");
  }
  return static_cast<double>(timed::threadClockNs() - start) / 1e9 / static_cast<double>(jpegs.size());
}

std::vector<std::vector<std::uint8_t>> keptJpegs(const std::string& folder) {
  std::vector<std::vector<std::uint8_t>> jpegs;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string content = e2e::contentOf(entry.path());
    jpegs.emplace_back(content.begin(), content.end());
  }
  return jpegs;
}

class Bench {
 public:
  Bench(const Job& job, int pages)
      : job_(job), pages_(pages), sheets_(drawSheets(job, pages, folder_.path())), scanner_(folder_, stack()) {
    std::filesystem::create_directory(folder_.file("jpegs"));
  }

  void check() {
    ::setenv("QS_TIMED_JPEGS", folder_.file("jpegs").c_str(), 1);
    measure(command(QS_TIMED_LIBRARY), folder_.path(), scanner_.pid());
    ::unsetenv("QS_TIMED_JPEGS");
    jpegs_ = keptJpegs(folder_.file("jpegs"));
    const std::string fault = faultOf(job_, sheets_, folder_.path(), pages_);
    if (!fault.empty()) throw std::runtime_error(std::string(job_.name) + ": " + fault);
  }

  void runOnce() {
    const Cost real = measure(command(""), folder_.path(), scanner_.pid());
    const Cost split = measure(command(QS_TIMED_LIBRARY), folder_.path(), scanner_.pid());
    const auto note = [this](Column column, double value) { columns_[column].push_back(value); };
    const double toMs = 1000.0 / pages_;
    const double transport = split.modules.at("transport");
    const double jpeg = split.modules.at("jpeg");
    const double lines = split.modules.at("lines");
    const double library = split.whole - split.writing - split.fetching;
    note(kPagesPerMinute, pages_ * 60 / real.wall);
    note(kPeak, real.peakMib);
    note(kDevice, real.device * toMs);
    note(kWhole, real.whole * toMs);
    note(kTransport, transport * toMs);
    note(kJpeg, jpeg * toMs);
    note(kLines, lines * toMs);
    note(kFetching, split.fetching * toMs);
    note(kWriting, split.writing * toMs);
    note(kCore, (library - transport - jpeg - lines) * toMs);
    if (jpegs_.empty()) return;
    const double bare = bareSecondsOfPage(jpegs_) * 1000;
    note(kBare, bare);
    note(kWholeByBare, real.whole * toMs / bare);
    note(kLibraryByBare, library * toMs / bare);
  }

  static void printHead() {
    std::printf("%-33s", "job");
    for (const Heading& heading : kHeadings) std::printf(" %*s", heading.width, heading.text);
    std::printf("\n");
  }

  void print() const {
    std::printf("%-33s", job_.name);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      std::string text = "-";
      if (!columns_[i].empty()) {
        const Spread spread = spreadOf(columns_[i]);
        char value[64];
        const int decimals = kHeadings[i].decimals;
        if (kHeadings[i].withSpread) {
          std::snprintf(value, sizeof value, "%.*f (%.*f-%.*f)", decimals, spread.median, decimals, spread.least,
                        decimals, spread.most);
        } else {
          std::snprintf(value, sizeof value, "%.*f", decimals, spread.median);
        }
        text = value;
      }
      std::printf(" %*s", kHeadings[i].width, text.c_str());
    }
    std::printf("\n");
    std::fflush(stdout);
  }

 private:
  enum Column {
    kPagesPerMinute,
    kPeak,
    kDevice,
    kTransport,
    kCore,
    kJpeg,
    kLines,
    kFetching,
    kWriting,
    kWhole,
    kBare,
    kWholeByBare,
    kLibraryByBare,
    kColumns
  };
  struct Heading {
    const char* text;
    int width;
    int decimals;
    bool withSpread;
  };
  static constexpr Heading kHeadings[kColumns] = {
      {"pages/min", 15, 0, true},    {"peak MiB", 8, 0, false}, {"device ms", 9, 1, false}, {"transport", 9, 1, false},
      {"core", 5, 1, false},         {"JPEG", 5, 1, false},     {"lines", 5, 1, false},     {"fetching", 8, 1, false},
      {"writing", 7, 1, false},      {"whole ms", 20, 1, true}, {"bare ms", 7, 1, false},   {"whole/bare", 16, 2, true},
      {"library/bare", 16, 2, true},
  };

  Arguments stack() const {
    Arguments arguments = {"--reload"};
    for (int i = 0; i < pages_; ++i)
      arguments.push_back(sheets_.paths[static_cast<std::size_t>(i) % sheets_.paths.size()]);
    return arguments;
  }

  Arguments command(const std::string& library) const {
    const std::string output = folder_.file(job_.file);
    Arguments arguments = {QSSCAN_PROGRAM,
                           "scan",
                           "-d",
                           scanner_.address(),
                           "--page-size",
                           "a4",
                           "--resolution",
                           std::to_string(job_.dpi),
                           output.find("%d") == std::string::npos ? "-o" : "--batch",
                           output};
    arguments.insert(arguments.end(), job_.options.begin(), job_.options.end());
    if (!library.empty()) arguments.insert(arguments.end(), {"--library", library});
    return arguments;
  }

  const Job& job_;
  const int pages_;
  const e2e::TemporaryFolder folder_;
  const Sheets sheets_;
  const e2e::VirtualScanner scanner_;
  std::vector<std::vector<std::uint8_t>> jpegs_;
  std::array<std::vector<double>, kColumns> columns_;
};

Wish readWish(int count, char** arguments) {
  Wish wish;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string name = arguments[i];
    const char* value = arguments[i + 1];
    if (name == "--pages") {
      wish.pages = std::atoi(value);
    } else if (name == "--runs") {
      wish.runs = std::atoi(value);
    } else if (name == "--only") {
      wish.only = value;
    } else {
      wish.runs = 0;
    }
  }
  if (count % 2 == 0 || wish.pages < 1 || wish.runs < 1) {
    throw std::runtime_error("usage: qsscan_bench [--pages N] [--runs N] [--only PART-OF-A-NAME]");
  }
  return wish;
}

}  // namespace

int main(int count, char** arguments) {
  try {
    const Wish wish = readWish(count, arguments);
    std::printf("%d pages (a quarter at 600 dpi), %d runs; processor time of a page in ms\n", wish.pages, wish.runs);
    Bench::printHead();
    for (const Job& job : jobs()) {
      if (std::string(job.name).find(wish.only) == std::string::npos) continue;
      Bench bench(job, job.dpi == 600 ? std::max(1, wish.pages / 4) : wish.pages);
      bench.check();
      for (int run = 0; run < wish.runs; ++run) bench.runOnce();
      bench.print();
    }
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "qsscan_bench: %s\n", error.what());
    return 1;
  }
}
