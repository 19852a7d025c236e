// The handle of the module that code lies in.
// Threads: reentrant.
#pragma once

namespace orvalle_scan_api {

class CDynLib_base {
 public:
  CDynLib_base() = default;
  explicit CDynLib_base(void* module) : m_hModule(module) {}
  virtual ~CDynLib_base() = default;

  // Not owned; null when none was given.
  void* GetMyModuleHandle() const { return m_hModule; }

 private:
  void* m_hModule = nullptr;
};

}  // namespace orvalle_scan_api
