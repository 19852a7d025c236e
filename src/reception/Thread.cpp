#include "reception/Thread.h"

#include <system_error>

namespace orvalle_scan_api {

CThread_Base::~CThread_Base() { CThread_Base::End(); }

bool CThread_Base::Start() {
  m_end.store(false);
  try {
    m_thread = std::thread(&CThread_Base::ThreadProcEntry, this);
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), "thread constructor failed");
  }
  return m_thread.joinable();
}

bool CThread_Base::IsStarted() { return m_thread.joinable(); }

void CThread_Base::End() {
  m_end.store(true);
  if (m_thread.joinable()) m_thread.join();
}

void CThread_Base::ForceEnd() {
  m_end.store(true);
  if (m_thread.joinable()) m_thread.detach();
}

void CThread_Base::ThreadProcEntry(void* self) {
  if (self != nullptr) static_cast<CThread_Base*>(self)->ThreadProc();
}

}  // namespace orvalle_scan_api
