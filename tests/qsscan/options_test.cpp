#include "apps/qsscan/options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "apps/qsscan/exit_codes.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

Options parse(std::vector<const char*> words) {
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
    testing::Values(BadRow{"NoCommand", {}, "subcommand"}, BadRow{"UnknownCommand", {"list"}, "subcommand"},
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
