#include "device/control.h"

#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "support/failure.h"

namespace vscan {
namespace {

constexpr std::size_t kMaxLineBytes = 4096;
constexpr int kPatienceMs = 5000;

// Waits until the descriptor can be read. False when the time is up or the scanner is to stop.
bool waitReadable(int fd, int stopFd, int waitMs) {
  pollfd watched[2] = {{fd, POLLIN, 0}, {stopFd, POLLIN, 0}};
  for (;;) {
    const int count = ::poll(watched, 2, waitMs);
    if (count < 0 && errno == EINTR) continue;
    return count > 0 && watched[1].revents == 0;
  }
}

// A line without its line feed; false at the end of the connection, when it is too long or the time is up.
bool readLine(int fd, int stopFd, std::string& pending, std::string& line) {
  for (;;) {
    if (const auto end = pending.find('\n'); end != std::string::npos) {
      line = pending.substr(0, end);
      pending.erase(0, end + 1);
      return true;
    }
    if (pending.size() > kMaxLineBytes || !waitReadable(fd, stopFd, kPatienceMs)) return false;
    std::array<char, 512> bytes;
    const auto count = ::recv(fd, bytes.data(), bytes.size(), 0);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (count <= 0) return false;
    pending.append(bytes.data(), static_cast<std::size_t>(count));
  }
}

// Lines are far smaller than the buffer of a socket: what does not go out at once was not wanted.
bool writeLine(int fd, const std::string& line) {
  const std::string text = line + "\n";
  return ::send(fd, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

}  // namespace

void pressButton(const Profile& profile, Panel& panel, const std::string& text) {
  if (text == "none") {
    panel.release();
    return;
  }
  const PanelSettings settings = parsePanelSettings(text);
  // The first generation always has all four buttons.
  if (profile.generation() == Generation::Second) {
    const int bit = static_cast<int>(settings.event) - 1;
    if ((profile.capability.at("pushScanEvent") >> bit & 1) == 0) {
      throw Failure("pushScanEvent of profile " + profile.name + " does not offer this button");
    }
  }
  panel.press(settings);
}

Control::Control(const Profile& profile, Panel& panel, Listener listener, Log& log, int stopFd)
    : profile_(profile), panel_(panel), listener_(std::move(listener)), log_(log), stopFd_(stopFd) {}

void Control::run() {
  while (waitReadable(listener_.fd(), stopFd_, -1)) {
    if (UniqueFd owner = listener_.accept()) serve(std::move(owner));
  }
}

void Control::serve(UniqueFd owner) {
  std::string pending;
  std::string line;
  while (readLine(owner.get(), stopFd_, pending, line)) {
    if (!writeLine(owner.get(), carryOut(line))) return;
  }
}

std::string Control::carryOut(const std::string& line) {
  constexpr std::string_view kButton = "button ";
  try {
    if (!line.starts_with(kButton)) throw Failure("there is no command \"" + line + "\"; there is: button");
    pressButton(profile_, panel_, line.substr(kButton.size()));
    log_.detail("the owner says: " + line);
    return "ok";
  } catch (const Failure& failure) {
    return std::string("error: ") + failure.what();
  }
}

std::string tellScanner(const std::string& socketPath, const std::string& line) {
  const UniqueFd scanner = connectUnix(socketPath);
  std::string pending;
  std::string answer;
  if (!writeLine(scanner.get(), line) || !readLine(scanner.get(), -1, pending, answer)) {
    throw Failure("the scanner behind " + socketPath + " does not answer");
  }
  return answer;
}

}  // namespace vscan
