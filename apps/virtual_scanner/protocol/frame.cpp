#include "protocol/frame.h"

#include <algorithm>

namespace vscan {
namespace {

constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kLineFeed = 0x0A;
constexpr std::uint8_t kEnd = 0x80;

bool isName(const std::string& text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

// The first 0x80 that is not part of a character of several bytes, as a user's name may hold them.
Bytes::const_iterator findEnd(const Bytes& bytes) {
  auto end = std::find(bytes.begin(), bytes.end(), kEnd);
  while (end != bytes.begin() && end != bytes.end() && *(end - 1) >= kEnd) end = std::find(end + 1, bytes.end(), kEnd);
  return end;
}

}  // namespace

Command parseFrame(Bytes bytes) {
  auto bad = [&](const char* sentence) { return BadFrame{std::move(bytes), sentence}; };
  if (bytes.size() < 2 || bytes.front() != kEscape) return bad("a command begins with the byte 1B");
  if (bytes.back() != kEnd) return bad("a command ends with the byte 80");

  Frame frame;
  auto position = bytes.begin() + 1;
  const auto end = bytes.end() - 1;
  for (bool first = true; first || position != end; first = false) {
    const auto lineEnd = std::find(position, end, kLineFeed);
    if (lineEnd == end) return bad("each line of a command ends with the byte 0A");
    const std::string text(position, lineEnd);
    position = lineEnd + 1;
    if (first) {
      if (!isName(text)) return bad("the name of a command is made of capital letters and digits");
      frame.mnemonic = text;
      continue;
    }
    const auto equals = text.find('=');
    if (!isName(text.substr(0, equals))) return bad("each line reads KEY=VALUE or is one word");
    if (equals == std::string::npos) {
      frame.lines.push_back({"", text});
    } else {
      frame.lines.push_back({text.substr(0, equals), text.substr(equals + 1)});
    }
  }
  frame.bytes = std::move(bytes);
  return frame;
}

void FrameReader::feed(std::span<const std::uint8_t> bytes) {
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
}

Bytes FrameReader::takeFront(std::size_t count) {
  const auto cut = pending_.begin() + static_cast<std::ptrdiff_t>(count);
  Bytes front(pending_.begin(), cut);
  pending_.erase(pending_.begin(), cut);
  return front;
}

std::optional<Command> FrameReader::next() {
  if (pending_.empty()) return std::nullopt;
  const auto end = findEnd(pending_);
  const auto wholeBytes = static_cast<std::size_t>(end - pending_.cbegin()) + 1;
  if (end != pending_.end() && wholeBytes <= kMaxFrameBytes) return parseFrame(takeFront(wholeBytes));
  if (pending_.front() != kEscape) {
    return BadFrame{takeFront(std::min(wholeBytes, pending_.size())), "a command begins with the byte 1B"};
  }
  if (std::min(wholeBytes, pending_.size()) > kMaxFrameBytes) {
    return BadFrame{takeFront(std::min(wholeBytes, pending_.size())), "no command is as long as this"};
  }
  return std::nullopt;
}

}  // namespace vscan
