#include "interrupts.h"

#include <atomic>

namespace qsscan {
namespace {

using Clock = std::chrono::steady_clock;

std::atomic<int> requests{0};
std::atomic<int> firstSignal{0};
std::atomic<Clock::rep> firstTime{0};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<Clock::rep>::is_always_lock_free,
              "a signal handler sets them");

void countRequest(int signal) {
  int none = 0;
  if (firstSignal.compare_exchange_strong(none, signal)) firstTime = Clock::now().time_since_epoch().count();
  requests.fetch_add(1);
}

}  // namespace

Interrupts::Interrupts() {
  requests = 0;
  firstSignal = 0;
  struct sigaction action {};
  action.sa_handler = countRequest;
  action.sa_flags = SA_RESTART;
  for (int i = 0; i < 3; ++i) {
    ::sigaction(kSignals[i], nullptr, &before_[i]);
    // What the caller had ignored, as nohup does, stays ignored.
    if (before_[i].sa_handler != SIG_IGN) ::sigaction(kSignals[i], &action, nullptr);
  }
}

Interrupts::~Interrupts() {
  for (int i = 0; i < 3; ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
}

int Interrupts::count() const { return requests; }

int Interrupts::signal() const { return firstSignal; }

Clock::duration Interrupts::age() const {
  return requests == 0 ? Clock::duration{0} : Clock::now().time_since_epoch() - Clock::duration(firstTime);
}

}  // namespace qsscan
