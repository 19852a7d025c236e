#include "device/turn.h"

namespace vscan {

bool Turn::isFreeFor(Host host) const {
  return host_ == nullptr || host_ == host || (!isBusy_ && Clock::now() - lastUse_ >= lapse_);
}

bool Turn::take(Host host, bool keeps) {
  std::unique_lock lock(mutex_);
  if (!isLeft_.wait_for(lock, patience_, [&] { return isFreeFor(host); })) return false;
  isKept_ = keeps || (isKept_ && host_ == host);
  host_ = host;
  isBusy_ = true;
  return true;
}

void Turn::finish(Host host) {
  const std::lock_guard lock(mutex_);
  if (host_ != host) return;
  isBusy_ = false;
  lastUse_ = Clock::now();
  if (!isKept_) release();
}

void Turn::leave(Host host) {
  const std::lock_guard lock(mutex_);
  if (host_ == host) release();
}

void Turn::release() {
  host_ = nullptr;
  isBusy_ = false;
  isKept_ = false;
  isLeft_.notify_all();
}

}  // namespace vscan
