// Every fault of the scanner, one by one: the exit code, the sentence, the object for programs, and the files left.
#include <nlohmann/json.hpp>

#include "fault_rows.h"
#include "parallel.h"
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {

constexpr int kWidthPx = 400;
constexpr int kHeightPx = 600;
constexpr int kDpi = 100;
constexpr std::size_t kFastAtOnce = 4;
// The longest time-out is one and a half minutes.
constexpr std::chrono::seconds kSlowPatience{150};

std::string nameOf(const FaultRow& row) {
  std::string name = "generation " + std::to_string(row.generation);
  for (const auto& part : row.faults) name += " --fault " + part;
  for (const auto& part : row.options) name += " " + part;
  return name;
}

std::string counted(std::size_t pages) { return std::to_string(pages) + (pages == 1 ? " page" : " pages"); }

class Faults : public ScanTest {
 protected:
  // The first generation leaves a TIFF, the second a PDF.
  struct Result {
    Finished run;
    std::set<std::string> names;
    std::vector<Picture> pages;
  };

  void drawSheets(int count) {
    for (int i = 0; i < count; ++i) {
      drawn_.push_back(drawText(kWidthPx, kHeightPx, kDpi, static_cast<unsigned>(300 + i)));
      sheets_.push_back(sheet("sheet" + std::to_string(i + 1) + ".png", drawn_.back()));
    }
  }

  // Grey by lines, so that the pages can be compared exactly.
  Result resultOf(const FaultRow& row) const {
    const TemporaryFolder folder;
    Arguments arguments = sheets_;
    arguments.insert(arguments.end(), {"--hidden", "--profile", row.generation == 1 ? "classic" : "office"});
    if (row.generation == 2) arguments.insert(arguments.end(), {"--set", "compressType[2]=3"});
    for (const auto& fault : row.faults) arguments.insert(arguments.end(), {"--fault", fault});
    const VirtualScanner scanner(folder_, arguments);
    const std::string name = row.generation == 1 ? "pages.tif" : "pages.pdf";
    arguments = {"--mode",         "gray",
                 "--resolution",   std::to_string(kDpi),
                 "--page-size",    paperOf(kWidthPx, kHeightPx, kDpi),
                 "--compression",  "lossless",
                 "--json",         "-o",
                 folder.file(name)};
    arguments.insert(arguments.end(), row.options.begin(), row.options.end());
    Result result;
    const auto process = startScan(scanner.address(), arguments);
    result.run = finish(*process, row.isSlow ? kSlowPatience : kPatience);
    result.names = folder.names();
    if (result.names.contains("pages.tif")) result.pages = readTiffPages(folder.file(name));
    if (result.names.contains("pages.pdf")) {
      for (auto& page : readPdf(folder.file(name))) result.pages.push_back(std::move(page.picture));
    }
    return result;
  }

  // What holds however the scan ended: nothing but a whole file, and one story on every channel.
  void expectSound(const Result& result) const {
    const auto json = nlohmann::json::parse(result.run.out, nullptr, false);
    ASSERT_TRUE(json.is_object()) << result.run.all();
    EXPECT_EQ(json["exitCode"], result.run.exit.code);
    EXPECT_EQ(json["pages"].size(), result.pages.size());
    EXPECT_EQ(json["files"].size(), result.names.size());
    EXPECT_EQ(result.names.size(), result.pages.empty() ? 0u : 1u) << ::testing::PrintToString(result.names);
    if (result.run.exit.code == 0) {
      EXPECT_TRUE(json["reason"].is_null());
    } else {
      ASSERT_TRUE(json["reason"].is_string());
      EXPECT_NE(result.run.err.find(json["reason"].get<std::string>()), std::string::npos) << result.run.all();
    }
  }

  // Those that wait for a time-out of the device's all at once, the others beside them.
  template <typename Check>
  static void forEachFault(const std::vector<FaultRow>& rows, const Check& check) {
    std::vector<FaultRow> slow;
    std::vector<FaultRow> fast;
    for (const FaultRow& row : rows) (row.isSlow ? slow : fast).push_back(row);
    std::thread waiting([&] { forEachAtOnce(slow, slow.size(), check); });
    forEachAtOnce(fast, kFastAtOnce, check);
    waiting.join();
  }

  std::vector<Picture> drawn_;
  Arguments sheets_;
};

TEST_F(Faults, EachHasItsExitCodeItsSentenceAndItsFiles) {
  drawSheets(3);
  forEachFault(faultRows(), [&](const FaultRow& row) {
    SCOPED_TRACE(nameOf(row));
    const Result result = resultOf(row);
    const Finished& run = result.run;
    EXPECT_TRUE(run.exit.inTime);
    EXPECT_LT(run.exit.code, 128) << "ended by a signal";
    expectSound(result);
    if (!row.exit) return;
    ASSERT_TRUE(endedWith(*row.exit, run));
    if (!row.isSlow) {
      EXPECT_LT(run.exit.seconds, kPromptSeconds);
    }
    EXPECT_NE(run.err.find(row.sentence), std::string::npos) << run.err;
    ASSERT_EQ(result.pages.size(), static_cast<std::size_t>(row.pages)) << run.err;
    const std::string told = counted(result.pages.size()) + (*row.exit == 0 ? " in " : " kept in ");
    EXPECT_EQ(run.err.find(told) != std::string::npos, row.pages > 0) << run.err;
    for (std::size_t i = 0; i < result.pages.size() && !row.isDamaged; ++i) {
      EXPECT_EQ(difference(drawn_[i], result.pages[i]), "") << "page " << i + 1;
    }
  });
}

TEST_F(Faults, AJamAtSheetSevenLeavesThePagesOfSixSheets) {
  drawSheets(9);
  for (const int generation : {1, 2}) {
    SCOPED_TRACE(generation);
    const Result result = resultOf({generation, {"jam@page=7,line=200"}});
    ASSERT_TRUE(endedWith(4, result.run));
    expectSound(result);
    EXPECT_NE(result.run.err.find("Paper jam"), std::string::npos) << result.run.err;
    EXPECT_NE(result.run.err.find("6 pages kept in "), std::string::npos) << result.run.err;
    ASSERT_EQ(result.pages.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(difference(drawn_[i], result.pages[i]), "") << "page " << i + 1;
  }
}

// Both sides: the jam strikes on the back of the seventh sheet, whose front has come.
TEST_F(Faults, AJamOnABackLeavesItsFront) {
  drawSheets(16);
  for (const int generation : {1, 2}) {
    SCOPED_TRACE(generation);
    const Result result = resultOf({generation, {"jam@page=14,line=200"}, 4, "", 13, {"--duplex"}});
    ASSERT_TRUE(endedWith(4, result.run));
    expectSound(result);
    EXPECT_NE(result.run.err.find("13 pages kept in "), std::string::npos) << result.run.err;
  }
}

}  // namespace
}  // namespace e2e
