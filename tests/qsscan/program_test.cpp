// The program as people run it, on a library without a device.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "apps/qsscan/exit_codes.h"
#include "temporary_folder.h"

namespace {

using namespace std::chrono_literals;
using namespace qsscan_test;
using Names = std::set<std::string>;

struct Finished {
  int exitCode = -1;
  std::string out, err;
};

class Program {
 public:
  // Starts the program with the fake library scripted by script; standard output and error go to files of the folder.
  Program(const TemporaryFolder& folder, const std::string& script, std::vector<std::string> words) : folder_(folder) {
    ::setenv("QSSCAN_FAKE", script.c_str(), 1);
    ::setenv("QSSCAN_LIBRARY", QSSCAN_FAKE_LIBRARY, 1);
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) ::setenv(variable, "/dev/null/none", 1);
    words.insert(words.begin(), QSSCAN_PROGRAM);
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, 1, folder.file("out").c_str(), kFlags, 0666);
    posix_spawn_file_actions_addopen(&actions, 2, folder.file("err").c_str(), kFlags, 0666);
    // As from a terminal, whatever the one who runs the tests has set.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGINT);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    EXPECT_EQ(::posix_spawn(&pid_, QSSCAN_PROGRAM, &actions, &attributes, argv.data(), environ), 0);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }

  void interrupt() { ::kill(pid_, SIGINT); }

  Finished wait() {
    int status = 0;
    ::waitpid(pid_, &status, 0);
    Finished finished;
    finished.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    finished.out = folder_.content("out");
    finished.err = folder_.content("err");
    std::filesystem::remove(folder_.file("out"));
    std::filesystem::remove(folder_.file("err"));
    return finished;
  }

 private:
  const TemporaryFolder& folder_;
  pid_t pid_ = -1;
};

// Waits until the file is there; false when it takes too long.
bool appears(const TemporaryFolder& folder, const std::string& name) {
  const auto until = std::chrono::steady_clock::now() + 20s;
  while (std::chrono::steady_clock::now() < until) {
    if (std::filesystem::exists(folder.file(name))) return true;
    std::this_thread::sleep_for(5ms);
  }
  return false;
}

TEST(Program, ScansIntoAPdfAndSaysSo) {
  const TemporaryFolder folder;
  const std::string pdf = folder.file("a.pdf");
  const auto finished = Program(folder, "pages=2", {"scan", "-d", "host", "-o", pdf, "-p"}).wait();
  EXPECT_EQ(finished.exitCode, 0);
  EXPECT_EQ(finished.out, "");
  EXPECT_NE(finished.err.find("Page 2: 3 x 3 mm, 40 x 30 pixels, 300 dpi"), std::string::npos) << finished.err;
  EXPECT_NE(finished.err.find("2 pages in " + pdf), std::string::npos);
  EXPECT_EQ(folder.content("a.pdf").substr(0, 5), "%PDF-");
}

TEST(Program, StandardOutputCarriesTheDocumentAndNothingElse) {
  const TemporaryFolder folder;
  const auto pdf = Program(folder, "pages=2", {"scan", "-d", "host", "-o", "-"}).wait();
  EXPECT_EQ(pdf.exitCode, 0);
  EXPECT_EQ(pdf.out.substr(0, 5), "%PDF-");
  EXPECT_EQ(pdf.out.substr(pdf.out.size() - 6), "%%EOF\n");
  const auto png = Program(folder, "pages=1", {"scan", "-d", "host", "-o", "-", "--format", "png"}).wait();
  EXPECT_EQ(png.exitCode, 0);
  EXPECT_EQ(png.out.substr(1, 3), "PNG");
  const auto two = Program(folder, "pages=2", {"scan", "-d", "host", "-o", "-", "--format", "png"}).wait();
  EXPECT_EQ(two.exitCode, 10);
  EXPECT_NE(two.err.find("Standard output takes one page"), std::string::npos);
}

TEST(Program, JsonTellsTheResultAndTheProgress) {
  const TemporaryFolder folder;
  const std::string pdf = folder.file("a.pdf");
  const auto finished =
      Program(folder, "pages=2 fail=50000002", {"scan", "-d", "host", "-o", pdf, "--json", "--progress=json"}).wait();
  EXPECT_EQ(finished.exitCode, 4);
  const auto json = nlohmann::json::parse(finished.out);
  EXPECT_EQ(json["exitCode"], 4);
  EXPECT_EQ(json["result"], "0x50000002");
  EXPECT_EQ(json["files"], std::vector<std::string>{pdf});
  EXPECT_EQ(json["pages"].size(), 2u);
  const auto event = nlohmann::json::parse(finished.err.substr(0, finished.err.find('\n')));
  EXPECT_EQ(event["event"], "page");
  EXPECT_EQ(event["number"], 1);
}

TEST(Program, AFullDiskKeepsThePagesThatFittedAndCountsTheOthers) {
  const TemporaryFolder folder;
  for (const char* ending : {"pdf", "tif"}) {
    SCOPED_TRACE(ending);
    const std::string name = folder.file(std::string("a.") + ending);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit tight{9000, before.rlim_max};  // of 13 KB and more
    ::setrlimit(RLIMIT_FSIZE, &tight);
    Program program(folder, "pages=8 width=300 height=200",
                    {"scan", "-d", "host", "-o", name, "--compression", "lossless", "--json"});
    ::setrlimit(RLIMIT_FSIZE, &before);
    const Finished told = program.wait();
    EXPECT_EQ(told.exitCode, 10) << told.err;
    const auto json = nlohmann::json::parse(told.out);
    const std::size_t kept = json["pages"].size();
    EXPECT_GT(kept, 0u);
    EXPECT_GE(json["lostPages"], 1);
    EXPECT_LE(kept + json["lostPages"].get<std::size_t>(), 8u);
    EXPECT_NE(told.err.find("kept in " + name), std::string::npos) << told.err;
    EXPECT_NE(told.err.find("lost: scan"), std::string::npos) << told.err;
    EXPECT_EQ(folder.names(), Names{std::string("a.") + ending});
    std::filesystem::remove(name);
  }
}

TEST(Program, FailuresBeforeTheScanAreJsonToo) {
  const TemporaryFolder folder;
  const auto finished = Program(folder, "caps=40210011", {"info", "-d", "host", "--json"}).wait();
  EXPECT_EQ(finished.exitCode, 2);
  EXPECT_EQ(nlohmann::json::parse(finished.out)["result"], "0x40210011");
}

TEST(Program, InfoShowsTheDevice) {
  const TemporaryFolder folder;
  const auto text = Program(folder, "", {"info", "-d", "host"}).wait();
  EXPECT_EQ(text.exitCode, 0);
  EXPECT_NE(text.out.find("flatbed, adf, adf-duplex"), std::string::npos);
  const auto json = Program(folder, "", {"info", "-d", "host", "--json"}).wait();
  EXPECT_EQ(nlohmann::json::parse(json.out)["feederCapacity"], 50);
}

TEST(Program, AMissingOrWrongLibraryIsASentence) {
  const TemporaryFolder folder;
  const auto missing = Program(folder, "", {"info", "-d", "host", "--library", "/nonexistent/x.so"}).wait();
  EXPECT_EQ(missing.exitCode, 11);
  EXPECT_NE(missing.err.find("could not be loaded"), std::string::npos);
  const auto wrong = Program(folder, "", {"info", "-d", "host", "--library", "/etc/passwd"}).wait();
  EXPECT_EQ(wrong.exitCode, 11);
}

TEST(Program, AUsbDeviceIsAskedLikeAnyOther) {
  const TemporaryFolder folder;
  const Finished finished = Program(folder, "", {"info", "-d", "usb:fff0:00a1"}).wait();
  EXPECT_EQ(finished.exitCode, 0) << finished.err;
  EXPECT_NE(finished.out.find("usb:fff0:00a1"), std::string::npos) << finished.out;
}

TEST(Program, ABusyUsbDeviceIsToldFromAnAbsentOne) {
  const TemporaryFolder folder;
  const struct {
    const char* outcome;
    int exitCode;
    const char* partOfSentence;
  } rows[] = {{"4050000B:0", 2, "plugged in"}, {"4050000C:10", 6, "another program"}, {"4050000D:d", 2, "You may not"}};
  for (const auto& row : rows) {
    ::setenv("QSSCAN_FAKE_OPEN", row.outcome, 1);
    for (const std::string command : {"info", "scan"}) {
      const auto told = Program(folder, "caps=40210012", {command, "-d", "usb:fff0:00a1", "--json"}).wait();
      EXPECT_EQ(told.exitCode, row.exitCode) << told.err;
      EXPECT_NE(told.err.find(row.partOfSentence), std::string::npos) << told.err;
      EXPECT_EQ(nlohmann::json::parse(told.out)["result"], "0x40210012");
    }
  }
  ::unsetenv("QSSCAN_FAKE_OPEN");
}

TEST(Program, CtrlCKeepsTheFinishedPages) {
  const TemporaryFolder folder;
  Program program(folder, "pages=100000 polls=5", {"scan", "-d", "host", "--batch", folder.file("p%d.png"), "--json"});
  ASSERT_TRUE(appears(folder, "p5.png"));
  program.interrupt();
  const auto finished = program.wait();
  EXPECT_EQ(finished.exitCode, 130);
  const auto json = nlohmann::json::parse(finished.out);
  EXPECT_GE(json["pages"].size(), 5u);
  EXPECT_EQ(json["pages"].size(), json["files"].size());
  EXPECT_EQ(json["files"].size(), folder.names().size()) << "complete files and nothing else";
}

TEST(Program, ASecondCtrlCCompletesTheFilesAndLeavesAtOnce) {
  const TemporaryFolder folder;
  const std::string pdf = folder.file("a.pdf");
  Program program(folder, "pages=3 silence deaf", {"scan", "-d", "host", "-o", pdf, "--progress=json", "--json"});
  while (folder.content("err").find("\"number\":3") == std::string::npos) std::this_thread::sleep_for(5ms);
  program.interrupt();
  std::this_thread::sleep_for(300ms);
  const auto start = std::chrono::steady_clock::now();
  program.interrupt();
  const auto finished = program.wait();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s) << "the device would have been waited for";
  EXPECT_EQ(finished.exitCode, 130);
  EXPECT_EQ(nlohmann::json::parse(finished.out)["pages"].size(), 3u);
  EXPECT_EQ(folder.names(), Names{"a.pdf"});
  EXPECT_EQ(folder.content("a.pdf").substr(0, 5), "%PDF-");
}

TEST(Program, AnInterruptWaitsTwoSecondsForSlowFilesAndNoLonger) {
  const TemporaryFolder folder;
  Program program(folder, "pages=100 aftercancel=100 width=4000 height=4000 depth=24",
                  {"scan", "-d", "host", "--batch", folder.file("p%d.png"), "--progress=json", "--json"});
  while (folder.content("err").find("\"number\":1,") == std::string::npos) std::this_thread::sleep_for(5ms);
  const auto start = std::chrono::steady_clock::now();
  program.interrupt();
  const auto finished = program.wait();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 8s) << "all pages would take much longer";
  EXPECT_EQ(finished.exitCode, 130);
  const auto json = nlohmann::json::parse(finished.out);
  EXPECT_EQ(json["reason"], "Interrupted. Not all pages that had come could be written in time.");
  EXPECT_GE(json["pages"].size(), 1u);
  EXPECT_LT(json["pages"].size(), 100u);
  EXPECT_EQ(folder.names().size(), json["pages"].size());
}

TEST(Program, TheManualNamesEveryOptionAndEveryFormat) {
  const TemporaryFolder folder;
  const auto help = Program(folder, "", {"scan", "--help"}).wait();
  std::ifstream in(QSSCAN_MANUAL);
  const std::string manual{std::istreambuf_iterator<char>(in), {}};
  std::istringstream lines(help.out.substr(0, help.out.find("Exit codes")));
  int options = 0;
  for (std::string line; std::getline(lines, line);) {
    const auto dashes = line.find("--");
    if (dashes == std::string::npos || dashes > 6) continue;
    const std::string option = line.substr(dashes, line.find_first_of(" =[,", dashes) - dashes);
    EXPECT_NE(manual.find("`" + option), std::string::npos) << option;
    ++options;
  }
  EXPECT_GT(options, 30);
  EXPECT_NE(help.out.find("pdf, tiff, png, jpeg or pnm"), std::string::npos);
}

TEST(Program, HelpAndManualShowEveryExitCode) {
  const TemporaryFolder folder;
  const auto help = Program(folder, "", {"scan", "--help"}).wait();
  EXPECT_EQ(help.exitCode, 0);
  std::ifstream in(QSSCAN_MANUAL);
  const std::string manual{std::istreambuf_iterator<char>(in), {}};
  for (const qsscan::ExitCodeRow& row : qsscan::exitCodeTable()) {
    const std::string number = std::to_string(static_cast<int>(row.code));
    EXPECT_NE(help.out.find(" " + number + "  " + row.meaning), std::string::npos) << row.meaning;
    EXPECT_NE(manual.find("| " + number + " | " + row.meaning + " |"), std::string::npos) << row.meaning;
  }
}

}  // namespace
