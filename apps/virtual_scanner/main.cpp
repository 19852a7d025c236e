// qs-virtual-scanner: scanners made of files.
#include <poll.h>
#include <sys/signalfd.h>

#include <csignal>
#include <cstdio>
#include <iostream>
#include <optional>

#include "scanner.h"
#include "support/failure.h"

namespace {

using namespace vscan;

constexpr int kExitBadRequest = 2;

// Makes SIGINT and SIGTERM readable instead of deadly, before any thread is started.
UniqueFd stopOnSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);  // who reads our messages may go before we do
  UniqueFd fd(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!fd) throw Failure("cannot listen to signals");
  return fd;
}

void beScanners(const std::vector<ScannerOptions>& all) {
  const UniqueFd stop = stopOnSignals();
  std::vector<std::unique_ptr<Scanner>> scanners;
  for (const ScannerOptions& options : all) {
    try {
      scanners.push_back(std::make_unique<Scanner>(options, static_cast<int>(scanners.size()), stop.get()));
    } catch (const Failure& failure) {
      throw Failure((options.name.empty() ? "" : "scanner " + options.name + ": ") + failure.what());
    }
  }
  std::vector<Announcement> announcements;
  bool isVerbose = false;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const auto& own = scanners[i]->announcements();
    announcements.insert(announcements.end(), own.begin(), own.end());
    isVerbose = isVerbose || all[i].verbose;
    scanners[i]->start();
    std::cout << "listening on " << scanners[i]->addresses() << (all[i].name.empty() ? "" : " as " + all[i].name)
              << std::endl;
  }
  Log log(isVerbose);
  std::optional<Announcer> announcer;
  if (!announcements.empty()) announcer.emplace(std::move(announcements), log);
  pollfd watched{stop.get(), POLLIN, 0};
  while (::poll(&watched, 1, -1) <= 0) {
  }
}

int tell(const std::string& path, const std::string& line) {
  const std::string answer = tellScanner(path, line);
  std::cout << answer << std::endl;
  return answer == "ok" ? 0 : kExitBadRequest;
}

}  // namespace

int main(int argc, char** argv) {
  const auto read = readOptions(argc, argv);
  if (const int* exitCode = std::get_if<int>(&read)) return *exitCode;
  const auto& options = std::get<ProgramOptions>(read);
  try {
    if (!options.tellPath.empty()) return tell(options.tellPath, options.tellLine);
    beScanners(options.scanners);
  } catch (const Failure& failure) {
    Log(false).note(failure.what());
    return kExitBadRequest;
  }
  return 0;
}
