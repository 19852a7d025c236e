#include "device/dialogue.h"
#include "device/offers.h"
#include "image/icc_profiles.h"
#include "image/palette.h"
#include "protocol/gen2_answers.h"
#include "protocol/gen2_commands.h"
#include "support/failure.h"

namespace vscan::gen2 {
namespace {

Outcome tellGeneration(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  return Reply{0, {static_cast<std::uint8_t>(dialogue.device.profile.firstBodyByte)}};
}

Outcome tellDevice(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  return Reply{0, dialogue.device.profile.capability.body()};
}

Outcome checkDocument(Dialogue& dialogue, const Frame& frame) {
  DocumentCheck check;
  if (const auto refusal = readDocumentCheck(frame, check)) return *refusal;
  if (hasDocument(dialogue.device, check.source)) return Reply{0, {kDocumentThere}};
  return Reply{codeOf(DeviceError::FeederEmpty, Generation::Second), {}};
}

Outcome grantSettings(Dialogue& dialogue, const Frame& frame) {
  const Device& device = dialogue.device;
  dialogue.granted.reset();
  ScanSettings settings;
  if (const auto refusal = readScanSettings(frame, settings)) return *refusal;
  auto result = grantScan(device.profile, settings, !device.feeder.isEmpty(), device.bed.file != nullptr);
  if (const auto* reason = std::get_if<std::string>(&result)) return Refusal{*reason, frame.bytes};
  dialogue.granted = std::get<GrantedScan>(std::move(result));
  const GrantedScan& granted = *dialogue.granted;
  GrantedValues values;
  values.fromFeeder = granted.path != Path::Flatbed;
  values.resolutionX = static_cast<std::uint16_t>(granted.dpiX);
  values.resolutionY = static_cast<std::uint16_t>(granted.dpiY);
  values.maxWidthPx = static_cast<std::uint32_t>(granted.maximum.widthPx);
  values.maxHeightPx = static_cast<std::uint32_t>(granted.maximum.heightPx);
  return Reply{0, grantedBody(values)};
}

Outcome startScan(Dialogue& dialogue, const Frame& frame) {
  StartSettings start;
  if (const auto refusal = readStart(frame, start)) return *refusal;
  if (!dialogue.granted) return Refusal{"XSC needs an SSP before it on the same connection", frame.bytes};
  const Profile& profile = dialogue.device.profile;
  regrantResolution(profile, start.resolution, *dialogue.granted);
  if (const auto reason = notOffered(profile.abilities(), *dialogue.granted, start))
    return Refusal{*reason, frame.bytes};
  return scan(dialogue, *dialogue.granted, start);
}

Outcome tellKeys(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  return Reply{0, keyBody(dialogue.device.panel->pressed())};
}

Outcome tellPalette(Dialogue&, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  return Reply{0, paletteTriples()};
}

Outcome tellColorProfiles(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  if (!dialogue.device.profile.abilities().hasColorProfiles) {
    return Refusal{"the profile offers no colour profiles", frame.bytes};
  }
  static const Bytes body = profilesBody(colorProfile(), greyProfile());
  return Reply{0, body};
}

// The size of the next document; no width and no height when there is none.
Outcome tellDocument(Dialogue& dialogue, const Frame& frame) {
  if (const auto refusal = readNoKeys(frame)) return *refusal;
  const Device& device = dialogue.device;
  GrantedScan granted;
  if (dialogue.granted) {
    granted = *dialogue.granted;
  } else {
    const Abilities can = device.profile.abilities();
    granted.path = can.hasFeeder && (!device.feeder.isEmpty() || !can.hasFlatbed) ? Path::FeederOneSide : Path::Flatbed;
    regrantResolution(device.profile, {true, 0, 0}, granted);
  }
  const Face face = nextFace(device, granted.path);
  if (!face.file) return Reply{0, documentBody({})};
  try {
    const Rect sheet = placeFace(device.profile, granted, face);
    return Reply{
        0, documentBody({static_cast<std::uint16_t>(granted.dpiX), static_cast<std::uint16_t>(granted.dpiY),
                         static_cast<std::uint32_t>(sheet.widthPx()), static_cast<std::uint32_t>(sheet.heightPx())})};
  } catch (const Failure& failure) {
    return Refusal{failure.what(), frame.bytes};
  }
}

// The scan was over before the abort came: the host has its end already and reads no more.
Outcome ignoreAbort(Dialogue& dialogue, const Frame& frame) {
  Abort abort;
  if (const auto refusal = readAbort(frame, abort)) return *refusal;
  dialogue.log.detail("no scan is running; the abort has nothing to do");
  if (abort.ejection == Ejection::All) dialogue.device.feeder.ejectAll();
  return NoReply{};
}

}  // namespace

std::span<const CommandRow> commands() {
  static const CommandRow rows[] = {
      {"Q", kGenerationShape, "generation", Need::Nothing, tellGeneration},
      {"QDI", framedShape("QDI"), "device information", Need::Nothing, tellDevice},
      {"CKD", kTwoBytes, "document check", Need::Turn, checkDocument},
      {"SSP", framedShape("SSP"), "granted settings", Need::Keeping, grantSettings},
      {"GKP", framedShape("GKP"), "panel keys", Need::Nothing, tellKeys},
      {"GCT", framedShape("GCT"), "palette", Need::Nothing, tellPalette},
      {"GCP", framedShape("GCP"), "colour profiles", Need::Nothing, tellColorProfiles},
      {"GDS", framedShape("GDS"), "document size", Need::Turn, tellDocument},
      {"XSC", kTwoBytes, "start", Need::Turn, startScan, true},
      {"ABT", {}, "abort", Need::Turn, ignoreAbort},
  };
  return rows;
}

}  // namespace vscan::gen2
