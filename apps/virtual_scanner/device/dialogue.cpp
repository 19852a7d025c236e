#include "device/dialogue.h"

#include <algorithm>

#include "device/scan_run.h"
#include "protocol/gen1_answers.h"
#include "protocol/gen2_answers.h"
#include "support/failure.h"

namespace vscan {

std::span<const CommandRow> commandsOf(Generation generation) {
  return generation == Generation::First ? gen1::commands() : gen2::commands();
}

AnswerShape unknownCommandShape(Generation generation, const std::string& mnemonic) {
  return generation == Generation::First ? gen1::kTextAnswer : gen2::framedShape(mnemonic);
}

void checkFault(const Fault& fault, Generation generation) {
  if (fault.command.empty()) return;
  const auto commands = commandsOf(generation);
  const auto row =
      std::find_if(commands.begin(), commands.end(), [&](auto& one) { return one.mnemonic == fault.command; });
  const std::string where = "--fault " + fault.text + ": ";
  if (row == commands.end()) throw Failure(where + "this generation has no command " + fault.command);
  if (fault.kind == FaultKind::WrongLength && (!row->isAnswered() || !row->shape.isFramed())) {
    throw Failure(where + "the answer to " + fault.command + " has no length");
  }
  if (fault.kind == FaultKind::WrongSignature && (!row->isAnswered() || row->shape.lengthAt() == 0)) {
    throw Failure(where + "the answer to " + fault.command + " has neither signature nor result");
  }
}

bool hasDocument(const Device& device, PaperSource source) {
  const Abilities can = device.profile.abilities();
  const bool inFeeder = can.hasFeeder && !device.feeder.isEmpty();
  const bool onBed = can.hasFlatbed && device.bed.file != nullptr;
  return source == PaperSource::Feeder ? inFeeder : source == PaperSource::Flatbed ? onBed : inFeeder || onBed;
}

Outcome scan(Dialogue& dialogue, const GrantedScan& granted, const StartSettings& start) {
  dialogue.device.panel->release();  // whatever the host scans for, it has seen the button
  ScanRun run(dialogue.device, dialogue.connection, dialogue.log, granted, start);
  run.run();
  // A page that nobody takes any more may still be in the making; the next host has not to wait for it.
  dialogue.device.turn->leave(&dialogue);
  return NoReply{};
}

}  // namespace vscan
