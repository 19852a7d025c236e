#include "device/dialogue.h"

#include "device/scan_run.h"
#include "protocol/gen1_answers.h"
#include "protocol/gen2_answers.h"

namespace vscan {

std::span<const CommandRow> commandsOf(Generation generation) {
  return generation == Generation::First ? gen1::commands() : gen2::commands();
}

AnswerShape unknownCommandShape(Generation generation, const std::string& mnemonic) {
  return generation == Generation::First ? gen1::kTextAnswer : gen2::framedShape(mnemonic);
}

bool hasDocument(const Device& device, PaperSource source) {
  const Abilities can = device.profile.abilities();
  const bool inFeeder = can.hasFeeder && !device.feeder.isEmpty();
  const bool onBed = can.hasFlatbed && device.bed.file != nullptr;
  return source == PaperSource::Feeder ? inFeeder : source == PaperSource::Flatbed ? onBed : inFeeder || onBed;
}

Outcome scan(Dialogue& dialogue, const GrantedScan& granted, const StartSettings& start) {
  dialogue.device.panel->release();  // whatever the host scans for, it has seen the button
  ScanRun(dialogue.device, dialogue.connection, dialogue.log, granted, start).run();
  return NoReply{};
}

}  // namespace vscan
