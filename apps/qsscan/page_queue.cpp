#include "page_queue.h"

#include <utility>

namespace qsscan {

bool PageQueue::push(Page& page, std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  const std::size_t size = page.pixels.size();
  const auto hasRoom = [&] { return pages_.empty() || (pages_.size() < maxPages_ && bytes_ + size <= maxBytes_); };
  if (!changed_.wait_for(lock, wait, hasRoom)) return false;
  pages_.push_back(std::move(page));
  bytes_ += size;
  changed_.notify_all();
  return true;
}

PageQueue::Pop PageQueue::pop(Page& page, std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  if (!changed_.wait_for(lock, wait, [&] { return !pages_.empty() || closed_; })) return Pop::kNothingYet;
  if (pages_.empty()) return Pop::kClosed;
  spare_ = std::move(page.pixels);
  page = std::move(pages_.front());
  pages_.pop_front();
  bytes_ -= page.pixels.size();
  changed_.notify_all();
  return Pop::kPage;
}

std::vector<std::uint8_t> PageQueue::takeSpare() {
  const std::lock_guard lock(mutex_);
  return std::exchange(spare_, {});
}

void PageQueue::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

}  // namespace qsscan
