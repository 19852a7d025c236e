// What the scanner tells its owner: notes and refusals always, every frame and answer with --verbose.
// Threads: any.
#pragma once
#include <cstdint>
#include <functional>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

namespace vscan {

class Log {
 public:
  using Sink = std::function<void(const std::string& line)>;

  // Writes to stderr when sink is empty. The name, if any, stands before each line.
  explicit Log(bool verbose, Sink sink = {}, std::string name = {});

  // What one host does, as a part of the whole log, which has to outlive it.
  Log(Log& whole, std::string name);

  void note(std::string_view line);    // always written
  void detail(std::string_view line);  // written with --verbose only
  bool verbose() const { return verbose_; }

 private:
  void write(std::string_view line);

  const bool verbose_;
  const Sink sink_;
  const std::string prefix_;
  std::mutex mutex_;
};

// "1B 51 0A 80"; after limitBytes an ellipsis and the number of bytes in all.
std::string hexBytes(std::span<const std::uint8_t> bytes, std::size_t limitBytes = 64);

}  // namespace vscan
