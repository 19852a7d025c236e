// One host's connection: commands come out whole, bytes go in as fast as the host and the options allow. While bytes
// go out, what comes in is collected, so that an abort is heard in the middle of a page.
// Threads: one. The stop descriptor may be made readable by any thread and ends every wait.
#pragma once
#include <chrono>
#include <cstddef>
#include <optional>
#include <span>

#include "net/unique_fd.h"
#include "protocol/frame.h"

namespace vscan {

// How bytes are handed to the line.
struct Drip {
  std::size_t chunkBytes = 0;          // 0 = as they come
  std::chrono::milliseconds pause{0};  // after each chunk
};

class Connection {
 public:
  using Clock = std::chrono::steady_clock;

  // The socket has to be non-blocking. stopFd: not owned, -1 for none.
  Connection(UniqueFd socket, int stopFd, Drip drip);

  // Waits for the next command; nothing once the host is gone or the scanner is to stop.
  std::optional<Command> waitForCommand();

  // The next command that has already come, without waiting.
  std::optional<Command> takeCommand() { return reader_.next(); }

  // Sends everything. False when the host is gone or the scanner is to stop.
  bool send(std::span<const std::uint8_t> bytes);

  // Waits, collecting what comes in, until then or until a command is there. False as with send.
  bool idleUntil(Clock::time_point time);

  // Collects what has come in, without waiting. False as with send.
  bool collect();

  // Waits that long, collecting what comes in. False as with send.
  bool pause(std::chrono::milliseconds time);

  // How what is sent from now on is handed to the line.
  void setDrip(Drip drip) { drip_ = drip; }

  // Sends nothing and throws away what comes, until the host is gone or the scanner is to stop.
  void playDead();

  void close();  // what was sent still arrives
  void reset();  // the host sees a broken connection behind what was sent

  bool isOpen() const { return static_cast<bool>(socket_); }

 private:
  void waitUntilTaken();

  // Waits until one of the poll events, the time or input that was read. False when the connection is over.
  bool waitFor(short events, std::optional<Clock::time_point> until, short& happened);
  bool readInput();
  bool sendChunk(std::span<const std::uint8_t> bytes);

  UniqueFd socket_;
  const int stopFd_;
  Drip drip_;
  FrameReader reader_;
};

}  // namespace vscan
