#include "device/dialogue.h"
#include "device/offers.h"
#include "image/palette.h"
#include "protocol/gen1_answers.h"
#include "protocol/gen1_commands.h"
#include "support/failure.h"

namespace vscan::gen1 {
namespace {

Outcome tellDevice(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoLines(frame)) return *refusal;
  const Profile& profile = dialogue.device.profile;
  Bytes block = profile.capability.body();
  block.resize(static_cast<std::size_t>(profile.blockBytes));
  return Reply{0, block};
}

Outcome checkDocument(Dialogue& dialogue, const Frame& frame) {
  PaperSource source = PaperSource::Automatic;
  if (const auto refusal = readSource(frame, source)) return *refusal;
  if (hasDocument(dialogue.device, source)) return Reply{kStatusGood, {}};
  return Reply{codeOf(DeviceError::FeederEmpty, Generation::First), {}};
}

Outcome selectSource(Dialogue& dialogue, const Frame& frame) {
  PaperSource source = PaperSource::Automatic;
  if (const auto refusal = readSource(frame, source)) return *refusal;
  const Abilities can = dialogue.device.profile.abilities();
  if (source == PaperSource::Feeder && !can.hasFeeder) return Refusal{"this device has no feeder", frame.bytes};
  if (source == PaperSource::Flatbed && !can.hasFlatbed) return Refusal{"this device has no bed", frame.bytes};
  dialogue.source = source;
  return Reply{kStatusGood, {}};
}

std::variant<GrantedScan, std::string> grant(Dialogue& dialogue, const ScanRequest& request) {
  const Device& device = dialogue.device;
  ScanSettings settings = request.settings;
  settings.source = dialogue.source;
  auto result = grantScan(device.profile, settings, !device.feeder.isEmpty(), device.bed.file != nullptr);
  if (const auto* granted = std::get_if<GrantedScan>(&result)) {
    if (auto reason = notOffered(device.profile.abilities(), *granted, request.start)) return *std::move(reason);
  }
  return result;
}

Outcome tellGranted(Dialogue& dialogue, const Frame& frame) {
  ScanRequest request;
  if (const auto refusal = readQuestion(frame, request)) return *refusal;
  const auto result = grant(dialogue, request);
  if (const auto* reason = std::get_if<std::string>(&result)) return Refusal{*reason, frame.bytes};
  const auto& granted = std::get<GrantedScan>(result);
  const PathAbilities can = dialogue.device.profile.abilities().of(granted.path);
  const std::string text = grantedText({granted.path != Path::Flatbed, granted.dpiX, granted.dpiY, can.size[0],
                                        granted.maximum.widthPx, can.size[1], granted.maximum.heightPx});
  return Reply{kResultGood, Bytes(text.begin(), text.end())};
}

// The command carries all that a scan needs: no I has to come before it.
Outcome startScan(Dialogue& dialogue, const Frame& frame) {
  ScanRequest request;
  if (const auto refusal = readStart(frame, request)) return *refusal;
  auto result = grant(dialogue, request);
  if (const auto* reason = std::get_if<std::string>(&result)) return Refusal{*reason, frame.bytes};
  auto& granted = std::get<GrantedScan>(result);
  // No key asks for long paper: an area that reaches as far is all it takes.
  granted.settings.longPaper = true;
  const int maxWidthPx = granted.reach.widthPx;
  granted.reach = maxArea(dialogue.device.profile, granted.path, true, granted.dpiX, granted.dpiY);
  granted.reach.widthPx = maxWidthPx;
  granted.maximum.heightPx = granted.reach.heightPx;
  return scan(dialogue, granted, request.start);
}

Outcome tellDocument(Dialogue& dialogue, const Frame& frame) {
  DocumentQuestion question;
  if (const auto refusal = readDocumentQuestion(frame, question)) return *refusal;
  ScanRequest request;
  request.settings.resolution = question.resolution;
  const auto result = grant(dialogue, request);
  if (const auto* reason = std::get_if<std::string>(&result)) return Refusal{*reason, frame.bytes};
  const auto& granted = std::get<GrantedScan>(result);
  const Device& device = dialogue.device;
  const std::uint8_t noDocument = codeOf(DeviceError::FeederEmpty, Generation::First);
  const Face face = nextFace(device, granted.path);
  if (!face.file) return Reply{noDocument, {noDocument}};
  try {
    const Rect sheet = placeFace(device.profile, granted, face);
    const std::string text =
        documentText({granted.dpiX, granted.dpiY, sheet.left, sheet.top, sheet.right, sheet.bottom});
    return Reply{kResultGood, Bytes(text.begin(), text.end())};
  } catch (const Failure& failure) {
    return Refusal{failure.what(), frame.bytes};
  }
}

Outcome tellKeys(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoLines(frame)) return *refusal;
  const std::string text = keyText(dialogue.device.panel->pressed());
  return Reply{kKeyResult, Bytes(text.begin(), text.end())};
}

Outcome tellPalette(Dialogue&, const Frame& frame) {
  if (const auto refusal = readNoLines(frame)) return *refusal;
  return Reply{0, paletteTriples()};
}

// The scan was over before the abort came: the host has its end already and reads no more.
Outcome ignoreAbort(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoLines(frame)) return *refusal;
  dialogue.log.detail("no scan is running; the abort has nothing to do");
  return NoReply{};
}

}  // namespace

std::span<const CommandRow> commands() {
  static const CommandRow rows[] = {
      {"Q", kBlockShape, "device information", Need::Nothing, tellDevice},
      {"D", kStatusByte, "document check", Need::Turn, checkDocument},
      {"S", kStatusByte, "paper source", Need::Keeping, selectSource},
      {"I", kTextAnswer, "granted settings", Need::Keeping, tellGranted},
      {"E", kTextAnswer, "document corners", Need::Turn, tellDocument},
      {"K", kTextAnswer, "panel keys", Need::Nothing, tellKeys},
      {"P", kPlainAnswer, "palette", Need::Nothing, tellPalette},
      {"X", kStatusByte, "start", Need::Turn, startScan, true},
      {"R", {}, "abort", Need::Nothing, ignoreAbort},
  };
  return rows;
}

}  // namespace vscan::gen1
