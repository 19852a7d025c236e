// Takes the pages of one scan from the library as soon as they are ready, ahead of the writer, so that a connection
// that is lost later loses as little as possible.
#pragma once

#include <atomic>
#include <memory>

#include "ScanCoreApi.h"
#include "page_queue.h"

namespace qsscan {

// How the scan ended.
struct FetchOutcome {
  enum class End {
    kFinished,   // every page came, or as many as were wanted
    kCancelled,  // asked for on this side or at the device
    kFailed,     // result tells why
    kBadPage,    // the library described a page that cannot be
  };
  End end = End::kFinished;
  orvalle_scan_api::QSRSLT result = 0;
  int pages = 0;                  // handed to the queue
  int droppedPages = 0;           // came after requestDiscard()
  int blankPages = 0;             // reported as blank by the device and left out
  bool profileIsMissing = false;  // a colour profile was asked for, and none came that can be used
  bool isGivenUp = false;         // the device left the wish for an end unanswered
};

class PageFetcher {
 public:
  // How often the state is asked for, and how long an abort may go unanswered before the scan is given up.
  static constexpr std::chrono::milliseconds kPollInterval{10};
  static constexpr std::chrono::milliseconds kAbortPatience{1500};

  // pageLimit 0 is no limit. Neither the library nor the queue is owned.
  PageFetcher(orvalle_scan_api::IScanCoreApi& core, const orvalle_scan_api::QS_SCANNER_PARAMETERS& settings,
              PageQueue& queue, int pageLimit)
      : core_(core), settings_(settings), queue_(queue), pageLimit_(pageLimit) {}

  // Starts the scan and sees it through to its end; then closes the queue. Runs on the fetching thread, which is the
  // library's calling thread until it returns.
  void run();

  // Asks for the end of the scan; pages that still come are kept. Any thread.
  void requestAbort() { abort_ = true; }

  // As requestAbort, but the pages that still come are dropped. Any thread.
  void requestDiscard() { discard_ = true; }

  // After run() has returned.
  const FetchOutcome& outcome() const { return outcome_; }

 private:
  void fetchPages();
  bool takePage();      // false when the scan has ended
  void fetchProfile();  // once, when the first page is there: the library gives the profile of its depth
  void queuePage(Page page);
  bool wantsEnd() const;
  void keepAborting();

  // Constant after construction.
  orvalle_scan_api::IScanCoreApi& core_;
  orvalle_scan_api::QS_SCANNER_PARAMETERS settings_;
  PageQueue& queue_;
  const int pageLimit_;
  // Set by other threads.
  std::atomic<bool> abort_{false};
  std::atomic<bool> discard_{false};
  // Fetching thread only, until run() has returned.
  FetchOutcome outcome_;
  bool profileIsFetched_ = false;
  std::shared_ptr<const IccProfile> profile_;
};

}  // namespace qsscan
