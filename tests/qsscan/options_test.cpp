#include "apps/qsscan/options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/qsscan/exit_codes.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

Options parse(std::vector<const char*> words) {
  ::setenv("XDG_CONFIG_HOME", "/dev/null/none", 1);  // whatever the one who runs the tests has configured
  words.insert(words.begin(), "qsscan");
  return parseCommandLine(static_cast<int>(words.size()), words.data()).value();
}

Options scan(std::vector<const char*> words) {
  words.insert(words.begin(), {"scan", "-d", "host"});
  return parse(words);
}

TEST(Options, DefaultsAreOneSideAt300DpiOnNamedPaperIntoADatedPdf) {
  ::unsetenv("QSSCAN_DEVICE");
  ::setenv("LC_ALL", "de_DE.UTF-8", 1);
  const Options options = scan({});
  EXPECT_EQ(options.command, Options::Command::kScan);
  EXPECT_EQ(options.device, "host");
  EXPECT_FALSE(options.json);
  EXPECT_EQ(options.wish.resolutionDpi, 300u);
  EXPECT_FALSE(options.wish.mode);
  EXPECT_EQ(options.wish.source, Source::kAuto);
  EXPECT_FALSE(options.wish.duplex);
  EXPECT_EQ(options.wish.paper.type, PAPERTYPE_A4);
  EXPECT_FALSE(options.wish.paperIsWished);
  EXPECT_FALSE(options.wish.hasArea());
  EXPECT_EQ(options.output.format, Format::kPdf);
  EXPECT_EQ(options.output.path.substr(0, 7), "scan-20");
  EXPECT_EQ(options.writer.jpegQuality, 90);
  EXPECT_FALSE(options.writer.lossless);
  EXPECT_EQ(options.progress, ProgressStyle::kNone);
}

TEST(Options, EachOptionReachesItsPlace) {
  const Options options = scan(
      {"--resolution", "600", "--mode",     "Gray", "--source", "ADF Duplex", "--binding", "short", "--page-size",
       "letter",       "-l",  "1.5",        "-t",   "2",        "-x",         "100",       "-y",    "50",
       "--brightness", "-10", "--contrast", "20",   "--pages",  "7",          "--quality", "75",    "--compression",
       "lossless",     "-o",  "out.png",    "-p",   "--json",   "--library",  "x.so"});
  EXPECT_EQ(options.wish.resolutionDpi, 600u);
  EXPECT_EQ(options.wish.mode, COLORTYPE_TRUEGRAY);
  EXPECT_EQ(options.wish.source, Source::kFeederDuplex);
  EXPECT_TRUE(options.wish.duplex);
  EXPECT_TRUE(options.wish.bindShortEdge);
  EXPECT_EQ(options.wish.paper.type, PAPERTYPE_LETTER);
  EXPECT_TRUE(options.wish.paperIsWished);
  EXPECT_EQ(options.wish.leftMm, 1.5);
  EXPECT_EQ(options.wish.topMm, 2);
  EXPECT_EQ(options.wish.widthMm, 100);
  EXPECT_EQ(options.wish.heightMm, 50);
  EXPECT_EQ(options.wish.brightness, -10);
  EXPECT_EQ(options.wish.contrast, 20);
  EXPECT_EQ(options.wish.pages, 7);
  EXPECT_EQ(options.writer.jpegQuality, 75);
  EXPECT_TRUE(options.writer.lossless);
  EXPECT_EQ(options.output.format, Format::kPng);
  EXPECT_EQ(options.output.path, "out.png");
  EXPECT_EQ(options.progress, ProgressStyle::kText);
  EXPECT_TRUE(options.json);
  EXPECT_EQ(options.library, "x.so");
}

TEST(Options, ProgressForProgramsAndThresholdAndAutomaticPaper) {
  const Options options = scan({"--progress=json", "--threshold", "254", "--page-size", "auto", "--duplex"});
  EXPECT_EQ(options.progress, ProgressStyle::kJson);
  EXPECT_EQ(options.wish.threshold, 254u);
  EXPECT_TRUE(options.wish.paperIsAuto);
  EXPECT_TRUE(options.wish.duplex);
}

// The level that a feature was given; -1000 where it was switched on without one, nothing where it was not.
std::optional<int> levelOf(const Options& options, const std::string& option) {
  for (const FeatureWish& wish : options.wish.features) {
    if (wish.feature->option == option) return wish.level.value_or(-1000);
  }
  return std::nullopt;
}

TEST(Options, FeaturesAreSwitchedOnWithALevelOrWithout) {
  const Options options = scan({"--deskew", "--skip-blank", "--remove-background=40", "--smooth", "-20", "--sharpen",
                                "3", "--icc-profile", "-o", "a.tif"});
  EXPECT_EQ(options.wish.features.size(), 6u);
  EXPECT_EQ(levelOf(options, "--deskew"), -1000);
  EXPECT_EQ(levelOf(options, "--skip-blank"), -1000);
  EXPECT_EQ(levelOf(options, "--remove-background"), 40);
  EXPECT_EQ(levelOf(options, "--smooth"), -20);
  EXPECT_EQ(levelOf(options, "--sharpen"), 3);
  EXPECT_EQ(levelOf(options, "--quiet"), std::nullopt);
  EXPECT_EQ(options.output.path, "a.tif");
}

TEST(Options, EveryFeatureIsAnOption) {
  for (const Feature& feature : featureTable()) {
    EXPECT_EQ(levelOf(scan({feature.option}), feature.option), -1000) << feature.option;
  }
}

TEST(Options, ToneColourAndThresholdReachTheirPlace) {
  const Options options = scan({"--shadow", "10", "--gamma", "1.8", "--color-drop", "00A0ff", "--color-drop-range",
                                "15", "--threshold", "auto", "--sheets", "3"});
  EXPECT_EQ(options.wish.tone[0], 10);
  EXPECT_EQ(options.wish.tone[1], std::nullopt);
  EXPECT_EQ(options.wish.tone[2], 1.8);
  ASSERT_TRUE(options.wish.colorDrop);
  EXPECT_EQ(options.wish.colorDrop->rgb[1], 0xA0);
  EXPECT_EQ(options.wish.colorDropRange, 15);
  EXPECT_TRUE(options.wish.autoThreshold);
  EXPECT_FALSE(options.wish.threshold);
  EXPECT_EQ(options.wish.sheets, 3);
  EXPECT_NE(scan({"--color-drop", "red"}).wish.colorDrop->preset, nullptr);
}

TEST(Options, EdgesTurningAndWordsReachTheirPlace) {
  const Options options = scan({"--edge-cut", "2", "--edge-fill", "1,2,3,4", "--edge-color", "black", "--rotate", "270",
                                "--remove-lines", "vertical", "--remove-holes=page", "-o", "a.tif"});
  ASSERT_TRUE(options.wish.edges.cut);
  EXPECT_EQ(options.wish.edges.cut->bottomMm, 2);
  ASSERT_TRUE(options.wish.edges.fill);
  EXPECT_EQ(options.wish.edges.fill->topMm, 2);
  EXPECT_TRUE(options.wish.edges.fillIsBlack);
  EXPECT_EQ(options.wish.turnDegrees, 270);
  EXPECT_EQ(levelOf(options, "--remove-lines"), 1);
  EXPECT_EQ(levelOf(options, "--remove-holes"), 1);
  EXPECT_FALSE(scan({"--edge-fill", "1"}).wish.edges.fillIsBlack);
}

TEST(Options, TheDeviceMayComeFromTheEnvironment) {
  ::setenv("QSSCAN_DEVICE", "unix:/s", 1);
  EXPECT_EQ(parse({"info"}).device, "unix:/s");
  EXPECT_EQ(parse({"info", "-d", "host"}).device, "host");
  ::unsetenv("QSSCAN_DEVICE");
}

struct BadRow {
  const char* name;
  std::vector<const char*> words;
  const char* partOfSentence;
};
class BadOptions : public testing::TestWithParam<BadRow> {};

TEST_P(BadOptions, AreRefusedWithASentence) {
  ::unsetenv("QSSCAN_DEVICE");
  try {
    parse(GetParam().words);
    FAIL() << "accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kUsage);
    EXPECT_NE(std::string(error.what()).find(GetParam().partOfSentence), std::string::npos) << error.what();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Options, BadOptions,
    testing::Values(BadRow{"NoCommand", {}, "subcommand"}, BadRow{"UnknownCommand", {"print"}, "subcommand"},
                    BadRow{"NoDevice", {"scan"}, "QSSCAN_DEVICE"},
                    BadRow{"UnknownOption", {"scan", "-d", "h", "--frob"}, "--frob"},
                    BadRow{"UnknownMode", {"scan", "-d", "h", "--mode", "256"}, "mode"},
                    BadRow{"UnknownSource", {"scan", "-d", "h", "--source", "tray"}, "source"},
                    BadRow{"UnknownPaper", {"scan", "-d", "h", "--page-size", "a99"}, "page size"},
                    BadRow{"UnknownBinding", {"scan", "-d", "h", "--duplex", "--binding", "left"}, "binding"},
                    BadRow{"BindingOfOneSide", {"scan", "-d", "h", "--binding", "long"}, "--duplex"},
                    BadRow{"BadBrightness", {"scan", "-d", "h", "--brightness", "51"}, "brightness"},
                    BadRow{"BadContrast", {"scan", "-d", "h", "--contrast", "-51"}, "contrast"},
                    BadRow{"BadThreshold", {"scan", "-d", "h", "--threshold", "0"}, "threshold"},
                    BadRow{"WordAsThreshold", {"scan", "-d", "h", "--threshold", "dark"}, "--threshold"},
                    BadRow{"BadLevel", {"scan", "-d", "h", "--sharpen=much"}, "whole number"},
                    BadRow{"BadColor", {"scan", "-d", "h", "--color-drop", "pink"}, "RRGGBB"},
                    BadRow{"RangeOfANamedColor",
                           {"scan", "-d", "h", "--color-drop", "red", "--color-drop-range", "9"},
                           "--color-drop-range"},
                    BadRow{"BadWord", {"scan", "-d", "h", "--remove-lines", "all"}, "horizontal, vertical, both"},
                    BadRow{"BadEdges", {"scan", "-d", "h", "--edge-fill", "1,2"}, "LEFT,TOP,RIGHT,BOTTOM"},
                    BadRow{"BadCut", {"scan", "-d", "h", "--edge-cut", "-2"}, "--edge-cut"},
                    BadRow{"BadEdgeColor", {"scan", "-d", "h", "--edge-fill", "1", "--edge-color", "red"}, "black"},
                    BadRow{"EdgeColorOfNothing", {"scan", "-d", "h", "--edge-color", "black"}, "--edge-fill"},
                    BadRow{"BadTurn", {"scan", "-d", "h", "--rotate", "45"}, "--rotate"},
                    BadRow{"BadGamma", {"scan", "-d", "h", "--gamma", "high"}, "gamma"},
                    BadRow{"BadSheets", {"scan", "-d", "h", "--sheets", "0"}, "sheets"},
                    BadRow{"ProfileInPnm", {"scan", "-d", "h", "--icc-profile", "-o", "a.pnm"}, "pnm"},
                    BadRow{"BadPages", {"scan", "-d", "h", "--pages", "0"}, "pages"},
                    BadRow{"BadQuality", {"scan", "-d", "h", "--quality", "101"}, "quality"},
                    BadRow{"BadResolution", {"scan", "-d", "h", "--resolution", "fine"}, "resolution"},
                    BadRow{"BadCompression", {"scan", "-d", "h", "--compression", "zip"}, "compression"},
                    BadRow{"BadProgress", {"scan", "-d", "h", "--progress=xml"}, "--progress"},
                    BadRow{"BadFormat", {"scan", "-d", "h", "--format", "gif"}, "format"},
                    BadRow{"BadPattern", {"scan", "-d", "h", "--batch", "page.png"}, "%03d"},
                    BadRow{"TwoOutputs", {"scan", "-d", "h", "-o", "a.pdf", "--batch", "p%d.png"}, "exclude"},
                    BadRow{"JsonAndData", {"scan", "-d", "h", "-o", "-", "--json"}, "standard output"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
