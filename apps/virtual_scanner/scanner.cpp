#include "scanner.h"

#include <unistd.h>

#include <array>

#include "device/dialogue.h"
#include "support/failure.h"

namespace vscan {
namespace {

constexpr int kDefaultPort = 9480;

void addFaces(const std::string& path, Log& log, std::vector<Face>& faces) {
  const auto file = openSheetFile(path);
  if (!file->hasResolution()) log.detail(path + " does not tell its resolution; taken as 300 dpi");
  for (int page = 0; page < file->pages(); ++page) faces.push_back({file, page});
}

ColorLines colorLinesNamed(const std::string& name) {
  return name == "bgr" ? ColorLines::Bgr : name == "planes" ? ColorLines::Planes : ColorLines::Rgb;
}

Device makeDevice(const ScannerOptions& options, Log& log) {
  Profile profile = loadProfile(findProfile(options.profile));
  for (const std::string& assignment : options.overrides) overrideProfile(profile, assignment);
  std::vector<Face> stack;
  for (const auto& path : options.sheets) addFaces(path, log, stack);
  for (const auto& path : options.moreSheets) addFaces(path, log, stack);
  std::vector<Face> bed;
  if (!options.bed.empty()) addFaces(options.bed, log, bed);
  const Abilities can = profile.abilities();
  if (!stack.empty() && !can.hasFeeder) {
    throw Failure("profile " + profile.name + " has no feeder for sheets; use --bed");
  }
  if (!bed.empty() && !can.hasFlatbed) throw Failure("profile " + profile.name + " has no bed for a sheet");

  DeviceOptions device;
  device.page.rawLines = options.lines == "raw";
  device.page.skewDegrees = options.skewDegrees;
  device.page.colorLines = colorLinesNamed(options.colorLines);
  device.whiteLinesInMono = options.whiteLines != "none";
  device.whiteLinesInGrey = options.whiteLines == "all";
  for (const std::string& text : options.faults) {
    device.faults.push_back(parseFault(text, profile.generation()));
    checkFault(device.faults.back(), profile.generation());
  }
  device.drip = {options.dripBytes, std::chrono::milliseconds(options.dripMs)};
  device.pagesPerMinute = options.pagesPerMinute;
  return {std::move(profile), Feeder(std::move(stack), options.blankBacks, options.reloads),
          bed.empty() ? Face{} : bed.front(), std::move(device)};
}

std::vector<Listener> listen(const ScannerOptions& options, int number) {
  std::vector<std::string> addresses = options.listen;
  if (addresses.empty() && options.unixPath.empty()) {
    addresses.push_back("127.0.0.1:" + std::to_string(kDefaultPort + number));
  }
  std::vector<Listener> listeners;
  for (const std::string& address : addresses) listeners.push_back(Listener::onTcp(address));
  if (!options.unixPath.empty()) listeners.push_back(Listener::onUnix(options.unixPath));
  return listeners;
}

std::vector<Announcement> announcementsFor(const ScannerOptions& options, const Profile& profile,
                                           const std::vector<Listener>& listeners) {
  std::vector<Announcement> announcements;
  if (options.isHidden) return announcements;
  std::array<char, 256> host{};
  ::gethostname(host.data(), host.size() - 1);
  Announcement one;
  one.model = profile.capability.modelName();
  one.name = options.name.empty() ? one.model : options.name;
  one.id = options.id.empty() ? std::string(host.data()) + "/" + (options.name.empty() ? profile.name : options.name)
                              : options.id;
  one.place = options.place;
  for (const Listener& listener : listeners) {
    if (listener.port() == 0) continue;
    one.port = listener.port();
    one.onlyLoopback = listener.isLoopback();
    announcements.push_back(one);
  }
  return announcements;
}

}  // namespace

Scanner::Scanner(const ScannerOptions& options, int number, int stopFd)
    : log_(options.verbose, {}, options.name), device_(makeDevice(options, log_)) {
  if (!options.button.empty()) pressButton(device_.profile, *device_.panel, options.button);
  std::vector<Listener> listeners = listen(options, number);
  for (const Listener& listener : listeners) addresses_ += (addresses_.empty() ? "" : " and ") + listener.address();
  announcements_ = announcementsFor(options, device_.profile, listeners);
  server_ = std::make_unique<Server>(device_, std::move(listeners), log_, stopFd);
  if (!options.controlPath.empty()) {
    control_ =
        std::make_unique<Control>(device_.profile, *device_.panel, Listener::onUnix(options.controlPath), log_, stopFd);
  }
}

Scanner::~Scanner() {
  for (std::thread& thread : threads_) thread.join();
}

void Scanner::start() {
  threads_.emplace_back([this] { server_->run(); });
  if (control_) threads_.emplace_back([this] { control_->run(); });
}

}  // namespace vscan
