// One scan, from the accepted start command to the end of its image stream:
//   1. check that there is paper
//   2. per page: make the next page on a thread of its own while the records of this one go out
//   3. all pages ended, or the record that tells why not
//   4. eject
// Threads: used by the thread that serves the connection.
#pragma once
#include <cstdint>
#include <future>
#include <string>
#include <vector>

#include "device/device.h"
#include "net/connection.h"
#include "protocol/device_errors.h"
#include "protocol/stream.h"

namespace vscan {

class ScanRun {
 public:
  ScanRun(Device& device, Connection& connection, Log& log, const GrantedScan& scan, const StartSettings& start);

  // Returns when the stream has ended or the connection has; connection.isOpen() tells the latter.
  void run();

 private:
  enum class Outcome { Going, Finished, Ended, Lost };

  // One page as it will come: whose face it is and which sheet it belongs to.
  struct Plan {
    PageSource source;
    std::size_t sheet = 0;
  };

  void planPages();
  std::future<Page> startMaking(std::size_t index) const;
  Outcome awaitPage();
  Outcome sendPages();
  Outcome sendPage();
  Outcome sendLines(PageRecords& records);
  Outcome sendRecord(Bytes record, int linesBefore, int linesAfter);
  Fault* takeFault(const Bytes& record, const RecordSpan& span, std::size_t& cut);
  Outcome strike(Fault& fault, Bytes& record, std::size_t& done);
  Outcome waitUntil(Connection::Clock::time_point time);
  Outcome pace();
  Outcome flush();
  Outcome heedCommands();
  Outcome endWith(const Bytes& record, Outcome outcome);
  Outcome fail(std::uint8_t code, const std::string& why);
  Outcome fail(DeviceError error, const std::string& why);
  void eject();

  Device& device_;
  Connection& connection_;
  Log& log_;
  const GrantedScan scan_;
  const StartSettings start_;
  const Stream& stream_;

  std::vector<FedSheet> sheets_;
  std::vector<Plan> plans_;
  std::size_t currentPlan_ = 0;
  Ejection ejection_ = Ejection::NotSaid;

  // The page that is going out.
  Connection::Clock::time_point nextPageMayEnd_{};
  std::uint16_t pageNumber_ = 0;
  Page page_;
  std::vector<Fault*> faults_;  // of this page that have not struck yet
  std::int64_t pageBytes_ = 0;
  bool isCutShort_ = false;  // by a fault: no more lines
  Bytes buffer_;

  // The page that is being made. Last: what its thread reads must outlive it.
  std::future<Page> upcoming_;
};

}  // namespace vscan
