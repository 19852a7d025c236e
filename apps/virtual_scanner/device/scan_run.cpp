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

// A large page takes a while; a host that aborts or goes meanwhile is not to wait for it.
ScanRun::Outcome ScanRun::awaitPage() {
  constexpr auto kStep = std::chrono::milliseconds(20);
  while (upcoming_.wait_for(kStep) != std::future_status::ready) {
    if (!connection_.collect()) return Outcome::Lost;
    const Outcome outcome = heedCommands();
    if (outcome != Outcome::Going) return outcome;
  }
  return Outcome::Going;
}

ScanRun::Outcome ScanRun::sendPages() {
  upcoming_ = startMaking(0);
  for (currentPlan_ = 0; currentPlan_ < plans_.size(); ++currentPlan_) {
    Outcome outcome = awaitPage();
    if (outcome != Outcome::Going) return outcome;
    try {
      page_ = upcoming_.get();
      upcoming_ = startMaking(currentPlan_ + 1);
      outcome = sendPage();
    } catch (const Failure& failure) {
      outcome = fail(DeviceError::InternalFault, failure.what());
    } catch (const std::bad_alloc&) {
      outcome = fail(DeviceError::OutOfMemory, "there is not enough memory for the page");
    }
    if (outcome != Outcome::Going) return outcome;
  }
  return endWith(stream_.allPagesEnd(), Outcome::Finished);
}

ScanRun::Outcome ScanRun::sendPage() {
  pageNumber_ = static_cast<std::uint16_t>(currentPlan_ + 1);
  pageBytes_ = 0;
  isCutShort_ = false;
  faults_.clear();
  for (Fault& fault : device_.options.faults) {
    if (fault.page == pageNumber_ && !fault.isSpent()) faults_.push_back(&fault);
  }
  const bool whiteLines = page_.color == PageColor::Mono
                              ? device_.options.whiteLinesInMono
                              : page_.color == PageColor::Grey && device_.options.whiteLinesInGrey;
  const auto records = stream_.cut(pageNumber_, page_, whiteLines);
  Outcome outcome = sendLines(*records);
  if (outcome != Outcome::Going) return outcome;
  const int lines = page_.heightPx;
  outcome = sendRecord(stream_.findings(pageNumber_, page_), lines, lines);
  // A place behind the last line is the page's end.
  while (outcome == Outcome::Going && !faults_.empty()) {
    Fault& fault = *faults_.front();
    faults_.erase(faults_.begin());
    Bytes nothing;
    std::size_t done = 0;
    outcome = strike(fault, nothing, done);
  }
  if (outcome == Outcome::Going) outcome = pace();
  if (outcome == Outcome::Going) outcome = sendRecord(stream_.pageEnd(pageNumber_, page_), lines, lines);
  return outcome == Outcome::Going ? flush() : outcome;
}

ScanRun::Outcome ScanRun::sendLines(PageRecords& records) {
  Bytes record;
  int linesBefore = 0;
  while (!isCutShort_ && records.next(record)) {
    const Outcome outcome = sendRecord(std::move(record), linesBefore, records.linesDone());
    if (outcome != Outcome::Going) return outcome;
    linesBefore = records.linesDone();
    record.clear();
  }
  return Outcome::Going;
}

ScanRun::Outcome ScanRun::sendRecord(Bytes record, int linesBefore, int linesAfter) {
  const RecordSpan span{pageBytes_, static_cast<std::int64_t>(record.size()), linesBefore, linesAfter};
  pageBytes_ += span.bytes;
  std::size_t done = 0;
  std::size_t cut = 0;
  const auto pass = [&](std::size_t end) {
    buffer_.insert(buffer_.end(), record.begin() + static_cast<std::ptrdiff_t>(done),
                   record.begin() + static_cast<std::ptrdiff_t>(end));
    done = end;
  };
  while (Fault* const fault = takeFault(record, span, cut)) {
    if (cut > done) pass(std::min(cut, record.size()));
    const Outcome outcome = strike(*fault, record, done);
    if (outcome != Outcome::Going) return outcome;
  }
  pass(record.size());
  return buffer_.size() < kFlushBytes ? Outcome::Going : flush();
}

// Waits, hearing an abort.
ScanRun::Outcome ScanRun::waitUntil(Connection::Clock::time_point time) {
  while (Connection::Clock::now() < time) {
    if (!connection_.idleUntil(time)) return Outcome::Lost;
    const Outcome outcome = heedCommands();
    if (outcome != Outcome::Going) return outcome;
  }
  return Outcome::Going;
}

// Holds the page's end back until the paper would have passed.
ScanRun::Outcome ScanRun::pace() {
  if (device_.options.pagesPerMinute <= 0) return Outcome::Going;
  const Outcome flushed = flush();
  if (flushed != Outcome::Going) return flushed;
  const std::chrono::duration<double> perPage((scan_.settings.isQuiet ? 2 : 1) * 60 / device_.options.pagesPerMinute);
  nextPageMayEnd_ = std::max(nextPageMayEnd_, Connection::Clock::now() - std::chrono::seconds(1)) +
                    std::chrono::duration_cast<Connection::Clock::duration>(perPage);
  return waitUntil(nextPageMayEnd_);
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
