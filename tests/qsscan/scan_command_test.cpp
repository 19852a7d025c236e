#include "apps/qsscan/scan_command.h"

#include <gtest/gtest.h>

#include <csignal>

#include "apps/qsscan/connect.h"
#include "apps/qsscan/exit_codes.h"
#include "fake_scan_core.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using namespace qsscan_test;
using Names = std::set<std::string>;

void neverLeave(const ScanReport&, const Options&) { FAIL() << "left at once"; }

class ScanCommand : public testing::Test {
 protected:
  ScanCommand() {
    options.device = "host";
    options.wish.paper = *findPaper("a4");
    options.output = {Format::kPng, "", folder.file("p%d.png")};
    script.capability = officeCapability();
    script.pages.assign(3, FakePage{});
  }

  ScanReport run() {
    FakeScanCore core(script);
    const ScanReport report = runScan(core, connect(core, options.device), options, stderr, neverLeave);
    EXPECT_EQ(core.misuse(), "");
    parameters = core.parameters();
    starts = core.starts();
    return report;
  }

  const TemporaryFolder folder;
  Options options;
  FakeScript script;
  QS_SCANNER_PARAMETERS parameters{};
  int starts = 0;
};

TEST_F(ScanCommand, ReportsPagesAndFiles) {
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kDone);
  EXPECT_EQ(report.sentence, "");
  EXPECT_EQ(report.device, "host");
  ASSERT_EQ(report.pages.size(), 3u);
  EXPECT_EQ(report.pages[2].number, 3);
  EXPECT_EQ(report.pages[2].widthPx, 40);
  EXPECT_EQ(report.files.size(), 3u);
  EXPECT_EQ(folder.names(), (Names{"p1.png", "p2.png", "p3.png"}));
  EXPECT_EQ(parameters.paperType, PAPERTYPE_A4);
  EXPECT_EQ(reportText(report), "qsscan: 3 pages in " + folder.file("p1.png") + " to " + folder.file("p3.png") + ".\n");
}

TEST_F(ScanCommand, ALoadedFeederSettlesTheAutomaticSource) {
  script.adfInserted = true;
  run();
  EXPECT_EQ(parameters.paperSource, PAPERSOURCE_ADF);
  options.wish.source = Source::kFlatbed;
  run();
  EXPECT_EQ(parameters.paperSource, PAPERSOURCE_FLATBED);
}

TEST_F(ScanCommand, AJamKeepsThePagesBeforeItAndSaysSo) {
  script.after = AfterPages::kFailure;
  script.failure = 0x50000002;
  options.output = {Format::kPdf, folder.file("a.pdf"), ""};
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kJam);
  EXPECT_EQ(report.result, 0x50000002u);
  EXPECT_EQ(report.pages.size(), 3u);
  EXPECT_EQ(folder.names(), Names{"a.pdf"});
  EXPECT_NE(reportText(report).find("3 pages kept in " + folder.file("a.pdf")), std::string::npos);
}

TEST_F(ScanCommand, AnEmptyFeederLeavesNoFile) {
  script.pages.clear();
  script.after = AfterPages::kFailure;
  script.failure = 0x50000001;
  options.output = {Format::kPdf, folder.file("a.pdf"), ""};
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kFeederEmpty);
  EXPECT_TRUE(folder.names().empty());
  EXPECT_NE(reportText(report).find("No page was kept."), std::string::npos);
}

TEST_F(ScanCommand, EachEndHasItsExitCode) {
  struct {
    AfterPages after;
    QSRSLT failure;
    ExitCode expected;
  } const rows[] = {{AfterPages::kFailure, 0x50000003, ExitCode::kCoverOpen},
                    {AfterPages::kFailure, 0x50000004, ExitCode::kBusy},
                    {AfterPages::kFailure, 0x50000007, ExitCode::kDeviceError},
                    {AfterPages::kFailure, 0x40500002, ExitCode::kConnectionLost},
                    {AfterPages::kFailure, QSRSLT_JPEG_NOT_LOADED, ExitCode::kNoLibrary},
                    {AfterPages::kFailure, QSRSLT_NO_PAGE_MEMORY, ExitCode::kInternal},
                    {AfterPages::kCanceled, 0, ExitCode::kStoppedAtDevice},
                    {AfterPages::kThreadGone, 0, ExitCode::kInternal}};
  for (const auto& row : rows) {
    script.after = row.after;
    script.failure = row.failure;
    const ScanReport report = run();
    EXPECT_EQ(report.exit, row.expected) << report.sentence;
    EXPECT_EQ(report.pages.size(), 3u);
  }
}

TEST_F(ScanCommand, NoPagesAndOnlyBlankPagesAreTold) {
  script.pages.clear();
  EXPECT_EQ(run().exit, ExitCode::kNoPages);
  script.pages.assign(2, FakePage{});
  script.pages[0].blank = script.pages[1].blank = true;
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kNoPages);
  EXPECT_EQ(report.sentence, "All pages were blank.");
  EXPECT_EQ(report.blankPages, 2);
}

TEST_F(ScanCommand, FailuresBeforeTheScanAreThrownWithTheirCode) {
  struct {
    QSRSLT FakeScript::*step;
    QSRSLT code;
    ExitCode expected;
  } const rows[] = {{&FakeScript::initializeResult, QSRSLT_DEVICE_ACCESS_NOT_LOADED, ExitCode::kNoLibrary},
                    {&FakeScript::selectResult, QSRSLT_EMPTY_DEVICE, ExitCode::kUsage},
                    {&FakeScript::capabilityResult, QSRSLT_CMD_NOT_OPENED, ExitCode::kNotReachable},
                    {&FakeScript::capabilityResult, 0x102400B0, ExitCode::kBusy}};
  const FakeScript good = script;
  for (const auto& row : rows) {
    script = good;
    script.*row.step = row.code;
    try {
      run();
      ADD_FAILURE() << "no error for " << std::hex << row.code;
    } catch (const CommandError& error) {
      EXPECT_EQ(error.code(), row.expected) << error.what();
      EXPECT_EQ(error.result(), row.code);
    }
  }
  EXPECT_TRUE(folder.names().empty());
}

TEST_F(ScanCommand, AnOutputThatCannotBeWrittenShowsBeforeThePaperMoves) {
  options.output = {Format::kPdf, "/nonexistent/a.pdf", ""};
  FakeScanCore core(script);
  EXPECT_THROW(runScan(core, connect(core, options.device), options, stderr, neverLeave), CommandError);
  EXPECT_EQ(core.starts(), 0);
}

TEST_F(ScanCommand, AWriteFailureEndsTheScanAndKeepsTheFilesBeforeIt) {
  ASSERT_EQ(::mkdir(folder.file("p2.png").c_str(), 0777), 0);
  script.pages.assign(50, FakePage{});
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kCannotWrite);
  EXPECT_EQ(report.pages.size(), 1u);
  EXPECT_EQ(report.files, std::vector<std::string>{folder.file("p1.png")});
  EXPECT_GE(report.lostPages, 1);
  EXPECT_LT(report.lostPages, 49) << "the device was asked to stop";
  EXPECT_NE(reportText(report).find("scanned"), std::string::npos);
}

TEST_F(ScanCommand, APageLimitIsNoInterruption) {
  script.pages.assign(50, FakePage{});
  options.wish.pages = 4;
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kDone);
  EXPECT_EQ(report.pages.size(), 4u);
  EXPECT_EQ(parameters.scanPageCount, 4);
}

TEST_F(ScanCommand, EveryRequestToStopKeepsTheFinishedPages) {
  struct {
    int signal;
    ExitCode exit;
    const char* sentence;
  } const rows[] = {{SIGINT, ExitCode::kInterrupted, "Interrupted."},
                    {SIGTERM, ExitCode::kTerminated, "Terminated."},
                    {SIGHUP, ExitCode::kHungUp, "The terminal is gone."}};
  script.after = AfterPages::kSilence;
  for (const auto& row : rows) {
    std::thread later([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      ::kill(::getpid(), row.signal);
    });
    const ScanReport report = run();
    later.join();
    EXPECT_EQ(report.exit, row.exit);
    EXPECT_EQ(report.sentence, row.sentence);
    EXPECT_EQ(report.pages.size(), 3u);
    EXPECT_LT(report.seconds, 2.5);
  }
}

TEST_F(ScanCommand, PagesAreTurnedBeforeTheyAreToldAndWritten) {
  options.wish.turnDegrees = 90;
  script.pages[0].bitsPerPixel = 8;
  options.output = {Format::kPnm, "", folder.file("p%d.pnm")};
  const ScanReport report = run();
  ASSERT_EQ(report.pages.size(), 3u);
  EXPECT_EQ(report.pages[0].widthPx, 30);
  EXPECT_EQ(report.pages[0].heightPx, 40);
  const std::string file = folder.content("p1.pnm");
  const std::string head = "P5\n# 300 x 300 dpi\n30 40\n255\n";
  ASSERT_EQ(file.substr(0, head.size()), head);
  // What was the lower left corner is the upper left one now.
  EXPECT_EQ(static_cast<std::uint8_t>(file[head.size()]), fakeByte(29, 0));
}

TEST_F(ScanCommand, PagesCutByTheDeviceAreTold) {
  script.pages[1].cutAtMaximum = true;
  const ScanReport report = run();
  EXPECT_EQ(report.exit, ExitCode::kDone);
  EXPECT_NE(reportText(report).find("Page 2 is longer than the device can scan and was cut."), std::string::npos);
}

}  // namespace
