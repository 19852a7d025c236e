// Cuts the bytes of a connection into command frames:
//   0x1B, mnemonic, 0x0A, any number of lines each ended by 0x0A, 0x80.
// A line reads KEY=VALUE; two commands of the first generation have a line that is one word.
// A frame has neither length nor checksum; 0x80 ends it, where it is not part of a character in a user's name.
// What is no frame comes out as a BadFrame, up to and with its 0x80, so that the next command is found again.
// Threads: one.
#pragma once
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "support/little_endian.h"

namespace vscan {

struct FrameLine {
  std::string key;  // empty: the line is one word, the value
  std::string value;
};

struct Frame {
  std::string mnemonic;
  std::vector<FrameLine> lines;
  Bytes bytes;  // as received
};

struct BadFrame {
  Bytes bytes;
  std::string sentence;  // what is wrong with them
};

using Command = std::variant<Frame, BadFrame>;

// Takes a whole frame apart, from 0x1B to 0x80.
Command parseFrame(Bytes bytes);

class FrameReader {
 public:
  // The longest frame a host can have reason to send is well below this.
  static constexpr std::size_t kMaxFrameBytes = 4096;

  void feed(std::span<const std::uint8_t> bytes);

  // The next command, or nothing while its end has not come.
  std::optional<Command> next();

  std::size_t pendingBytes() const { return pending_.size(); }

 private:
  Bytes takeFront(std::size_t count);

  Bytes pending_;
};

}  // namespace vscan
