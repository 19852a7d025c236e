#include "tests/fakes/log_capture.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "foundation/OutputLog.h"

namespace {

LogCapture* current = nullptr;

}  // namespace

LogCapture::LogCapture() { current = this; }
LogCapture::~LogCapture() { current = nullptr; }

bool LogCapture::has(int level, const std::string& text) const {
  return std::find(lines.begin(), lines.end(), LogLine{level, text}) != lines.end();
}

bool LogCapture::says(const std::string& text) const {
  return std::any_of(lines.begin(), lines.end(), [&](const LogLine& line) { return line.text == text; });
}

std::string LogCapture::all() const {
  std::string text;
  for (const LogLine& line : lines) text += std::to_string(line.level) + " " + line.text + "\n";
  return text;
}

// The linker leads every call of COutputLog::WriteLog here.
extern "C" __attribute__((format(printf, 3, 4))) void __wrap__ZN10COutputLog8WriteLogEiPKcz(COutputLog* log, int level,
                                                                                            const char* format, ...) {
  char message[8192];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(message, sizeof message, format, arguments);
  va_end(arguments);
  if (current != nullptr && log == &g_ScanDevApiLog) current->lines.push_back({level, message});
}
