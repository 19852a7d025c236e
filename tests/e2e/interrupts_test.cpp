// Somebody stops a scan, at every moment of it: it ends soon, and every page that was finished is there.
#include <csignal>
#include <thread>

#include "parallel.h"
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

using std::chrono::milliseconds;

constexpr int kWidthPx = 400;
constexpr int kHeightPx = 600;
constexpr int kDpi = 100;
constexpr int kSheets = 8;
constexpr milliseconds kScanTime{2400};  // about what all sheets take at this pace
constexpr char kPagesPerMinute[] = "240";
constexpr std::size_t kAtOnce = 6;
// "A second or two", and as much again for a machine that does other things.
constexpr double kSoonSeconds = 4;
constexpr double kAtOnceSeconds = 1.5;

std::vector<milliseconds> sweep(milliseconds step) {
  std::vector<milliseconds> moments;
  for (milliseconds moment{0}; moment <= kScanTime; moment += step) moments.push_back(moment);
  return moments;
}

class Interrupts : public ScanTest {
 protected:
  struct Stopped {
    Finished run;
    double seconds = 0;  // from the signal on
    std::set<std::string> names;
    std::vector<Picture> pages;
    std::size_t toldBefore = 0;  // pages that had been told of when the signal came
  };

  void SetUp() override {
    for (int i = 0; i < kSheets; ++i) {
      drawn_.push_back(drawText(kWidthPx, kHeightPx, kDpi, static_cast<unsigned>(400 + i)));
      sheets_.push_back(sheet("sheet" + std::to_string(i + 1) + ".png", drawn_.back()));
    }
  }

  std::unique_ptr<VirtualScanner> scannerWith(int generation, const Arguments& more) const {
    Arguments arguments = sheets_;
    arguments.insert(arguments.end(), {"--hidden", "--reload", "--profile", generation == 1 ? "classic" : "office"});
    if (generation == 2) arguments.insert(arguments.end(), {"--set", "compressType[2]=3"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return std::make_unique<VirtualScanner>(folder_, arguments);
  }

  static Arguments options(const TemporaryFolder& folder, bool isBatch, const Arguments& more = {}) {
    Arguments all = {"--mode",
                     "gray",
                     "--resolution",
                     std::to_string(kDpi),
                     "--page-size",
                     paperOf(kWidthPx, kHeightPx, kDpi),
                     "--compression",
                     "lossless",
                     "--progress",
                     isBatch ? "--batch" : "-o",
                     folder.file(isBatch ? "page%d.png" : "pages.pdf")};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }

  static std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
  }

  // Waits for the end of a process that has just been stopped.
  Stopped await(Process& process, const TemporaryFolder& folder, std::size_t toldBefore) const {
    const auto start = Process::Clock::now();
    Stopped stopped;
    stopped.toldBefore = toldBefore;
    stopped.run = finish(process);
    stopped.seconds = std::chrono::duration<double>(Process::Clock::now() - start).count();
    stopped.names = folder.names();
    if (stopped.names.contains("pages.pdf")) {
      for (auto& page : readPdf(folder.file("pages.pdf"))) stopped.pages.push_back(std::move(page.picture));
    }
    for (int i = 1; stopped.names.contains("page" + std::to_string(i) + ".png"); ++i) {
      stopped.pages.push_back(readPng(folder.file("page" + std::to_string(i) + ".png")));
    }
    return stopped;
  }

  Stopped stop(Process& process, int signal, const TemporaryFolder& folder) const {
    const std::size_t told = count(contentOf(process.errPath()), "Page ");
    process.send(signal);
    return await(process, folder, told);
  }

  // Whole files with the right pages, at least those that had been told of, and no other file.
  void expectKept(const Stopped& stopped, bool isBatch) const {
    EXPECT_EQ(stopped.names.size(), isBatch                 ? stopped.pages.size()
                                    : stopped.pages.empty() ? 0u
                                                            : 1u)
        << ::testing::PrintToString(stopped.names);
    expectSheets(stopped);
    const auto pages = stopped.pages.size();
    const std::string kept = std::to_string(pages) + (pages == 1 ? " page " : " pages ");
    EXPECT_EQ(stopped.run.err.find(kept) != std::string::npos, pages > 0) << stopped.run.err;
  }

  void expectSheets(const Stopped& stopped) const {
    EXPECT_GE(stopped.pages.size(), stopped.toldBefore);
    ASSERT_LE(stopped.pages.size(), drawn_.size());
    for (std::size_t i = 0; i < stopped.pages.size(); ++i) {
      EXPECT_EQ(difference(drawn_[i], stopped.pages[i]), "") << "page " << i + 1;
    }
  }

  std::vector<Picture> drawn_;
  Arguments sheets_;
};

struct Request {
  int generation;
  int signal;
  bool isBatch;  // a file for each page instead of one PDF
  milliseconds after;
};

std::string nameOf(const Request& row) {
  return "generation " + std::to_string(row.generation) + ", signal " + std::to_string(row.signal) +
         (row.isBatch ? ", batch" : ", document") + " after " + std::to_string(row.after.count()) + " ms";
}

TEST_F(Interrupts, AtAnyMomentKeepTheFinishedPages) {
  std::vector<Request> rows;
  for (const int generation : {1, 2}) {
    for (const auto after : sweep(milliseconds(100))) rows.push_back({generation, SIGINT, generation == 1, after});
    for (const int signal : {SIGTERM, SIGHUP}) {
      for (const auto after : sweep(milliseconds(350))) rows.push_back({generation, signal, generation == 2, after});
    }
  }
  forEachAtOnce(rows, kAtOnce, [&](const Request& row) {
    SCOPED_TRACE(nameOf(row));
    const TemporaryFolder folder;
    const auto scanner = scannerWith(row.generation, {"--ppm", kPagesPerMinute});
    const auto process = startScan(scanner->address(), options(folder, row.isBatch));
    std::this_thread::sleep_for(row.after);
    const Stopped stopped = stop(*process, row.signal, folder);
    EXPECT_LT(stopped.seconds, kSoonSeconds);
    // What comes too late changes nothing.
    const bool isDone = stopped.pages.size() == drawn_.size() && stopped.run.exit.code == 0;
    EXPECT_TRUE(isDone || endedWith(128 + row.signal, stopped.run)) << stopped.run.all();
    expectKept(stopped, row.isBatch);
    EXPECT_TRUE(endedWith(0, qsscan({"info", "-d", scanner->address()}))) << "the scanner serves the next";
  });
}

TEST_F(Interrupts, AtEachPageThatIsToldKeepIt) {
  std::vector<Request> rows;
  for (const int generation : {1, 2}) {
    for (int page = 1; page < kSheets - 1; page += 2)
      rows.push_back({generation, SIGINT, page % 4 == 1, milliseconds(page)});
  }
  forEachAtOnce(rows, kAtOnce, [&](const Request& row) {
    const auto page = row.after.count();
    SCOPED_TRACE("generation " + std::to_string(row.generation) + ", at page " + std::to_string(page));
    const TemporaryFolder folder;
    // So slow that the last page does not come while this one goes through the library.
    const auto scanner = scannerWith(row.generation, {"--ppm", "120"});
    const auto process = startScan(scanner->address(), options(folder, row.isBatch));
    ASSERT_TRUE(process->waitForText(process->errPath(), "Page " + std::to_string(page) + ":", kPatience));
    const Stopped stopped = stop(*process, row.signal, folder);
    EXPECT_LT(stopped.seconds, kSoonSeconds);
    EXPECT_TRUE(endedWith(130, stopped.run));
    EXPECT_NE(stopped.run.err.find("qsscan: Interrupted.\n"), std::string::npos) << stopped.run.err;
    EXPECT_LT(stopped.pages.size(), drawn_.size());
    expectKept(stopped, row.isBatch);
  });
}

// Nobody can clean up after SIGKILL: what stands under its final name must be whole at every moment.
TEST_F(Interrupts, AKillLeavesOnlyWholeFilesUnderTheirNames) {
  std::vector<Request> rows;
  for (const int generation : {1, 2}) {
    for (const auto after : sweep(milliseconds(150))) rows.push_back({generation, SIGKILL, generation == 1, after});
  }
  forEachAtOnce(rows, kAtOnce, [&](const Request& row) {
    SCOPED_TRACE(nameOf(row));
    const TemporaryFolder folder;
    const auto scanner = scannerWith(row.generation, {"--ppm", kPagesPerMinute});
    const auto process = startScan(scanner->address(), options(folder, row.isBatch));
    std::this_thread::sleep_for(row.after);
    Stopped stopped = stop(*process, row.signal, folder);
    // A document is there only when it is done.
    if (!row.isBatch && stopped.pages.empty()) stopped.toldBefore = 0;
    expectSheets(stopped);
    std::size_t unfinished = 0;
    for (const std::string& name : stopped.names) unfinished += name.ends_with(".part") ? 1 : 0;
    EXPECT_LE(unfinished, 1u);
    EXPECT_EQ(stopped.names.size(), unfinished + (row.isBatch             ? stopped.pages.size()
                                                  : stopped.pages.empty() ? 0u
                                                                          : 1u));

    // The next scan to the same name puts everything in order.
    ASSERT_TRUE(endedWith(0, scan(scanner->address(), options(folder, row.isBatch))));
    for (const std::string& name : folder.names()) EXPECT_FALSE(name.ends_with(".part")) << name;
  });
}

struct Stuck {
  int generation;
  const char* fault;
  std::size_t pages;  // that came before
  int requests;
};

// A device that has fallen silent, wherever the host waits for it.
TEST_F(Interrupts, ASilentDeviceIsLeftSoon) {
  std::vector<Stuck> rows;
  for (const int requests : {1, 2}) {
    for (const int generation : {1, 2}) {
      rows.push_back({generation, "silence@command=Q", 0, requests});
      rows.push_back({generation, generation == 1 ? "silence@command=D" : "silence@command=CKD", 0, requests});
      rows.push_back({generation, generation == 1 ? "silence@command=I" : "silence@command=SSP", 0, requests});
      rows.push_back({generation, generation == 1 ? "silence@command=X" : "silence@command=XSC", 0, requests});
      rows.push_back({generation, "silence@page=1,line=1", 0, requests});
      rows.push_back({generation, "silence@page=3,line=300", 2, requests});
      rows.push_back({generation, "silence@page=3", 2, requests});
    }
    rows.push_back({2, "silence@command=QDI", 0, requests});
  }
  forEachAtOnce(rows, kAtOnce, [&](const Stuck& row) {
    SCOPED_TRACE("generation " + std::to_string(row.generation) + ", " + row.fault + ", " +
                 std::to_string(row.requests) + " request(s)");
    const TemporaryFolder folder;
    // At that pace the pages before are fetched when the silence comes.
    const auto scanner = scannerWith(row.generation, {"--fault", row.fault, "--ppm", kPagesPerMinute});
    const auto process = startScan(scanner->address(), options(folder, false));
    for (int i = 0; i < 3000 && scanner->log().find("falls silent") == std::string::npos; ++i) {
      std::this_thread::sleep_for(milliseconds(10));
    }
    // A page that came last takes a while through the library.
    std::this_thread::sleep_for(milliseconds(row.pages > 0 ? 2000 : 200));
    if (row.requests == 2) {
      process->send(SIGINT);
      std::this_thread::sleep_for(milliseconds(300));
    }
    const Stopped stopped = stop(*process, SIGINT, folder);
    EXPECT_LT(stopped.seconds, row.requests == 2 ? kAtOnceSeconds : kSoonSeconds);
    EXPECT_TRUE(endedWith(130, stopped.run));
    EXPECT_EQ(stopped.pages.size(), row.pages);
    expectKept(stopped, false);
  });
}

}  // namespace
}  // namespace e2e
