#include "reception/Thread.h"

#include <new>
#include <system_error>

namespace orvalle_scan_api {
namespace {

constexpr char kThreadFailed[] = "thread constructor failed";

}  // namespace

CThread_Base::~CThread_Base() { CThread_Base::End(); }

bool CThread_Base::Start() {
  m_end.store(false);
  try {
    m_thread = std::thread(&CThread_Base::ThreadProcEntry, this);
  } catch (const std::system_error& error) {
    throw std::system_error(error.code(), kThreadFailed);
  } catch (const std::bad_alloc&) {
    throw std::system_error(std::make_error_code(std::errc::not_enough_memory), kThreadFailed);
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
