#include "device/fault_effects.h"

#include <algorithm>

namespace vscan {
namespace {

// The kinds that change bytes of an answer rather than happen at one.
void spoil(const Fault& fault, const AnswerShape& shape, Bytes& answer) {
  if (fault.kind == FaultKind::WrongLength) {
    putLe(answer, shape.lengthAt(), shape.lengthBytes, static_cast<std::uint64_t>(fault.value));
  }
  if (fault.kind == FaultKind::WrongSignature) {
    std::uint8_t& first = answer.at(shape.signature.empty() ? 0 : shape.signatureAt());
    first = static_cast<std::uint8_t>(first ^ 0xFF);
  }
}

}  // namespace

void breakOff(Connection& connection, const Fault& fault, Log& log) {
  log.note("as asked for by --fault " + fault.text + ", the connection " +
           (fault.kind == FaultKind::Silence ? "falls silent" : "ends"));
  if (fault.kind == FaultKind::Silence) connection.playDead();
  if (fault.kind == FaultKind::Reset) connection.reset();
  connection.close();
}

std::vector<Fault*> faultsAt(std::vector<Fault>& faults, const std::string& command) {
  std::vector<Fault*> due;
  for (Fault& fault : faults) {
    if (fault.command == command && !fault.isSpent()) due.push_back(&fault);
  }
  std::stable_sort(due.begin(), due.end(),
                   [](const Fault* a, const Fault* b) { return a->byte.value_or(0) < b->byte.value_or(0); });
  return due;
}

bool sendWithFaults(Connection& connection, Log& log, const std::vector<Fault*>& faults, const AnswerShape& shape,
                    Bytes answer) {
  for (const Fault* fault : faults) spoil(*fault, shape, answer);
  std::span<const std::uint8_t> rest(answer);
  std::size_t done = 0;
  for (Fault* fault : faults) {
    ++fault->struck;
    log.detail("--fault " + fault->text + " strikes");
    const std::size_t cut = std::clamp(static_cast<std::size_t>(fault->byte.value_or(0)), done, answer.size());
    if (!connection.send(rest.first(cut - done))) return false;
    rest = rest.subspan(cut - done);
    done = cut;
    switch (fault->kind) {
      case FaultKind::Disconnect:
      case FaultKind::Reset:
      case FaultKind::Silence:
        breakOff(connection, *fault, log);
        return false;
      case FaultKind::Garbage:
        if (!connection.send(fault->bytes)) return false;
        break;
      case FaultKind::Short:
        return connection.isOpen();
      case FaultKind::Pause:
        if (!connection.pause(std::chrono::milliseconds(fault->value))) return false;
        break;
      case FaultKind::Drip:
        connection.setDrip({static_cast<std::size_t>(fault->value), std::chrono::milliseconds(fault->pauseMs)});
        break;
      default:
        break;  // spoilt already
    }
  }
  return connection.send(rest);
}

}  // namespace vscan
