#include "device/scan_run.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "protocol/gen1_commands.h"
#include "protocol/gen2_commands.h"
#include "support/failure.h"

namespace vscan {
namespace {

constexpr std::size_t kFlushBytes = 64 * 1024;

std::string hexCode(std::uint8_t code) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02X", static_cast<unsigned>(code));
  return text;
}

}  // namespace

ScanRun::ScanRun(Device& device, Connection& connection, Log& log, const GrantedScan& scan, const StartSettings& start)
    : device_(device),
      connection_(connection),
      log_(log),
      scan_(scan),
      start_(start),
      stream_(streamOf(device.profile.generation())) {}

void ScanRun::run() {
  planPages();
  const bool isFed = scan_.path != Path::Flatbed;
  if (plans_.empty()) {
    fail(DeviceError::FeederEmpty, isFed ? "the feeder is empty" : "nothing lies on the bed and the feeder is empty");
    return;
  }
  const auto began = Connection::Clock::now();
  nextPageMayEnd_ = began;
  const Outcome outcome = sendPages();
  eject();
  if (outcome == Outcome::Lost) connection_.close();
  const std::chrono::duration<double> seconds = Connection::Clock::now() - began;
  char line[120];
  std::snprintf(line, sizeof line, "scan %s after %zu of %zu page(s), %.2f s",
                outcome == Outcome::Finished ? "finished" : "ended", currentPlan_, plans_.size(), seconds.count());
  log_.detail(line);
}

void ScanRun::planPages() {
  if (scan_.path == Path::Flatbed) {
    // Asked for by name, the bed is scanned also when nothing lies on it.
    if (device_.bed.file || scan_.settings.source == PaperSource::Flatbed || !device_.profile.abilities().hasFeeder) {
      plans_.push_back({{device_.bed, {}}, 0});
    }
    return;
  }
  const Sides sides = scan_.settings.sides;
  sheets_ = device_.feeder.upcoming(sides != Sides::Front, scan_.settings.maxSheets);
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    if (sides != Sides::BackOnly) plans_.push_back({{sheets_[i].front, {}}, i});
    if (sides != Sides::Front) plans_.push_back({{sheets_[i].back, sheets_[i].front}, i});
  }
  plans_.resize(std::min<std::size_t>(plans_.size(), std::numeric_limits<std::int16_t>::max()));
}

std::future<Page> ScanRun::startMaking(std::size_t index) const {
  if (index >= plans_.size()) return {};
  return std::async(std::launch::async, [this, source = plans_[index].source] {
    return makePage(device_.profile, scan_, start_, source, device_.options.page);
  });
}

ScanRun::Outcome ScanRun::sendPages() {
  std::future<Page> upcoming = startMaking(0);
  for (currentPlan_ = 0; currentPlan_ < plans_.size(); ++currentPlan_) {
    Page page;
    try {
      page = upcoming.get();
    } catch (const Failure& failure) {
      return fail(DeviceError::InternalFault, failure.what());
    } catch (const std::bad_alloc&) {
      return fail(DeviceError::InternalFault, "there is not enough memory for the page");
    }
    upcoming = startMaking(currentPlan_ + 1);
    const Outcome outcome = sendPage(static_cast<std::uint16_t>(currentPlan_ + 1), page);
    if (outcome != Outcome::Going) return outcome;
  }
  return endWith(stream_.allPagesEnd(), Outcome::Finished);
}

ScanRun::Outcome ScanRun::sendPage(std::uint16_t number, const Page& page) {
  const auto& faults = device_.options.faults;
  const auto found = std::find_if(faults.begin(), faults.end(), [&](const Fault& f) { return f.page == number; });
  fault_ = found == faults.end() ? nullptr : &*found;
  pageBytes_ = 0;

  const bool whiteLines = page.color == PageColor::Mono
                              ? device_.options.whiteLinesInMono
                              : page.color == PageColor::Grey && device_.options.whiteLinesInGrey;
  const auto records = stream_.cut(number, page, whiteLines);
  Bytes record;
  int linesBefore = 0;
  while (records->next(record)) {
    const Outcome outcome = sendRecord(record, linesBefore, records->linesDone());
    if (outcome != Outcome::Going) return outcome;
    linesBefore = records->linesDone();
    record.clear();
  }
  const Bytes findings = stream_.findings(number, page);
  if (!findings.empty()) {
    const Outcome outcome = sendRecord(findings, linesBefore, linesBefore);
    if (outcome != Outcome::Going) return outcome;
  }
  if (fault_ != nullptr) return strike(*fault_);  // a place behind the last line is the page's end
  if (device_.options.pagesPerMinute > 0) {
    const Outcome flushed = flush();
    if (flushed != Outcome::Going) return flushed;
    const std::chrono::duration<double> perPage(60 / device_.options.pagesPerMinute);
    nextPageMayEnd_ = std::max(nextPageMayEnd_, Connection::Clock::now() - std::chrono::seconds(1)) +
                      std::chrono::duration_cast<Connection::Clock::duration>(perPage);
    while (Connection::Clock::now() < nextPageMayEnd_) {
      if (!connection_.idleUntil(nextPageMayEnd_)) return Outcome::Lost;
      const Outcome outcome = heedCommands();
      if (outcome != Outcome::Going) return outcome;
    }
  }
  const Outcome outcome = sendRecord(stream_.pageEnd(number, page), linesBefore, linesBefore);
  return outcome == Outcome::Going ? flush() : outcome;
}

ScanRun::Outcome ScanRun::sendRecord(const Bytes& record, int linesBefore, int linesAfter) {
  if (fault_ != nullptr) {
    const auto size = static_cast<std::int64_t>(record.size());
    if (const auto cut = strikesWithin(*fault_, {pageBytes_, size, linesBefore, linesAfter})) {
      buffer_.insert(buffer_.end(), record.begin(), record.begin() + static_cast<std::ptrdiff_t>(*cut));
      return strike(*fault_);
    }
  }
  pageBytes_ += static_cast<std::int64_t>(record.size());
  buffer_.insert(buffer_.end(), record.begin(), record.end());
  return buffer_.size() < kFlushBytes ? Outcome::Going : flush();
}

ScanRun::Outcome ScanRun::strike(const Fault& fault) {
  const std::string where = " on page " + std::to_string(fault.page);
  if (fault.kind == FaultKind::Device) return fail(fault.deviceError, "a fault was asked for" + where);
  const bool isSent = connection_.send(buffer_);
  buffer_.clear();
  if (!isSent) return Outcome::Lost;
  switch (fault.kind) {
    case FaultKind::Disconnect:
      log_.note("closing the connection, as asked for" + where);
      connection_.close();
      break;
    case FaultKind::Reset:
      log_.note("resetting the connection, as asked for" + where);
      connection_.reset();
      break;
    case FaultKind::Silence:
      log_.note("falling silent, as asked for" + where);
      connection_.playDead();
      break;
    case FaultKind::Device:
      break;
  }
  return Outcome::Lost;
}

ScanRun::Outcome ScanRun::flush() {
  const bool isSent = connection_.send(buffer_);
  buffer_.clear();
  return isSent ? heedCommands() : Outcome::Lost;
}

// Between two records: the host may abort, and nothing else.
ScanRun::Outcome ScanRun::heedCommands() {
  const auto command = connection_.takeCommand();
  if (!command) return Outcome::Going;
  if (const auto* bad = std::get_if<BadFrame>(&*command)) {
    return fail(DeviceError::SettingsNotPossible,
                "malformed command during the scan: " + bad->sentence + ": " + hexBytes(bad->bytes));
  }
  const auto& frame = std::get<Frame>(*command);
  const bool isFirst = device_.profile.generation() == Generation::First;
  if (frame.mnemonic != (isFirst ? "R" : "ABT")) {
    return fail(DeviceError::SettingsNotPossible, "only an abort is possible during a scan: " + hexBytes(frame.bytes));
  }
  Abort abort;
  if (const auto refusal = isFirst ? gen1::readNoLines(frame) : gen2::readAbort(frame, abort)) {
    return fail(DeviceError::SettingsNotPossible,
                "abort refused: " + refusal->sentence + ": " + hexBytes(refusal->bytes));
  }
  log_.detail("<- " + hexBytes(frame.bytes) + "  " + frame.mnemonic);
  ejection_ = abort.ejection;
  return endWith(stream_.stoppedByHost(), Outcome::Ended);
}

ScanRun::Outcome ScanRun::endWith(const Bytes& record, Outcome outcome) {
  buffer_.insert(buffer_.end(), record.begin(), record.end());
  log_.detail("-> " + hexBytes(record) + "  end of the image stream");
  const bool isSent = connection_.send(buffer_);
  buffer_.clear();
  return isSent ? outcome : Outcome::Lost;
}

ScanRun::Outcome ScanRun::fail(std::uint8_t code, const std::string& why) {
  log_.note("scan ended with device error " + hexCode(code) + ": " + why);
  return endWith(stream_.deviceError(code), Outcome::Ended);
}

ScanRun::Outcome ScanRun::fail(DeviceError error, const std::string& why) {
  return fail(codeOf(error, device_.profile.generation()), why);
}

void ScanRun::eject() {
  if (scan_.path == Path::Flatbed) return;
  std::size_t gone = plans_[std::min(currentPlan_, plans_.size() - 1)].sheet + 1;
  if (ejection_ == Ejection::None) --gone;
  for (std::size_t i = 0; i < gone; ++i) device_.feeder.eject(sheets_[i]);
  if (ejection_ == Ejection::All) device_.feeder.ejectAll();
  device_.feeder.scanEnded();
}

}  // namespace vscan
