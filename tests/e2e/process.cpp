#include "process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace e2e {
namespace {

constexpr std::chrono::milliseconds kPoll{3};
constexpr std::chrono::milliseconds kLongestPoll{30};
constexpr int kCannotStart = 127;

int openForWriting(const std::string& path) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) throw std::runtime_error(path + " cannot be written");
  return fd;
}

[[noreturn]] void become(const std::vector<char*>& arguments, int out, int err, pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (::getppid() != parent) ::_exit(kCannotStart);
  // A shell's background job ignores SIGINT, and would hand that on.
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) std::signal(signal, SIG_DFL);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  const int in = ::open("/dev/null", O_RDONLY);
  if (in < 0 || ::dup2(in, 0) < 0 || ::dup2(out, 1) < 0 || ::dup2(err, 2) < 0) ::_exit(kCannotStart);
  ::execv(arguments[0], arguments.data());
  ::_exit(kCannotStart);
}

}  // namespace

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Process::Process(const std::vector<std::string>& arguments, const std::string& outPath, const std::string& errPath)
    : outPath_(outPath), errPath_(errPath) {
  std::vector<char*> raw;
  for (const std::string& argument : arguments) raw.push_back(const_cast<char*>(argument.c_str()));
  raw.push_back(nullptr);
  const int out = openForWriting(outPath);
  const int err = openForWriting(errPath);
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ == 0) become(raw, out, err, parent);
  ::close(out);
  ::close(err);
  if (pid_ < 0) throw std::runtime_error(arguments[0] + " cannot be started");
}

Process::~Process() { wait(std::chrono::milliseconds(0)); }

Process::Exit Process::wait(std::chrono::milliseconds limit) {
  const auto end = Clock::now() + limit;
  auto poll = kPoll;
  while (!reap(WNOHANG)) {
    if (Clock::now() >= end) {
      send(SIGKILL);
      reap(0);
      exit_.inTime = false;
      break;
    }
    std::this_thread::sleep_for(poll);
    poll = std::min(poll + kPoll, kLongestPoll);
  }
  return exit_;
}

bool Process::isRunning() { return !reap(WNOHANG); }

void Process::send(int signal) {
  if (pid_ > 0) ::kill(pid_, signal);
}

bool Process::waitForText(const std::string& path, const std::string& text, std::chrono::milliseconds limit) {
  const auto end = Clock::now() + limit;
  for (;;) {
    const bool running = isRunning();
    if (contentOf(path).find(text) != std::string::npos) return true;
    if (!running || Clock::now() >= end) return false;
    std::this_thread::sleep_for(kPoll);
  }
}

// The kernel's own figure for a child counts the moments before exec, when it still was a copy of this test.
void Process::notePeak() {
  std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) exit_.peakKib = std::max(exit_.peakKib, std::stol(line.substr(6)));
  }
}

bool Process::reap(int options) {
  if (pid_ < 0) return true;
  notePeak();
  int status = 0;
  pid_t done = 0;
  while ((done = ::waitpid(pid_, &status, options)) < 0 && errno == EINTR) {
  }
  if (done == 0) return false;
  pid_ = -1;
  exit_.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  exit_.seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  return true;
}

}  // namespace e2e
