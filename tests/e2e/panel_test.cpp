// qsscan panel against the panels of both generations.
#include <csignal>
#include <nlohmann/json.hpp>

#include "scan_test.h"

namespace {

using namespace e2e;
using namespace std::chrono_literals;

class PanelTest : public ScanTest, public testing::WithParamInterface<const char*> {
 protected:
  std::string form() const { return sheet("form.png", Picture(595, 842, 1, 72, 200)); }

  // A scanner of this generation with a panel that tests can press.
  VirtualScanner& startPanel(Arguments more = {}) {
    Arguments arguments = {"--profile", GetParam(), "--control", file("panel"), "--reload", form()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return startScanner(arguments);
  }

  std::unique_ptr<Process> startPanelCommand(const std::string& address, Arguments more) const {
    more.insert(more.begin(), {"panel", "-d", address});
    return start(more);
  }

  void press(const std::string& button) const {
    Process tell({scannerProgram(), "--tell", file("panel"), "button " + button}, file("tell.out"), file("tell.err"));
    ASSERT_EQ(tell.wait(kPatience).code, 0) << contentOf(file("tell.err"));
  }
};

TEST_P(PanelTest, ShowsWhatIsAskedForWithoutWaiting) {
  const std::string address =
      startPanel({"--button", "email resolution=200 color=gray paper=A5 duplex=on binding=short"}).address();
  const Finished text = finish(*startPanelCommand(address, {"--show"}));
  EXPECT_TRUE(endedWith(0, text));
  for (const char* line :
       {"Button:                email\n", "Mode:                  gray\n", "Resolution (dpi):      200 by 200\n",
        "Binding:               short\n", "Page size:             a5\n", "Deskew:                not given\n"}) {
    EXPECT_NE(text.out.find(line), std::string::npos) << line << text.out;
  }
  const auto json = nlohmann::json::parse(finish(*startPanelCommand(address, {"--once", "--json"})).out);
  EXPECT_EQ(json["device"], address);
  EXPECT_EQ(json["button"], "email");
  EXPECT_EQ(json["duplex"], true);

  press("none");
  EXPECT_EQ(finish(*startPanelCommand(address, {"--show"})).out, "No button has been pressed.\n");
  EXPECT_TRUE(nlohmann::json::parse(finish(*startPanelCommand(address, {"--show", "--json"})).out)["button"].is_null());
}

TEST_P(PanelTest, WaitsForTheButtonAndScansAsItAsks) {
  VirtualScanner& scanner = startPanel();
  const auto run = startPanelCommand(scanner.address(), {"--progress=json", "--json", "-o", file("a.png")});
  ASSERT_TRUE(run->waitForText(run->errPath(), "Waiting for a button", kPatience));
  EXPECT_FALSE(run->waitForText(run->errPath(), "event", 1500ms)) << "nobody has pressed a button";
  press("file resolution=150 color=gray paper=A5 turn=90 format=jpeg");
  const Finished finished = finish(*run);
  EXPECT_TRUE(endedWith(0, finished));
  const auto event = nlohmann::json::parse(
      finished.err.substr(finished.err.find('{')).substr(0, finished.err.substr(finished.err.find('{')).find('\n')));
  EXPECT_EQ(event["event"], "button");
  EXPECT_EQ(event["format"], "jpeg");
  const auto report = nlohmann::json::parse(finished.out);
  EXPECT_EQ(report["files"], std::vector<std::string>{file("a.png")}) << "the name on the command line wins";
  const Picture page = readPng(file("a.png"));
  EXPECT_EQ(page.channels, 1);
  EXPECT_NEAR(page.widthPx, 210 / 25.4 * 150, 1) << "turned";
  EXPECT_NEAR(page.heightPx, 148 / 25.4 * 150, 1);
  EXPECT_GE(scanner.commands().size(), 4u);
}

TEST_P(PanelTest, TheCommandLineWinsOverThePresetAndThePresetOverThePanel) {
  VirtualScanner& scanner = startPanel({"--button", "image resolution=300 color=color paper=A5"});
  writeText("conf", "[preset.small]\nresolution = 100\nmode = \"gray\"\n");
  const Finished finished = finish(*startPanelCommand(
      scanner.address(), {"--config", file("conf"), "--preset", "small", "--mode", "mono", "-o", file("a.png")}));
  EXPECT_TRUE(endedWith(0, finished));
  const Picture page = readPng(file("a.png"));
  EXPECT_EQ(page.bitsPerSample, 1);
  EXPECT_NEAR(page.widthPx, 148 / 25.4 * 100, 1);
}

TEST_P(PanelTest, WhatCannotBeDoneIsLeftOutAndTold) {
  VirtualScanner& scanner = startPanel({"--button", "ocr format=xps bleed=on"});
  const Finished finished = finish(*startPanelCommand(scanner.address(), {"-o", file("a.pdf")}));
  EXPECT_TRUE(endedWith(0, finished));
  for (const char* part : {"format xps, which is left out", "from the back", "text recognition"}) {
    EXPECT_NE(finished.err.find(part), std::string::npos) << part << finished.err;
  }
  EXPECT_TRUE(exists("a.pdf"));
}

TEST_P(PanelTest, CtrlCEndsTheWaitAtOnce) {
  VirtualScanner& scanner = startPanel();
  const auto run = startPanelCommand(scanner.address(), {});
  ASSERT_TRUE(run->waitForText(run->errPath(), "Waiting for a button", kPatience));
  const auto start = std::chrono::steady_clock::now();
  run->send(SIGINT);
  EXPECT_TRUE(endedWith(130, finish(*run)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 900ms) << "not only before the next question";
}

TEST_P(PanelTest, ADeviceThatDoesNotAnswerTheQuestionIsASentence) {
  const bool isFirst = GetParam() == std::string("classic");
  VirtualScanner& scanner = startPanel({"--fault", std::string("internal-fault@command=") + (isFirst ? "K" : "GKP")});
  const Finished finished = finish(*startPanelCommand(scanner.address(), {}));
  EXPECT_TRUE(endedWith(12, finished));
  EXPECT_NE(finished.err.find("Perhaps it has no buttons"), std::string::npos) << finished.err;
}

INSTANTIATE_TEST_SUITE_P(Generations, PanelTest, testing::Values("classic", "office"),
                         [](const auto& info) { return std::string(info.param); });

}  // namespace
