#include "scan_command.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <new>
#include <optional>
#include <thread>
#include <utility>

#include "interrupts.h"
#include "page_fetcher.h"
#include "results.h"
#include "rotation.h"
#include "settings.h"

namespace qsscan {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kQueuePages = 4;
constexpr std::size_t kQueueBytes = std::size_t{256} << 20;
constexpr std::chrono::milliseconds kWriterPoll{50};
// An interrupted scan is over by then, whatever the device, the library and slow files still have to do.
constexpr std::chrono::milliseconds kStopTime = PageFetcher::kAbortPatience + std::chrono::milliseconds(500);

// The writer's side of a scan: takes pages from the queue and puts them into files.
class ScanWriter {
 public:
  ScanWriter(const Options& options, std::FILE* progress)
      : output_(options.output, options.writer),
        turnDegrees_(options.wish.turnDegrees),
        style_(options.progress),
        progress_(progress) {}

  // False once writing has failed.
  bool write(Page& page) {
    if (failure_) return false;
    attempt([&] {
      page = turned(std::move(page), turnDegrees_);
      output_.addPage(page);
      pages_.push_back(reportPage(page, seconds()));
      tell(pages_.back());
    });
    return !failure_;
  }

  void finish(ScanReport& report) {
    attempt([&] { output_.finish(); });
    pages_.resize(std::min(pages_.size(), static_cast<std::size_t>(output_.keptPages())));
    report.pages = pages_;
    report.files = output_.files();
    report.seconds = seconds();
  }

  const std::optional<CommandError>& failure() const { return failure_; }

 private:
  template <typename Action>
  void attempt(Action action) {
    try {
      action();
    } catch (const CommandError& error) {
      if (!failure_) failure_ = error;
    } catch (const std::bad_alloc&) {
      // It must not pass the fetching thread, which still runs.
      if (!failure_) {
        failure_ = CommandError(ExitCode::kInternal,
                                "There is not enough memory to write a page. Scan at a lower resolution or close other "
                                "programs.");
      }
    }
  }

  double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

  void tell(const PageReport& page) {
    if (style_ == ProgressStyle::kText) std::fprintf(progress_, "%s\n", pageText(page).c_str());
    if (style_ == ProgressStyle::kJson) {
      auto event = pageJson(page);
      event["event"] = "page";
      std::fprintf(progress_, "%s\n", jsonText(event, -1).c_str());
    }
    std::fflush(progress_);
  }

  OutputSet output_;
  const int turnDegrees_;
  const ProgressStyle style_;
  std::FILE* progress_;  // Not owned.
  const Clock::time_point start_ = Clock::now();
  std::vector<PageReport> pages_;
  std::optional<CommandError> failure_;
};

void setEnd(ScanReport& report, ExitCode exit, const std::string& sentence, std::uint32_t result = 0) {
  report.exit = exit;
  report.sentence = sentence;
  report.result = result;
}

void setInterrupted(ScanReport& report, int signal) {
  const char* sentence = signal == SIGINT    ? "Interrupted."
                         : signal == SIGTERM ? "Terminated."
                                             : "The terminal is gone.";
  setEnd(report, static_cast<ExitCode>(128 + signal), sentence);
}

void judge(ScanReport& report, const FetchOutcome& outcome, const ScanWriter& writer, int pageLimit, int signal) {
  report.blankPages = outcome.blankPages;
  report.profileIsMissing = outcome.profileIsMissing;
  if (writer.failure()) report.lostPages = outcome.pages + outcome.droppedPages - static_cast<int>(report.pages.size());
  if (writer.failure()) return setEnd(report, writer.failure()->code(), writer.failure()->what());
  if (signal != 0) return setInterrupted(report, signal);
  if (pageLimit > 0 && outcome.pages >= pageLimit) return;
  switch (outcome.end) {
    case FetchOutcome::End::kFinished:
      if (outcome.pages > 0) return;
      return setEnd(report, ExitCode::kNoPages,
                    outcome.blankPages > 0 ? "All pages were blank."
                                           : "The scan ended without a page. Load paper and try again.");
    case FetchOutcome::End::kBadPage:
      return setEnd(report, ExitCode::kInternal, "The scanning library described a page that cannot be.");
    case FetchOutcome::End::kCancelled:
    case FetchOutcome::End::kFailed:
      break;
  }
  const ResultText text = describeResult(outcome.result, Phase::kScanning);
  setEnd(report, text.exit, text.sentence, outcome.result);
}

}  // namespace

ScanReport runScan(orvalle_scan_api::IScanCoreApi& core, const Capability& capability, const Options& options,
                   std::FILE* progress, void (*leave)(const ScanReport&, const Options&)) {
  const bool asksFeeder = options.wish.source == Source::kAuto && !options.wish.duplex;
  const auto settings = makeSettings(options.wish, capability, asksFeeder && core.IsAdfInserted());

  ScanReport report;
  report.device = options.device;
  const Interrupts interrupts;
  ScanWriter writer(options, progress);
  PageQueue queue(kQueuePages, kQueueBytes);
  PageFetcher fetcher(core, settings, queue, options.wish.pages);
  std::thread fetching([&] { fetcher.run(); });

  Page page;
  // Completes the files and ends the program, though the library may be deep in a call that waits for the device.
  const auto leaveAtOnce = [&] {
    const bool leavesPagesOut = queue.pop(page, std::chrono::milliseconds(0)) == PageQueue::Pop::kPage;
    writer.finish(report);
    if (writer.failure()) {
      setEnd(report, writer.failure()->code(), writer.failure()->what());
    } else {
      setInterrupted(report, interrupts.signal());
      if (leavesPagesOut) report.sentence += " Not all pages that had come could be written in time.";
    }
    leave(report, options);
    std::fflush(nullptr);
    std::_Exit(static_cast<int>(report.exit));
  };
  for (PageQueue::Pop got; (got = queue.pop(page, kWriterPoll)) != PageQueue::Pop::kClosed;) {
    if (interrupts.count() > 0) fetcher.requestAbort();
    if (got == PageQueue::Pop::kPage && !writer.write(page)) fetcher.requestDiscard();
    if (interrupts.count() > 1 || interrupts.age() >= kStopTime) leaveAtOnce();
  }
  fetching.join();
  // The library would still wait for the answer to its last command.
  if (interrupts.count() > 0 && fetcher.outcome().isGivenUp) leaveAtOnce();
  writer.finish(report);
  judge(report, fetcher.outcome(), writer, options.wish.pages, interrupts.signal());
  return report;
}

}  // namespace qsscan
