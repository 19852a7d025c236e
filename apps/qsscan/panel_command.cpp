#include "panel_command.h"

#include <chrono>
#include <cstdio>
#include <thread>

#include "exit_codes.h"
#include "panel_request.h"
#include "results.h"
#include "scan_command.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr std::chrono::seconds kBetweenQuestions{1};

PanelRecord askPanel(IScanCoreApi& core) {
  constexpr unsigned kGeneration = 1;  // of the record; there is one
  PanelRecord record{};
  const QSRSLT result = core.GetPushScanParameter(kGeneration, &record);
  if (result == QSRSLT_SUCCESS) return record;
  const ResultText text = describeResult(result, Phase::kConnecting);
  // Jams and the like have exit codes of their own; what is left is a device that does not know the question.
  const bool isRefused = text.exit == ExitCode::kDeviceError || result == QSRSLT_PUSH_GENERATION;
  if (!isRefused) throw CommandError(text.exit, text.sentence, result);
  throw CommandError(ExitCode::kNotServed,
                     "The device does not tell what its panel asks for. Perhaps it has no buttons: use qsscan scan. (" +
                         hexCode(result) + ")",
                     result);
}

PanelRecord waitForButton(IScanCoreApi& core) {
  PanelRecord record = askPanel(core);
  if (!record.event.valid) {
    std::fputs("qsscan: Waiting for a button of the device to be pressed. Ctrl-C ends the wait.\n", stderr);
  }
  while (!record.event.valid) {
    // Ctrl-C ends the program here at once.
    std::this_thread::sleep_for(kBetweenQuestions);
    record = askPanel(core);
  }
  return record;
}

void show(const PanelRecord& record, const Options& options) {
  if (!options.json) {
    std::fputs(panelText(record).c_str(), stdout);
    return;
  }
  nlohmann::ordered_json json = {{"device", options.device}};
  json.update(panelJson(record));
  std::printf("%s\n", jsonText(json, 2).c_str());
}

void tellButton(const PanelRecord& record, const PanelWish& wish, ProgressStyle style) {
  auto event = panelJson(record);
  if (style == ProgressStyle::kText) {
    std::fprintf(stderr, "Button: %s\n", event["button"].get<std::string>().c_str());
  }
  if (style == ProgressStyle::kJson) {
    event["event"] = "button";
    std::fprintf(stderr, "%s\n", jsonText(event, -1).c_str());
  }
  for (const std::string& sentence : wish.leftOut) std::fprintf(stderr, "qsscan: %s\n", sentence.c_str());
}

}  // namespace

int runPanel(IScanCoreApi& core, const Capability& capability, const Options& options, const Complete& complete,
             TellEnd tellEnd) {
  if (options.onlyShows) {
    show(askPanel(core), options);
    return static_cast<int>(ExitCode::kDone);
  }
  const PanelRecord record = waitForButton(core);
  const PanelWish wish = wishOfPanel(record, capability);
  const Options completed = complete(wish.options);
  tellButton(record, wish, completed.progress);
  const ScanReport report = runScan(core, capability, completed, stderr, tellEnd);
  tellEnd(report, completed);
  return static_cast<int>(report.exit);
}

}  // namespace qsscan
