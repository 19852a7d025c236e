#include "protocol/gen1_commands.h"

#include <gtest/gtest.h>

#include "gen1_host.h"

namespace vscan::gen1 {
namespace {

using test::bytesOf;
using test::questionFrame;
using test::startFrame1;

Frame parsed(const std::string& bytes) { return std::get<Frame>(parseFrame(bytesOf(bytes))); }

TEST(Gen1Commands, ASourceIsOneWord) {
  const struct {
    const char* frame;
    bool isRead;
    PaperSource source;
  } rows[] = {
      {"\x1B"
       "D\nADF\n\x80",
       true, PaperSource::Feeder},
      {"\x1B"
       "S\nFB\n\x80",
       true, PaperSource::Flatbed},
      {"\x1B"
       "D\nAUTO\n\x80",
       true, PaperSource::Automatic},
      {"\x1B"
       "D\nTRAY\n\x80",
       false,
       {}},
      {"\x1B"
       "D\nPSRC=ADF\n\x80",
       false,
       {}},
      {"\x1B"
       "D\n\x80",
       false,
       {}},
      {"\x1B"
       "D\nADF\nADF\n\x80",
       false,
       {}},
  };
  for (const auto& row : rows) {
    PaperSource source = PaperSource::Automatic;
    EXPECT_EQ(!readSource(parsed(row.frame), source), row.isRead) << row.frame;
    if (row.isRead) {
      EXPECT_EQ(source, row.source) << row.frame;
    }
  }
}

TEST(Gen1Commands, TheQuestionIsUnderstood) {
  ScanRequest request;
  ASSERT_FALSE(readQuestion(parsed(questionFrame({{"R", "200,400"}, {"D", "DUP"}, {"M", "ERRDIF"}})), request));
  EXPECT_EQ(request.settings.resolution, (Resolution{false, 200, 400}));
  EXPECT_EQ(request.settings.sides, Sides::Both);
  EXPECT_EQ(request.settings.color, ColorMode::ErrorDiffusion);
  EXPECT_EQ(request.start.reading, Reading::Normal);
}

TEST(Gen1Commands, TheStartIsUnderstood) {
  ScanRequest request;
  ASSERT_FALSE(readStart(parsed(startFrame1({{"A", "16,8,4294967295,100"},
                                             {"B", "0"},
                                             {"N", "100"},
                                             {"C", "RLENGTH"},
                                             {"P", "1"},
                                             {"E", "3"},
                                             {"G", "1"},
                                             {"L", "-7"},
                                             {"S", "SKEW_ADJUST"}})),
                         request));
  EXPECT_EQ(request.start.area, (std::array<std::int64_t, 4>{16, 8, 4294967295, 100}));
  EXPECT_EQ(request.start.resolution, (Resolution{false, 300, 300}));
  EXPECT_EQ(request.settings.brightness, 0);
  EXPECT_EQ(request.settings.contrast, 100);
  EXPECT_EQ(request.settings.compression, Compression::RunLength);
  EXPECT_EQ(request.settings.maxSheets, 1);
  EXPECT_TRUE(request.settings.doubleFeedDetection.isOn);
  EXPECT_TRUE(request.settings.isLandscape);
  EXPECT_EQ(request.start.reading, Reading::Deskewed);
  EXPECT_TRUE(request.settings.deskew);
  EXPECT_EQ(request.settings.backgroundRemoval, (Switch{true, -7}));
}

TEST(Gen1Commands, EachValueOfTheStartIsUnderstoodAndNoOther) {
  const struct {
    const char* key;
    std::vector<std::string> good;
    std::vector<std::string> bad;
  } rows[] = {
      {"R", {"300,300", "0,0"}, {"300", "AUTO", "300,", "300,300,300", "0300,300", "-1,300", "+1,2", ""}},
      {"M", {"TEXT", "ERRDIF", "GRAY256", "C256", "CGRAY"}, {"AUTO", "C24BIT", "text", ""}},
      {"C", {"NONE", "RLENGTH", "JPEG"}, {"MH", ""}},
      {"J", {"MID"}, {"LOW", "HIGH", "50", ""}},
      {"B", {"0", "50", "100"}, {"101", "-1", "5.0", ""}},
      {"N", {"0", "50", "100"}, {"101", "-1", ""}},
      {"A", {"0,0,16,1", "4294967295,0,0,0"}, {"0,0,16", "FULL", "-1,0,16,1", "4294967296,0,0,0"}},
      {"D", {"SIN", "DUP"}, {"ON", ""}},
      {"S", {"NORMAL_SCAN", "EDGE_SCAN", "ORIGINAL_SCAN", "CORNER_SCAN", "SKEW_ADJUST"}, {"NORMAL", ""}},
      {"P", {"0", "1"}, {"2", ""}},
      {"E", {"0", "1", "2", "3"}, {"4", "-1", ""}},
      {"G", {"0", "1"}, {"ON", ""}},
      {"L", {"0", "255", "-5"}, {"x", ""}},
  };
  for (const auto& row : rows) {
    for (const auto& value : row.good) {
      ScanRequest request;
      EXPECT_FALSE(readStart(parsed(startFrame1({{row.key, value}})), request)) << row.key << "=" << value;
    }
    for (const auto& value : row.bad) {
      ScanRequest request;
      EXPECT_TRUE(readStart(parsed(startFrame1({{row.key, value}})), request)) << row.key << "=" << value;
    }
  }
}

TEST(Gen1Commands, EachMissingSwappedOrRepeatedKeyIsRefused) {
  const std::vector<std::pair<std::string, bool (*)(const Frame&)>> commands = {
      {questionFrame(), [](const Frame& frame) { return !readQuestion(frame, *std::make_unique<ScanRequest>()); }},
      {startFrame1(), [](const Frame& frame) { return !readStart(frame, *std::make_unique<ScanRequest>()); }},
  };
  for (const auto& [text, isRead] : commands) {
    const Frame whole = parsed(text);
    EXPECT_TRUE(isRead(whole));
    for (std::size_t i = 0; i < whole.lines.size(); ++i) {
      Frame fewer = whole;
      fewer.lines.erase(fewer.lines.begin() + static_cast<std::ptrdiff_t>(i));
      EXPECT_FALSE(isRead(fewer)) << whole.mnemonic << " " << i;
      Frame more = whole;
      more.lines.insert(more.lines.begin() + static_cast<std::ptrdiff_t>(i), whole.lines[i]);
      EXPECT_FALSE(isRead(more)) << whole.mnemonic << " " << i;
      if (i + 1 == whole.lines.size()) continue;
      Frame swapped = whole;
      std::swap(swapped.lines[i], swapped.lines[i + 1]);
      EXPECT_FALSE(isRead(swapped)) << whole.mnemonic << " " << i;
    }
  }
}

TEST(Gen1Commands, TheQuestionForADocumentHasTwoKeys) {
  DocumentQuestion question;
  ASSERT_FALSE(readDocumentQuestion(parsed("\x1B"
                                           "E\nR=100,150\nM=TEXT\n\x80"),
                                    question));
  EXPECT_EQ(question.resolution, (Resolution{false, 100, 150}));
  EXPECT_EQ(question.color, ColorMode::Text);
  EXPECT_TRUE(readDocumentQuestion(parsed("\x1B"
                                          "E\nR=100,150\n\x80"),
                                   question));
}

TEST(Gen1Commands, ACommandWithoutLinesHasNone) {
  EXPECT_FALSE(readNoLines(parsed("\x1BQ\n\x80")));
  EXPECT_TRUE(readNoLines(parsed("\x1BQ\nADF\n\x80")));
}

}  // namespace
}  // namespace vscan::gen1
