#include "measured_run.h"

#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>

#include "figures.h"

namespace qsscan_bench {
namespace {

constexpr std::chrono::milliseconds kPoll{5};

double threadSeconds(pid_t pid, pid_t thread) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/task/" + std::to_string(thread) + "/schedstat");
  double nanoseconds = 0;
  file >> nanoseconds;
  return nanoseconds / 1e9;
}

// The first thread that qsscan starts is the one that fetches. Nothing once it is gone.
std::optional<pid_t> fetchingThread(pid_t pid) {
  std::set<pid_t> others;
  std::error_code gone;
  std::filesystem::directory_iterator at("/proc/" + std::to_string(pid) + "/task", gone);
  for (const std::filesystem::directory_iterator end; !gone && at != end; at.increment(gone)) {
    const pid_t thread = std::atoi(at->path().filename().c_str());
    if (thread != pid) others.insert(thread);
  }
  if (others.empty()) return std::nullopt;
  return *others.begin();
}

bool hasEnded(pid_t pid) {
  siginfo_t info{};
  return ::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == pid;
}

std::map<std::string, double> modulesIn(const std::string& path) {
  std::map<std::string, double> modules;
  std::ifstream file(path);
  std::string name;
  for (double nanoseconds = 0; file >> name >> nanoseconds;) modules[name] += nanoseconds / 1e9;
  return modules;
}

}  // namespace

double processSeconds(pid_t pid) {
  clockid_t clock{};
  std::timespec now{};
  if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &now) != 0) return 0;
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

Cost measure(const Arguments& arguments, const std::string& folder, pid_t scanner) {
  const std::string modules = folder + "/modules.txt";
  std::filesystem::remove(modules);
  ::setenv("QS_TIMED_MODULES", modules.c_str(), 1);
  const double deviceBefore = processSeconds(scanner);
  const auto start = std::chrono::steady_clock::now();
  e2e::Process run(arguments, folder + "/qsscan.out", folder + "/qsscan.err");

  Cost cost;
  std::optional<pid_t> fetcher;
  while (!hasEnded(run.pid())) {
    // Later threads have larger numbers; once the first is over, the smallest one is another.
    if (!fetcher) fetcher = fetchingThread(run.pid());
    if (fetcher) cost.fetching = std::max(cost.fetching, threadSeconds(run.pid(), *fetcher));
    const e2e::Figures figures = e2e::figuresOf(run.pid());
    cost.peakMib = std::max(cost.peakMib, static_cast<double>(figures.peakKib) / 1024);
    std::this_thread::sleep_for(kPoll);
  }
  cost.wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  // It has ended and is not yet collected: its clocks can still be read.
  cost.whole = processSeconds(run.pid());
  cost.writing = threadSeconds(run.pid(), run.pid());
  cost.device = processSeconds(scanner) - deviceBefore;
  const auto exit = run.wait(std::chrono::seconds(1));
  if (exit.code != 0) throw std::runtime_error("qsscan failed: " + e2e::contentOf(run.errPath()));
  cost.modules = modulesIn(modules);
  return cost;
}

}  // namespace qsscan_bench
