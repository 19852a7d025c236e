#include "support/log.h"

#include <cstdio>

namespace vscan {

Log::Log(bool verbose, Sink sink, std::string name)
    : verbose_(verbose), sink_(std::move(sink)), prefix_(name.empty() ? "" : name + ": ") {}

Log::Log(Log& whole, std::string name)
    : Log(
          whole.verbose_, [&whole](const std::string& line) { whole.write(line); }, std::move(name)) {}

void Log::note(std::string_view line) { write(line); }

void Log::detail(std::string_view line) {
  if (verbose_) write(line);
}

void Log::write(std::string_view line) {
  const std::lock_guard lock(mutex_);
  if (sink_) {
    sink_(prefix_ + std::string(line));
    return;
  }
  std::fprintf(stderr, "qs-virtual-scanner: %s%.*s\n", prefix_.c_str(), static_cast<int>(line.size()), line.data());
}

std::string hexBytes(std::span<const std::uint8_t> bytes, std::size_t limitBytes) {
  std::string text;
  char digits[4];
  for (std::size_t i = 0; i < bytes.size() && i < limitBytes; ++i) {
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(bytes[i]));
    if (i != 0) text += ' ';
    text += digits;
  }
  if (bytes.size() > limitBytes) text += " ... (" + std::to_string(bytes.size()) + " bytes)";
  return text;
}

}  // namespace vscan
