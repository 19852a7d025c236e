#include "scan_test.h"

#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace e2e {
namespace {

constexpr char kListening[] = "listening on ";

bool namesPlace(const Arguments& arguments) {
  for (const auto& argument : arguments) {
    if (argument == "--listen" || argument == "--unix") return true;
  }
  return false;
}

}  // namespace

VirtualScanner::VirtualScanner(const TemporaryFolder& folder, Arguments arguments) {
  static std::atomic<int> made{0};
  const std::string name = folder.file("scanner" + std::to_string(++made));
  if (!namesPlace(arguments)) arguments.insert(arguments.begin(), {"--listen", "127.0.0.1:0"});
  arguments.insert(arguments.begin(), {QS_VIRTUAL_SCANNER, "--verbose"});
  process_ = std::make_unique<Process>(arguments, name + ".out", name + ".err");
  if (!process_->waitForText(process_->outPath(), "\n", kPatience)) {
    throw std::runtime_error("the virtual scanner did not start: " + log());
  }
  std::string line = contentOf(process_->outPath());
  line.erase(line.find('\n'));
  if (!line.starts_with(kListening)) throw std::runtime_error("the virtual scanner said: " + line);
  address_ = line.substr(sizeof kListening - 1);
}

VirtualScanner::~VirtualScanner() {
  EXPECT_TRUE(process_->isRunning()) << "the virtual scanner ended by itself";
  process_->send(SIGTERM);
  const auto exit = process_->wait(kPatience);
  EXPECT_TRUE(exit.inTime) << "the virtual scanner had to be killed";
  EXPECT_EQ(exit.code, 0) << log();
}

std::vector<std::string> VirtualScanner::commands() const {
  std::vector<std::string> frames;
  std::istringstream lines(log());
  for (std::string line; std::getline(lines, line);) {
    const auto arrow = line.find("<- ");
    if (arrow == std::string::npos) continue;
    std::string frame;
    const char* place = line.c_str() + arrow + 3;
    unsigned byte = 0;
    for (int used = 0; std::sscanf(place, "%2X%n", &byte, &used) == 1 && used == 2; place += 2) {
      frame += static_cast<char>(byte);
      if (place[2] == ' ') ++place;
    }
    frames.push_back(frame);
  }
  return frames;
}

bool VirtualScanner::wasTold(const std::string& line) const {
  for (const std::string& frame : commands()) {
    if (frame.find("\n" + line + "\n") != std::string::npos) return true;
  }
  return false;
}

ScanTest::ScanTest() {
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) ::setenv(variable, "/dev/null/none", 1);
}

std::string ScanTest::sheet(const std::string& name, const Picture& picture) const {
  writePng(file(name), picture);
  return file(name);
}

VirtualScanner& ScanTest::startScanner(Arguments arguments) {
  scanners_.push_back(std::make_unique<VirtualScanner>(folder_, std::move(arguments)));
  return *scanners_.back();
}

std::unique_ptr<Process> ScanTest::start(Arguments arguments) const {
  const std::string name = file("qsscan" + std::to_string(++runs_));
  arguments.insert(arguments.begin(), QSSCAN_PROGRAM);
  return std::make_unique<Process>(arguments, name + ".out", name + ".err");
}

std::unique_ptr<Process> ScanTest::startScan(const std::string& address, const Arguments& arguments) const {
  Arguments all = {"scan", "-d", address};
  all.insert(all.end(), arguments.begin(), arguments.end());
  return start(all);
}

Finished ScanTest::finish(Process& process, std::chrono::seconds patience) const {
  Finished run;
  run.exit = process.wait(patience);
  run.out = contentOf(process.outPath());
  run.err = contentOf(process.errPath());
  return run;
}

Finished ScanTest::qsscan(const Arguments& arguments) const { return finish(*start(arguments)); }

void ScanTest::writeText(const std::string& name, const std::string& text) const {
  writeBytes(file(name), {text.begin(), text.end()});
}

std::string scannerProgram() { return QS_VIRTUAL_SCANNER; }

std::string paperOf(int widthPx, int heightPx, int dpi) {
  char text[64];
  // Rounded up to the hundredths of a millimetre that a size is told in: a broken pixel is left out later.
  const auto mm = [dpi](int px) { return std::ceil(px * 2540.0 / dpi) / 100; };
  std::snprintf(text, sizeof text, "%.2fx%.2f", mm(widthPx), mm(heightPx));
  return text;
}

::testing::AssertionResult endedWith(int code, const Finished& run) {
  if (!run.exit.inTime) return ::testing::AssertionFailure() << "qsscan did not end by itself; " << run.all();
  if (run.exit.code != code) return ::testing::AssertionFailure() << "expected " << code << "; " << run.all();
  return ::testing::AssertionSuccess();
}

}  // namespace e2e
