// qsscan: scans documents from the command line.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

#include "capability_text.h"
#include "connect.h"
#include "core_library.h"
#include "list_command.h"
#include "open_failure.h"
#include "options.h"
#include "panel_command.h"
#include "remembered_devices.h"
#include "scan_command.h"

namespace {

using namespace qsscan;

void printJson(const nlohmann::ordered_json& json) { std::printf("%s\n", jsonText(json, 2).c_str()); }

void tellEnd(const ScanReport& report, const Options& options) {
  std::fputs(reportText(report).c_str(), stderr);
  if (options.json) printJson(reportJson(report));
}

int runInfo(const Capability& capability, const Options& options) {
  if (options.json) {
    printJson(capabilityJson(options.device, capability));
  } else {
    std::fputs(capabilityText(options.device, capability).c_str(), stdout);
  }
  return static_cast<int>(ExitCode::kDone);
}

int runWith(orvalle_scan_api::IScanCoreApi& core, const Options& options, const Complete& complete) {
  const Capability capability = connect(core, options.device);
  rememberDevice(options.device);
  if (options.command == Options::Command::kInfo) return runInfo(capability, options);
  if (options.command == Options::Command::kPanel) return runPanel(core, capability, options, complete, tellEnd);
  const ScanReport report = runScan(core, capability, options, stderr, tellEnd);
  tellEnd(report, options);
  return static_cast<int>(report.exit);
}

int run(const Options& options, const Complete& complete) {
  if (options.command == Options::Command::kList) return runList(options);
  const CoreLibrary library(options.library);
  try {
    return runWith(*library.create(), options, complete);
  } catch (const CommandError& error) {
    throw explained(error, library.folder(), options.device);
  }
}

int fail(const CommandError& error, const std::optional<Options>& options) {
  ScanReport report;
  report.exit = error.code();
  report.sentence = error.what();
  report.result = error.result();
  std::fprintf(stderr, "qsscan: %s\n", error.what());
  if (options && options->json) {
    report.device = options->device;
    printJson(reportJson(report));
  }
  return static_cast<int>(error.code());
}

}  // namespace

int main(int argc, char** argv) {
  // A closed standard output and a file that may not grow are told as failed writes.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // Outside a scan there is nothing to keep. What the caller had ignored stays ignored.
  const auto leave = [](int) { std::_Exit(static_cast<int>(ExitCode::kInterrupted)); };
  if (std::signal(SIGINT, leave) == SIG_IGN) std::signal(SIGINT, SIG_IGN);
  std::optional<Options> options;
  try {
    options = parseCommandLine(argc, argv);
    if (!options) return static_cast<int>(ExitCode::kDone);
    return run(*options, [&](const auto& askedByPanel) { return parseCommandLine(argc, argv, askedByPanel).value(); });
  } catch (const CommandError& error) {
    return fail(error, options);
  } catch (const std::exception& error) {
    return fail(CommandError(ExitCode::kInternal, std::string("Unexpected failure: ") + error.what() + "."), options);
  }
}
