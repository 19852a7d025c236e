// A pair of mutexes, one for writers and one for readers. Despite the name it is no reader-writer lock: the two are
// independent, and each caller chooses one.
#pragma once

#include <mutex>

namespace orvalle_scan_api {

class CWriteReadMutex_Base {
 public:
  void LockWriteMutex() { writeMutex_.lock(); }
  void UnlockWriteMutex() { writeMutex_.unlock(); }
  void LockReadMutex() { readMutex_.lock(); }
  void UnlockReadMutex() { readMutex_.unlock(); }

  // Holds the write half for a scope.
  class WriteGuard {
   public:
    explicit WriteGuard(CWriteReadMutex_Base& mutex) : mutex_(mutex) { mutex_.LockWriteMutex(); }
    ~WriteGuard() { mutex_.UnlockWriteMutex(); }
    WriteGuard(const WriteGuard&) = delete;
    WriteGuard& operator=(const WriteGuard&) = delete;

   private:
    CWriteReadMutex_Base& mutex_;
  };

 private:
  std::mutex writeMutex_;
  std::mutex readMutex_;
};

}  // namespace orvalle_scan_api
