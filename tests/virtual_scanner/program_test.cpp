// The program as people start it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "gen1_host.h"
#include "sheet_makers.h"

extern char** environ;

namespace vscan {
namespace {

class Program {
 public:
  explicit Program(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QS_VIRTUAL_SCANNER);
    std::vector<char*> argv;
    for (auto& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    int out[2];
    int err[2];
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) return;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    ::posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    if (::posix_spawn(&pid_, QS_VIRTUAL_SCANNER, &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    ::close(err[1]);
    out_ = UniqueFd(out[0]);
    err_ = UniqueFd(err[0]);
  }
  ~Program() {
    if (pid_ > 0) end(SIGKILL);
  }

  std::string outLine() { return lineOf(out_.get()); }
  std::string errLine() { return lineOf(err_.get()); }

  // The exit code after a signal, or without one for signal 0; -1 when the program was killed.
  int end(int signal) {
    if (signal != 0) ::kill(pid_, signal);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  static std::string lineOf(int fd) {
    std::string line;
    char byte = 0;
    while (::read(fd, &byte, 1) == 1 && byte != '\n') line += byte;
    return line;
  }

  pid_t pid_ = -1;
  UniqueFd out_;
  UniqueFd err_;
};

TEST(Program, ItTellsItsPortServesAndEndsCleanlyOnASignal) {
  const test::TempFolder folder;
  test::writePng(folder.file("sheet.png"), test::patternOf(40, 30, 3), 300);
  for (const int signal : {SIGTERM, SIGINT}) {
    Program program({"--listen", "127.0.0.1:0", "--set", "compressType[2]=3", "--fault", "reset@page=9",
                     folder.file("sheet.png"), "--reload"});
    const std::string line = program.outLine();
    ASSERT_TRUE(line.starts_with("listening on 127.0.0.1:")) << line;
    test::Host host = test::Host::connectTcp(std::stoi(line.substr(line.rfind(':') + 1)));
    host.send(test::settingsFrame());
    EXPECT_EQ(host.receiveFramed().at(0), 0);
    host.send(test::startFrame("AUTO"));
    EXPECT_EQ(host.receiveScan().endStatus, 0x20);
    host.send(test::settingsFrame({{"CLR", "GRAY256"}}));
    EXPECT_EQ(host.receiveFramed().at(0), 0xA4);
    EXPECT_EQ(program.end(signal), 0);
  }
}

int portIn(const std::string& line) {
  const auto colon = line.find(':', line.find("127.0.0.1"));
  return std::stoi(line.substr(colon + 1));
}

TEST(Program, SeveralScannersServeAtTheSameTimeEachInItsGeneration) {
  const test::TempFolder folder;
  test::writePng(folder.file("sheet.png"), test::patternOf(48, 30, 1), 300);
  Program program({"--reload", "--scanner", "front desk", "--listen", "127.0.0.1:0", folder.file("sheet.png"),
                   "--scanner=attic", "--profile", "classic", "--listen", "127.0.0.1:0", folder.file("sheet.png"),
                   "--scanner", "lab", "--profile", "flatbed", "--unix", folder.file("lab")});
  const std::string first = program.outLine();
  const std::string second = program.outLine();
  ASSERT_TRUE(first.starts_with("listening on 127.0.0.1:") && first.ends_with(" as front desk")) << first;
  ASSERT_TRUE(second.ends_with(" as attic")) << second;
  EXPECT_EQ(program.outLine(), "listening on unix:" + folder.file("lab") + " as lab");
  test::Host office = test::Host::connectTcp(portIn(first));
  test::Host classic = test::Host::connectTcp(portIn(second));
  for (int repeat = 0; repeat < 2; ++repeat) {
    office.send(test::settingsFrame({{"CLR", "GRAY256"}}));
    EXPECT_EQ(office.receiveFramed().at(0), 0);
    classic.send(test::startFrame1({{"M", "GRAY256"}, {"C", "NONE"}, {"A", "0,0,48,30"}}));
    office.send(test::startFrame("AUTO"));
    EXPECT_EQ(test::receiveFirstScan(classic).endStatus, 0x80);
    EXPECT_EQ(office.receiveScan().endStatus, 0x20);
  }
  EXPECT_EQ(program.end(SIGTERM), 0);
}

TEST(Program, AButtonIsPressedAtTheStartAndWhileItRuns) {
  const test::TempFolder folder;
  Program program({"--listen", "127.0.0.1:0", "--control", folder.file("control"), "--button", "ocr"});
  test::Host host = test::Host::connectTcp(portIn(program.outLine()));
  host.send("\x1BGKP\n\x80");
  EXPECT_EQ(host.receiveFramed().at(8 + 4), 2);
  Program owner({"--tell", folder.file("control"), "button email resolution=300"});
  EXPECT_EQ(owner.outLine(), "ok");
  EXPECT_EQ(owner.end(0), 0);
  host.send("\x1BGKP\n\x80");
  EXPECT_EQ(host.receiveFramed().at(8 + 4), 3);
  Program wrong({"--tell", folder.file("control"), "button fax"});
  EXPECT_TRUE(wrong.outLine().starts_with("error: there is no button \"fax\""));
  EXPECT_EQ(wrong.end(0), 2);
  EXPECT_EQ(program.end(SIGTERM), 0);
  Program nobody({"--tell", folder.file("control"), "button none"});
  EXPECT_NE(nobody.errLine().find("cannot reach a scanner behind"), std::string::npos);
  EXPECT_EQ(nobody.end(0), 2);
}

TEST(Program, TheHelpNamesEveryFault) {
  Program program({"--help"});
  std::string help;
  for (std::string line = program.outLine(); !line.starts_with("Exit codes"); line = program.outLine()) {
    help += line + "\n";
    ASSERT_LE(line.size(), 120u) << line;
    ASSERT_LE(help.size(), 20000u);
  }
  for (const char* name : {"disconnect", "silence", "timer-extend", "drip", "cover-open", "busy", "locked"}) {
    EXPECT_NE(help.find(name), std::string::npos) << name;
  }
  EXPECT_EQ(program.end(0), 0);
}

TEST(Program, AWrongRequestEndsItWithASentence) {
  const test::TempFolder folder;
  const struct {
    std::vector<std::string> arguments;
    const char* words;
  } rows[] = {
      {{"/nonexistent/sheet.png"}, "cannot open /nonexistent/sheet.png: No such file or directory"},
      {{"--profile", "nosuch"}, "there is no profile \"nosuch\""},
      {{"--set", "duplex=999"}, "duplex holds values from 0 to 255"},
      {{"--fault", "explode@page=1"}, "there is no fault \"explode\""},
      {{"--listen", "127.0.0.1"}, "write HOST:PORT"},
      {{"--button", "fax"}, "there is no button \"fax\""},
      {{"--profile", "flatbed", "--button", "image"}, "does not offer this button"},
      {{"--profile", "flatbed", "sheet.png"}, "cannot open sheet.png"},
      {{"--scanner", "one", "--listen", "127.0.0.1:0", "--scanner", "two", "--profile", "nosuch"},
       "scanner two: there is no profile"},
  };
  for (const auto& row : rows) {
    Program program(row.arguments);
    const std::string line = program.errLine();
    EXPECT_NE(line.find(row.words), std::string::npos) << line;
    EXPECT_EQ(program.end(0), 2);
  }
}

}  // namespace
}  // namespace vscan
