// The pages between the fetching thread and the writer: a few of them, and no more bytes than a limit.
// Thread-safe: one thread pushes and closes, another pops.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <vector>

#include "page.h"

namespace qsscan {

class PageQueue {
 public:
  enum class Pop { kPage, kNothingYet, kClosed };

  PageQueue(std::size_t maxPages, std::size_t maxBytes) : maxPages_(maxPages), maxBytes_(maxBytes) {}

  // Takes the page over and says true once there is room; false, with the page untouched, when there was none in time.
  // An empty queue has room for any page.
  bool push(Page& page, std::chrono::milliseconds wait);

  // The oldest page, in the place of one that is done with. kClosed only when every page has been taken.
  Pop pop(Page& page, std::chrono::milliseconds wait);

  // The memory of the page that was done with last, for the next one to be pushed; often empty.
  std::vector<std::uint8_t> takeSpare();

  // No page will follow.
  void close();

 private:
  const std::size_t maxPages_;
  const std::size_t maxBytes_;
  std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  std::deque<Page> pages_;
  std::vector<std::uint8_t> spare_;
  std::size_t bytes_ = 0;
  bool closed_ = false;
};

}  // namespace qsscan
