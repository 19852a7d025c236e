#include "device/session.h"

#include <algorithm>
#include <string>

#include "device/fault_effects.h"

namespace vscan {

Session::Session(Device& device, Connection& connection, Log& log)
    : dialogue_{device, connection, log}, generation_(device.profile.generation()) {}

Session::~Session() { dialogue_.device.turn->leave(&dialogue_); }

void Session::run() {
  while (const auto command = dialogue_.connection.waitForCommand()) {
    bool isGoing = false;
    if (const auto* bad = std::get_if<BadFrame>(&*command)) {
      isGoing = refuse(unknownCommandShape(generation_, ""), "malformed command", {bad->sentence, bad->bytes});
    } else {
      const auto& frame = std::get<Frame>(*command);
      dialogue_.log.detail("<- " + hexBytes(frame.bytes, FrameReader::kMaxFrameBytes) + "  " + frame.mnemonic);
      isGoing = answer(frame);
    }
    if (!isGoing) return;
  }
}

bool Session::answer(const Frame& frame) {
  const auto commands = commandsOf(generation_);
  const auto row =
      std::find_if(commands.begin(), commands.end(), [&](auto& one) { return one.mnemonic == frame.mnemonic; });
  if (row == commands.end()) {
    return refuse(unknownCommandShape(generation_, frame.mnemonic), frame.mnemonic,
                  {"this device has no command " + frame.mnemonic, frame.bytes});
  }
  if (row->need == Need::Nothing) return carryOut(*row, frame);
  Turn& turn = *dialogue_.device.turn;
  if (!turn.take(&dialogue_, row->need == Need::Keeping)) {
    return refuse(row->shape, frame.mnemonic, {"the device is busy with another host", frame.bytes}, DeviceError::Busy);
  }
  const bool isGoing = carryOut(*row, frame);
  turn.finish(&dialogue_);
  return isGoing;
}

bool Session::carryOut(const CommandRow& row, const Frame& frame) {
  std::vector<Fault*> faults = faultsAt(dialogue_.device.options.faults, frame.mnemonic);
  for (Fault* fault : faults) {
    if (fault->kind != FaultKind::Device) continue;
    ++fault->struck;
    dialogue_.log.note(frame.mnemonic + " refused, as asked for by --fault " + fault->text);
    const Bytes refusal = refusalOf(row.shape, static_cast<std::uint8_t>(fault->value));
    return refusal.empty() || send(refusal, "refusal");
  }
  if (!row.isAnswered()) {
    if (!sendWithFaults(dialogue_.connection, dialogue_.log, faults, row.shape, {})) return false;
    faults.clear();
  }
  const Outcome outcome = row.carryOut(dialogue_, frame);
  if (const auto* refusal = std::get_if<Refusal>(&outcome)) return refuse(row.shape, frame.mnemonic, *refusal);
  if (const auto* reply = std::get_if<Reply>(&outcome)) {
    const Bytes bytes = answerOf(row.shape, reply->result, reply->body);
    dialogue_.log.detail("-> " + hexBytes(bytes) + "  " + row.answer);
    return sendWithFaults(dialogue_.connection, dialogue_.log, faults, row.shape, bytes);
  }
  return dialogue_.connection.isOpen();
}

bool Session::refuse(const AnswerShape& shape, const std::string& what, const Refusal& refusal, DeviceError error) {
  dialogue_.log.note(what + " refused: " + refusal.sentence + ": " + hexBytes(refusal.bytes));
  const Bytes answer = refusalOf(shape, codeOf(error, generation_));
  return answer.empty() || send(answer, "refusal");  // empty: the host does not wait for an answer
}

bool Session::send(const Bytes& bytes, const char* what) {
  dialogue_.log.detail("-> " + hexBytes(bytes) + "  " + what);
  return dialogue_.connection.send(bytes);
}

}  // namespace vscan
