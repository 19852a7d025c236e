#include "device/session.h"

#include <algorithm>
#include <string>

#include "device/scan_run.h"
#include "protocol/answers.h"
#include "protocol/gen2_commands.h"

namespace vscan {

// How a refused command is told so.
enum class RefusalForm {
  Framed,        // result byte, three letters, length, body
  TwoBytes,      // result and a second byte, as the document check answers
  StreamRecord,  // the two-byte error record of the image stream
  Nothing,       // the host does not wait for an answer
};

struct Session::CommandRow {
  std::string_view mnemonic;
  RefusalForm refusal;
  bool (Session::*answer)(const Frame& frame);
};

const Session::CommandRow Session::kCommands[] = {
    {"Q", RefusalForm::Framed, &Session::answerCapability},
    {"QDI", RefusalForm::Framed, &Session::answerDeviceInformation},
    {"CKD", RefusalForm::TwoBytes, &Session::answerDocumentCheck},
    {"SSP", RefusalForm::Framed, &Session::answerScanSettings},
    {"XSC", RefusalForm::StreamRecord, &Session::startScan},
    {"ABT", RefusalForm::Nothing, &Session::ignoreAbort},
};

Session::Session(Device& device, Connection& connection, Log& log)
    : device_(device), connection_(connection), log_(log) {}

void Session::run() {
  while (const auto command = connection_.waitForCommand()) {
    bool isGoing = false;
    if (const auto* bad = std::get_if<BadFrame>(&*command)) {
      log_.note("malformed command refused: " + bad->sentence + ": " + hexBytes(bad->bytes));
      isGoing = send(gen2::framedRefusal(gen2::kSettingsNotPossible, "???"), "refusal");
    } else {
      const auto& frame = std::get<Frame>(*command);
      log_.detail("<- " + hexBytes(frame.bytes, 4096) + "  " + frame.mnemonic);
      isGoing = answer(frame);
    }
    if (!isGoing) return;
  }
}

bool Session::answer(const Frame& frame) {
  for (const CommandRow& row : kCommands) {
    if (row.mnemonic == frame.mnemonic) return (this->*row.answer)(frame);
  }
  return refuse(frame, {"this device has no command " + frame.mnemonic, frame.bytes});
}

bool Session::refuse(const Frame& frame, const Refusal& refusal) {
  log_.note(frame.mnemonic + " refused: " + refusal.sentence + ": " + hexBytes(refusal.bytes));
  auto form = RefusalForm::Framed;
  for (const CommandRow& row : kCommands) form = row.mnemonic == frame.mnemonic ? row.refusal : form;
  switch (form) {
    case RefusalForm::Framed:
      return send(gen2::framedRefusal(gen2::kSettingsNotPossible, frame.mnemonic), "refusal");
    case RefusalForm::TwoBytes:
    case RefusalForm::StreamRecord:
      return send({gen2::kSettingsNotPossible, 0x00}, "refusal");
    case RefusalForm::Nothing:
      break;
  }
  return true;
}

bool Session::send(const Bytes& bytes, const char* what) {
  log_.detail("-> " + hexBytes(bytes) + "  " + what);
  return connection_.send(bytes);
}

bool Session::answerCapability(const Frame& frame) {
  if (const auto refusal = gen2::readNoKeys(frame)) return refuse(frame, *refusal);
  return send(gen2::capabilityAnswer(static_cast<std::uint8_t>(device_.profile.firstBodyByte)), "generation");
}

bool Session::answerDeviceInformation(const Frame& frame) {
  if (const auto refusal = gen2::readNoKeys(frame)) return refuse(frame, *refusal);
  return send(gen2::framedAnswer(0, "QDI", device_.profile.capability.body()), "device information");
}

bool Session::answerDocumentCheck(const Frame& frame) {
  DocumentCheck check;
  if (const auto refusal = gen2::readDocumentCheck(frame, check)) return refuse(frame, *refusal);
  const bool inFeeder = device_.profile.hasFeeder() && !device_.feeder.isEmpty();
  const bool onBed = device_.profile.hasFlatbed() && device_.bed.file != nullptr;
  const bool hasDocument = check.source == PaperSource::Feeder    ? inFeeder
                           : check.source == PaperSource::Flatbed ? onBed
                                                                  : inFeeder || onBed;
  return send(gen2::documentAnswer(hasDocument), "document check");
}

bool Session::answerScanSettings(const Frame& frame) {
  granted_.reset();
  ScanSettings settings;
  if (const auto refusal = gen2::readScanSettings(frame, settings)) return refuse(frame, *refusal);
  auto result = grantScan(device_.profile, settings, !device_.feeder.isEmpty(), device_.bed.file != nullptr);
  if (const auto* reason = std::get_if<std::string>(&result)) return refuse(frame, {*reason, frame.bytes});
  granted_ = std::get<GrantedScan>(std::move(result));
  gen2::GrantedValues values;
  values.fromFeeder = granted_->path != Path::Flatbed;
  values.resolutionX = static_cast<std::uint16_t>(granted_->dpiX);
  values.resolutionY = static_cast<std::uint16_t>(granted_->dpiY);
  values.maxWidthPx = static_cast<std::uint32_t>(granted_->maximum.widthPx);
  values.maxHeightPx = static_cast<std::uint32_t>(granted_->maximum.heightPx);
  return send(gen2::framedAnswer(0, "SSP", gen2::grantedBody(values)), "granted settings");
}

bool Session::startScan(const Frame& frame) {
  StartSettings start;
  if (const auto refusal = gen2::readStart(frame, start)) return refuse(frame, *refusal);
  if (!granted_) return refuse(frame, {"XSC needs an SSP before it on the same connection", frame.bytes});
  regrantResolution(device_.profile, start.resolution, *granted_);
  ScanRun(device_, connection_, log_, *granted_, start).run();
  return connection_.isOpen();
}

// The scan was over before the abort came: the host has its end already and reads no more.
bool Session::ignoreAbort(const Frame& frame) {
  Abort abort;
  if (const auto refusal = gen2::readAbort(frame, abort)) return refuse(frame, *refusal);
  log_.detail("no scan is running; the abort has nothing to do");
  if (abort.ejection == Ejection::All) device_.feeder.ejectAll();
  return true;
}

}  // namespace vscan
