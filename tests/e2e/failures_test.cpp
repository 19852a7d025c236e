// What goes wrong on a real desk besides the faults of the device (faults_test) and requests to stop (interrupts_test):
// told in a sentence, with its exit code, within seconds, and nothing finished is lost.
#include <csignal>

#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 1200;
constexpr int kHeightPx = 1800;

class Failures : public ScanTest {
 protected:
  Arguments drawSheets(int count) {
    Arguments paths;
    for (int i = 0; i < count; ++i) {
      drawn_.push_back(drawText(kWidthPx, kHeightPx, 300, static_cast<unsigned>(200 + i)));
      paths.push_back(sheet("sheet" + std::to_string(i + 1) + ".png", drawn_.back()));
    }
    return paths;
  }

  VirtualScanner& startWith(int sheets, const Arguments& more) {
    Arguments arguments = drawSheets(sheets);
    arguments.insert(arguments.end(), {"--set", "compressType[2]=3", "--lines", "raw"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    return startScanner(arguments);
  }

  Arguments toPdf() const {
    return {"--mode",   "gray",       "--page-size", "photo-4x6",      "--compression",
            "lossless", "--progress", "-o",          file("pages.pdf")};
  }

  // The run ended promptly with the code and the sentence, and these pages stand in a sound PDF, exactly.
  void expectKept(const Finished& run, int code, const std::string& sentence, std::size_t pages) {
    EXPECT_TRUE(endedWith(code, run));
    EXPECT_LT(run.exit.seconds, kPromptSeconds);
    EXPECT_TRUE(run.err.find(sentence) != run.err.npos) << run.err;
    const std::string kept =
        std::to_string(pages) + (pages == 1 ? " page" : " pages") + " kept in " + file("pages.pdf");
    EXPECT_TRUE(run.err.find(kept) != run.err.npos) << run.err;
    ASSERT_TRUE(exists("pages.pdf")) << run.err;
    EXPECT_FALSE(exists("pages.pdf.part"));
    const auto inFile = readPdf(file("pages.pdf"));
    ASSERT_EQ(inFile.size(), pages);
    for (std::size_t i = 0; i < pages; ++i) {
      EXPECT_EQ(difference(drawn_[i], inFile[i].picture), "") << "page " << i + 1;
    }
  }

  // The run ended promptly with the code and the sentence, and left no file of any name.
  void expectNothing(const Finished& run, int code, const std::string& sentence) {
    EXPECT_TRUE(endedWith(code, run));
    EXPECT_LT(run.exit.seconds, kPromptSeconds);
    EXPECT_TRUE(run.err.find(sentence) != run.err.npos) << run.err;
    for (const std::string& name : folder_.names()) EXPECT_FALSE(name.starts_with("pages")) << name;
  }

  std::vector<Picture> drawn_;
};

TEST_F(Failures, AnEmptyFeederIsTold) {
  VirtualScanner& scanner = startScanner({});
  expectNothing(scan(scanner.address(), toPdf()), 3, "There is no paper in the feeder.");
}

TEST_F(Failures, AFeederThatHasRunEmptyIsTold) {
  VirtualScanner& scanner = startWith(1, {});
  ASSERT_TRUE(endedWith(0, scan(scanner.address(), {"--mode", "gray", "-o", file("first.png")})));
  expectNothing(scan(scanner.address(), toPdf()), 3, "There is no paper in the feeder.");
}

TEST_F(Failures, ADeviceThatIsNotThereIsTold) {
  std::string address;
  {
    const VirtualScanner scanner(folder_, {});
    address = scanner.address();
  }
  expectNothing(scan(address, toPdf()), 2, "The device cannot be reached: nobody listens there.");
  expectNothing(scan("unix:" + file("nobody.socket"), toPdf()), 2,
                "The device cannot be reached: there is no such socket.");
  expectNothing(scan("nobody.invalid", toPdf()), 2, "The device cannot be reached: its host name is unknown.");
}

TEST_F(Failures, ANameThatNoDeviceCanHaveIsTold) {
  expectNothing(scan("127.0.0.1:65536", toPdf()), 1, "the port after the colon must be a number from 1 to 65535.");
}

TEST_F(Failures, AConnectionLostInAColorPageKeepsThePagesBefore) {
  Arguments arguments;
  std::vector<Picture> drawn;
  for (unsigned i = 0; i < 3; ++i) {
    drawn.push_back(drawColor(kWidthPx, kHeightPx, 300, i));
    arguments.push_back(sheet("color" + std::to_string(i) + ".png", drawn.back()));
  }
  // 45 pieces and more for a page.
  arguments.insert(arguments.end(), {"--drip", "4096", "--drip-ms", "12", "--fault", "disconnect@page=3,line=1200"});
  VirtualScanner& scanner = startScanner(arguments);
  const Finished run =
      scan(scanner.address(), {"--page-size", "photo-4x6", "--compression", "lossless", "-o", file("pages.pdf")});
  EXPECT_TRUE(endedWith(8, run));
  EXPECT_LT(run.exit.seconds, kPromptSeconds);
  const auto kept = readPdf(file("pages.pdf"));
  ASSERT_EQ(kept.size(), 2u) << run.err;
  for (std::size_t i = 0; i < kept.size(); ++i) EXPECT_GE(psnrDb(drawn[i], kept[i].picture), 30) << "page " << i + 1;
}

TEST_F(Failures, CtrlCKeepsTheFinishedPages) {
  VirtualScanner& scanner = startWith(20, {"--ppm", "150"});
  const auto process = startScan(scanner.address(), toPdf());
  ASSERT_TRUE(process->waitForText(process->errPath(), "Page 2:", kPatience));
  process->send(SIGINT);
  const Finished run = finish(*process);
  const auto pages = readPdf(file("pages.pdf")).size();
  EXPECT_GE(pages, 2u);
  EXPECT_LT(pages, 20u);
  expectKept(run, 130, "Interrupted.", pages);
  // The device was told, and serves the next host.
  bool aborted = false;
  for (const std::string& frame : scanner.commands())
    aborted = aborted || frame.find(
                             "\x1B"
                             "ABT\n") == 0;
  EXPECT_TRUE(aborted);
  EXPECT_TRUE(endedWith(0, qsscan({"info", "-d", scanner.address()})));
}

TEST_F(Failures, AFolderThatIsNotThereIsToldBeforeTheScan) {
  VirtualScanner& scanner = startWith(1, {});
  const Finished run = scan(scanner.address(), {"--mode", "gray", "-o", file("nowhere/pages.pdf")});
  expectNothing(run, 10, "cannot be written");
  EXPECT_FALSE(scanner.wasTold("CLR=GRAY256"));
}

// A disk that is full at the very end, when the pictures already lie in a temporary file.
TEST_F(Failures, AFullDiskIsTold) {
  VirtualScanner& scanner = startWith(1, {"--reload"});
  for (const char* format : {"pdf", "png", "jpeg"}) {
    SCOPED_TRACE(format);
    expectNothing(scan(scanner.address(), {"--mode", "gray", "--format", format, "-o", "/dev/full"}), 10,
                  "cannot be written");
  }
}

TEST_F(Failures, AModeThatTheDeviceDoesNotOfferIsTold) {
  VirtualScanner& scanner = startWith(1, {"--set", "colorType=0x07"});
  expectNothing(scan(scanner.address(), {"--mode", "color", "-o", file("pages.pdf")}), 12,
                "The device does not offer the mode color.");
}

}  // namespace
}  // namespace e2e
