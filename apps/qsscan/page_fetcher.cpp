#include "page_fetcher.h"

#include <new>
#include <thread>
#include <utility>

namespace qsscan {
namespace {

using namespace orvalle_scan_api;
using Clock = std::chrono::steady_clock;

// A running scan is never "ready"; one that stays so has gone without a word.
constexpr std::chrono::milliseconds kReadyPatience{2000};

}  // namespace

bool PageFetcher::wantsEnd() const { return abort_ || discard_ || (pageLimit_ > 0 && outcome_.pages >= pageLimit_); }

void PageFetcher::keepAborting() {
  if (wantsEnd()) core_.AbortScanning();
}

void PageFetcher::run() {
  outcome_.result = core_.StartScanning(&settings_);
  if (outcome_.result != QSRSLT_SUCCESS) outcome_.end = FetchOutcome::End::kFailed;
  try {
    if (outcome_.result == QSRSLT_SUCCESS) fetchPages();
  } catch (const std::bad_alloc&) {
    outcome_.end = FetchOutcome::End::kFailed;
    outcome_.result = QSRSLT_NO_PAGE_MEMORY;
  }
  queue_.close();
}

void PageFetcher::fetchPages() {
  Clock::time_point lastSign = Clock::now();  // the last page, or the moment at which the end was asked for
  Clock::time_point lastBusy = lastSign;
  bool ending = false;
  for (;;) {
    if (!ending && wantsEnd()) {
      ending = true;
      lastSign = Clock::now();
    }
    keepAborting();
    const SCANAPISTATUS status = core_.GetScanStatus();
    const Clock::time_point now = Clock::now();
    if (status != READY) lastBusy = now;
    switch (status) {
      case XFERREADY:
        if (!takePage()) return;
        lastSign = Clock::now();
        continue;
      case ALLEND:
        return;
      case XFERCANCELED:
        outcome_.end = FetchOutcome::End::kCancelled;
        outcome_.result = QSRSLT_CANCELED;
        return;
      case READY:
        if (now - lastBusy < kReadyPatience) break;
        outcome_.end = FetchOutcome::End::kFailed;
        outcome_.result = QSRSLT_WRONG_STATE;
        return;
      case RECEIVING:
        if (ending && now - lastSign >= kAbortPatience) {
          outcome_.isGivenUp = true;
          outcome_.end = FetchOutcome::End::kCancelled;
          outcome_.result = QSRSLT_CANCELED;
          return;
        }
        break;
    }
    std::this_thread::sleep_for(kPollInterval);
  }
}

bool PageFetcher::takePage() {
  tagQS_SCAN_IMAGEDATA image{};
  int pageNo = 0;
  const QSRSLT result = core_.ReadImageData(&image, &pageNo);
  if (result == QSRSLT_CANCELED) {
    outcome_.end = FetchOutcome::End::kCancelled;
    outcome_.result = result;
    return false;
  }
  if (result == QSRSLT_WRONG_STATE) return false;  // the pages ended while this one was asked for
  if (result != QSRSLT_SUCCESS) {
    outcome_.end = FetchOutcome::End::kFailed;
    outcome_.result = result;
    return false;
  }

  if (image.isBlankPage) {
    ++outcome_.blankPages;
    core_.FreeImageData(pageNo);
    return true;
  }
  std::optional<Page> page = copyPage(image, pageNo, static_cast<int>(settings_.resolution.x), queue_.takeSpare());
  core_.FreeImageData(pageNo);
  if (!page) {
    outcome_.end = FetchOutcome::End::kBadPage;
    return false;
  }
  if (settings_.wantColorProfile != 0 && !profileIsFetched_) fetchProfile();
  page->profile = profile_;
  queuePage(std::move(*page));
  return true;
}

void PageFetcher::fetchProfile() {
  profileIsFetched_ = true;
  void* data = nullptr;
  int size = 0;
  if (core_.GetIccProfile(&data, &size) == QSRSLT_SUCCESS && data != nullptr && size > 0) {
    auto profile = readIccProfile({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)});
    if (profile) profile_ = std::make_shared<const IccProfile>(std::move(*profile));
  }
  outcome_.profileIsMissing = profile_ == nullptr;
}

void PageFetcher::queuePage(Page page) {
  if (pageLimit_ > 0 && outcome_.pages >= pageLimit_) return;
  while (!discard_) {
    if (queue_.push(page, kPollInterval)) {
      ++outcome_.pages;
      return;
    }
    keepAborting();
  }
  ++outcome_.droppedPages;
}

}  // namespace qsscan
