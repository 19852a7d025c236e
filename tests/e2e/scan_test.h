// The fixture of the end-to-end tests: the real scanner program, the real scanning program, and files between them.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "likeness.h"
#include "picture.h"
#include "process.h"
#include "temporary_folder.h"

namespace e2e {

using Arguments = std::vector<std::string>;

// No wait of a test is longer, also in builds that are slowed down by sanitizers.
constexpr std::chrono::seconds kPatience{240};
// What "within seconds" means to somebody who waits for a failure to be told.
constexpr double kPromptSeconds = 10;

// qs-virtual-scanner with its sheets. It is ended with the object, and must then have ended well.
class VirtualScanner {
 public:
  // On a free port of the loopback unless the arguments name a place to listen on.
  VirtualScanner(const TemporaryFolder& folder, Arguments arguments);
  ~VirtualScanner();

  // As qsscan -d takes it.
  const std::string& address() const { return address_; }
  pid_t pid() const { return process_->pid(); }
  // What it has told on stderr, every command and answer included.
  std::string log() const { return contentOf(process_->errPath()); }
  // The commands it has got, as text, one frame each.
  std::vector<std::string> commands() const;
  // Whether a command held this line, such as COMP=JPEG.
  bool wasTold(const std::string& line) const;

 private:
  std::unique_ptr<Process> process_;
  std::string address_;
};

// What one run of qsscan left behind.
struct Finished {
  Process::Exit exit;
  std::string out;
  std::string err;
  std::string all() const { return "exit code " + std::to_string(exit.code) + "\n" + err + out; }
};

// Scanners of one's own and runs of qsscan may be started by several threads.
class ScanTest : public ::testing::Test {
 protected:
  // Away from what the one who runs the tests has configured and scanned.
  ScanTest();

  std::string file(const std::string& name) const { return folder_.file(name); }
  bool exists(const std::string& name) const { return folder_.names().contains(name); }
  // Writes a PNG and gives its path.
  std::string sheet(const std::string& name, const Picture& picture) const;

  // A scanner that lives as long as the test.
  VirtualScanner& startScanner(Arguments arguments);
  // Starts "qsscan scan -d address ..."; finish() waits for it.
  std::unique_ptr<Process> startScan(const std::string& address, const Arguments& arguments) const;
  Finished finish(Process& process, std::chrono::seconds patience = kPatience) const;
  Finished scan(const std::string& address, const Arguments& arguments) const {
    return finish(*startScan(address, arguments));
  }
  // Starts qsscan with these arguments.
  std::unique_ptr<Process> start(Arguments arguments) const;
  Finished qsscan(const Arguments& arguments) const;
  void writeText(const std::string& name, const std::string& text) const;

  TemporaryFolder folder_;

 private:
  mutable std::atomic<int> runs_{0};
  std::vector<std::unique_ptr<VirtualScanner>> scanners_;
};

// The path of qs-virtual-scanner.
std::string scannerProgram();

// A paper size in mm for --page-size that is that many pixels at the resolution.
std::string paperOf(int widthPx, int heightPx, int dpi);

// Passes when qsscan ended with that exit code, in time.
::testing::AssertionResult endedWith(int code, const Finished& run);

}  // namespace e2e
