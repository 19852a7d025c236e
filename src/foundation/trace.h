// Entry and exit lines of an operation, from one object at the top of the function, so that the returns stay clean.
//
//   QSRSLT CScanProc::StartScan(...) {
//     Trace trace("StartScan");                       >>>>> StartScan >>>>>
//     if (!ready) return trace.ret(QSRSLT_...);       <<<<< StartScan <<<<< ret = 0x10100001
//
// The log formats, and does so only where the level is written: a trace that is off costs two calls.
// Threads: an object belongs to one function call.
#pragma once

#include <cstdint>

#include "foundation/OutputLog.h"

namespace orvalle_scan_api {

// The log prints addresses with %X: what fits an unsigned.
inline unsigned logAddress(const void* pointer) {
  return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pointer));
}

class Trace {
 public:
  // Logs ">>>>> operation >>>>>" at the level.
  explicit Trace(const char* operation, int level = 1) : Trace(NoEntryLine{}, operation, level) {
    g_ScanDevApiLog.WriteLog(level_, ">>>>> %s >>>>>", operation_);
  }
  struct NoEntryLine {};
  // For an operation whose entry line carries arguments and is written by the caller.
  Trace(NoEntryLine, const char* operation, int level = 1) : operation_(operation), level_(level) {}
  ~Trace();
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  // Each notes what the exit line says and passes the value through.
  template <class T>
  T ret(T value) {
    return note("<<<<< %s <<<<< ret = 0x%X", value);
  }
  template <class T>
  T retDecimal(T value) {
    return note("<<<<< %s <<<<< ret = %d", value);
  }
  template <class T>
  T result(T value) {
    return note("<<<<< %s <<<<< result = %d", value);
  }
  template <class T>
  T qsrslt(T value) {
    return note("<<<<< %s <<<<< qsrslt = 0x%X", value);
  }
  template <class T>
  T success(T value) {
    return note("<<<<< %s <<<<< success = %d", value);
  }
  template <class T>
  T instance(T pointer) {
    exitFormat_ = "<<<<< %s <<<<< Instance = 0x%X";
    exitValue_ = logAddress(pointer);
    return pointer;
  }

 private:
  template <class T>
  T note(const char* format, T value) {
    exitFormat_ = format;
    exitValue_ = static_cast<unsigned>(value);
    return value;
  }

  const char* operation_;
  int level_;
  const char* exitFormat_ = nullptr;
  unsigned exitValue_ = 0;
};

}  // namespace orvalle_scan_api
