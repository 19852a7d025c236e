// What a fault does to the page that is going out.
#include <algorithm>

#include "device/fault_effects.h"
#include "device/scan_run.h"
#include "protocol/answer.h"

namespace vscan {

// The fault that strikes first within this record, no longer pending then; null when there is none.
Fault* ScanRun::takeFault(const Bytes& record, const RecordSpan& span, std::size_t& cut) {
  auto first = faults_.end();
  for (auto it = faults_.begin(); it != faults_.end(); ++it) {
    if ((*it)->kind == FaultKind::WrongLength && stream_.sizeField(record).bytes == 0) continue;
    const auto place = record.empty() ? std::nullopt : strikesWithin(**it, span);
    if (!place || (first != faults_.end() && *place >= cut)) continue;
    first = it;
    cut = *place;
  }
  if (first == faults_.end()) return nullptr;
  Fault* const fault = *first;
  faults_.erase(first);
  return fault;
}

// done: how much of the record has been passed on.
ScanRun::Outcome ScanRun::strike(Fault& fault, Bytes& record, std::size_t& done) {
  ++fault.struck;
  const auto insert = [&](const Bytes& bytes) { buffer_.insert(buffer_.end(), bytes.begin(), bytes.end()); };
  const auto seconds = static_cast<std::uint16_t>(fault.value);
  log_.detail("--fault " + fault.text + " strikes");
  switch (fault.kind) {
    case FaultKind::Disconnect:
    case FaultKind::Reset:
    case FaultKind::Silence:
      if (connection_.send(buffer_)) breakOff(connection_, fault, log_);
      buffer_.clear();
      return Outcome::Lost;
    case FaultKind::Device:
      return fail(static_cast<std::uint8_t>(fault.value), "--fault " + fault.text);
    case FaultKind::DoubleFeed:
      if (!scan_.settings.doubleFeedDetection.isOn || scan_.settings.goesOnAfterDoubleFeed) break;
      return fail(DeviceError::DoubleFeed, "--fault " + fault.text);
    case FaultKind::StopKey:
      return endWith(stream_.stoppedByKey(), Outcome::Ended);
    case FaultKind::TooLong:
      page_.isTooLong = true;
      isCutShort_ = true;
      done = record.size();
      break;
    case FaultKind::TimerRestart:
      insert(stream_.timerRestart(seconds));
      break;
    case FaultKind::TimerExtend:
      insert(stream_.timerExtend(seconds));
      break;
    case FaultKind::FailedCheck:
      insert(stream_.failedCheck(static_cast<FailedCheck>(fault.value), pageNumber_, page_));
      break;
    case FaultKind::Garbage:
      insert(fault.bytes);
      break;
    case FaultKind::WrongLength: {
      const SizeField field = stream_.sizeField(record);
      putLe(record, field.at, field.bytes, static_cast<std::uint64_t>(fault.value));
      break;
    }
    case FaultKind::Short:
      done = record.size();
      break;
    case FaultKind::Pause: {
      const Outcome flushed = flush();
      if (flushed != Outcome::Going) return flushed;
      return waitUntil(Connection::Clock::now() + std::chrono::milliseconds(fault.value));
    }
    case FaultKind::Drip: {
      const Outcome flushed = flush();
      connection_.setDrip({static_cast<std::size_t>(fault.value), std::chrono::milliseconds(fault.pauseMs)});
      return flushed;
    }
    case FaultKind::WrongSignature:
      break;  // of answers only
  }
  return Outcome::Going;
}

}  // namespace vscan
