// One joinable thread with a stop flag.
//
// Not started -> Start -> running -> ThreadProc returns -> finished but joinable -> End -> not started.
// Threads: Start, End and IsStarted belong to the owner; ThreadProc polls m_end.
#pragma once

#include <atomic>
#include <thread>

namespace orvalle_scan_api {

class CThread_Base {
 public:
  CThread_Base() = default;
  CThread_Base(const CThread_Base&) = delete;
  CThread_Base& operator=(const CThread_Base&) = delete;

  // True while the thread object is joinable: also after ThreadProc returned, until End joined it.
  virtual bool IsStarted();
  // Sets the stop flag and joins. The object can be started again. Harmless when not started.
  virtual void End();
  // Sets the stop flag and detaches: the object must outlive the thread. No code of the library calls it.
  virtual void ForceEnd();

 protected:
  // A class that runs a thread calls End() in its own destructor: here its ThreadProc is gone already.
  ~CThread_Base();

  virtual void ThreadProc() = 0;

  // Clears the stop flag, makes the thread and returns whether it is joinable. The caller joins an earlier one first.
  // Throws std::system_error "thread constructor failed".
  bool Start();

  static void ThreadProcEntry(void* self);

  std::thread m_thread;
  std::atomic<bool> m_end{false};
};

}  // namespace orvalle_scan_api
