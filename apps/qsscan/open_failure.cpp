#include "open_failure.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "device_name.h"
#include "modules/DeviceAccess.h"
#include "results.h"

namespace qsscan {
namespace {

using orvalle_scan_api::IDeviceAccess;

constexpr char kModule[] = "QsDeviceAccs.so";
constexpr char kClientId[] = "com.orvalle.twainds";  // as the library calls itself to the module

constexpr std::uint32_t kConnectFailed = 0x40500003;   // the detail is an error number of the system
constexpr std::uint32_t kSeveralDevices = 0x4050000E;  // the detail counts them
constexpr std::uint32_t kAnyDetail = ~std::uint32_t{0};

struct Row {
  std::uint32_t result, detail;
  ExitCode exit;
  const char* whatHappened;
  const char* whatToDo;
};

// The first row that fits counts.
constexpr Row kRows[] = {
    {0x40500001, kAnyDetail, ExitCode::kUsage, "The device name is not understood.",
     "Write HOST, HOST:PORT, [IPV6]:PORT, unix:PATH or usb:VVVV:PPPP[:SERIAL]."},
    {0x40500002, kAnyDetail, ExitCode::kNotReachable, "The device cannot be reached: its host name is unknown.",
     "Check the name; one that ends in .local needs mDNS on this computer. The address works too."},
    {kConnectFailed, ENOENT, ExitCode::kNotReachable, "The device cannot be reached: there is no such socket.",
     "Check the path, and that the program that serves it runs."},
    {kConnectFailed, EACCES, ExitCode::kNotReachable, "The device cannot be reached: you may not use this socket.",
     "Ask whoever set it up for permission."},
    {0x40500004, kAnyDetail, ExitCode::kNotReachable, "The device cannot be reached: it did not answer in time.",
     "Check that it is switched on, that its address is right, and that no firewall is in the way."},
    {0x40500005, kAnyDetail, ExitCode::kNotReachable, "The device cannot be reached: nobody listens there.",
     "Check the port, and that scanning over the network is switched on at the device."},
    {0x4050000A, kAnyDetail, ExitCode::kInternal, "There is not enough memory, or too many files are open.",
     "Close other programs."},
    {0x4050000B, ENODEV, ExitCode::kNotReachable, "The device cannot be reached: it was unplugged.",
     "Plug it in again."},
    {0x4050000B, ENOSYS, ExitCode::kNotReachable, "The device cannot be reached: this computer has no USB.",
     "Name a network device."},
    {0x4050000B, kAnyDetail, ExitCode::kNotReachable,
     "The device cannot be reached: no USB device of this name is plugged in.",
     "Check the cable, that it is switched on, and the ids that lsusb shows."},
    {0x4050000C, EAGAIN, ExitCode::kBusy, "The device goes on sending an earlier scan.", "Switch it off and on again."},
    {0x4050000C, kAnyDetail, ExitCode::kBusy, "The device is busy: another program uses it.",
     "End that program and try again."},
    {0x4050000D, kAnyDetail, ExitCode::kNotReachable, "You may not use this USB device.",
     "The administrator can allow it with 70-qsscan-usb.rules.template."},
    {0x4050000F, ENOENT, ExitCode::kNotReachable, "The USB device has not been set up by the system.",
     "Unplug it and plug it in again."},
    {0x4050000F, kAnyDetail, ExitCode::kNotReachable, "The USB device is no scanner that can be served.",
     "Check the ids in its name with lsusb."},
    {0, kAnyDetail, ExitCode::kNotReachable, "The device could not be opened, but can be now.", "Try again."},
};

CommandError make(ExitCode exit, const std::string& sentences, const CommandError& error, const OpenOutcome& outcome) {
  const std::string codes = hexCode(error.result()) + ", " + hexCode(outcome.result);
  return {exit, sentences + " (" + codes + ")", error.result()};
}

}  // namespace

std::optional<OpenOutcome> tryToOpen(const std::string& libraryFolder, const std::string& deviceName) {
  const auto unload = [](void* handle) { ::dlclose(handle); };
  const std::unique_ptr<void, decltype(unload)> module(
      ::dlopen((libraryFolder + "/" + kModule).c_str(), RTLD_LAZY | RTLD_LOCAL));
  if (!module) return std::nullopt;
  const auto create = reinterpret_cast<IDeviceAccess* (*)()>(::dlsym(module.get(), "CreateInstance"));
  const std::unique_ptr<IDeviceAccess> access(create != nullptr ? create() : nullptr);
  if (!access) return std::nullopt;
  access->SetClientId(kClientId);
  const auto device = parseDeviceName(deviceName);
  orvalle_scan_api::_DEV_IDENTIFIER id{0, device.connectionType, device.primaryName};
  access->Open(id);
  const OpenOutcome outcome{access->lastResult, access->lastDetail};
  access->Close();
  return outcome;
}

CommandError explained(const CommandError& error, const OpenOutcome& outcome) {
  for (const Row& row : kRows) {
    if (row.result != outcome.result || (row.detail != kAnyDetail && row.detail != outcome.detail)) continue;
    return make(row.exit, std::string(row.whatHappened) + " " + row.whatToDo, error, outcome);
  }
  if (outcome.result == kSeveralDevices) {
    return make(ExitCode::kUsage,
                std::to_string(outcome.detail) +
                    " devices have this name. Write usb:VVVV:PPPP:SERIAL for one of them; qsscan list shows them.",
                error, outcome);
  }
  const bool hasReason = outcome.result == kConnectFailed && outcome.detail != 0;
  const std::string reason = hasReason ? std::string(": ") + std::strerror(static_cast<int>(outcome.detail)) : "";
  return make(ExitCode::kNotReachable,
              "The device cannot be reached" + reason +
                  ". Check that it is switched on and connected, and that its name is right.",
              error, outcome);
}

CommandError explained(const CommandError& error, const std::string& libraryFolder, const std::string& deviceName) {
  if (error.result() != orvalle_scan_api::QSRSLT_CMD_NOT_OPENED) return error;
  const auto outcome = tryToOpen(libraryFolder, deviceName);
  return outcome ? explained(error, *outcome) : error;
}

}  // namespace qsscan
