#include "protocol/gen1_commands.h"

#include <limits>

#include "protocol/values.h"

namespace vscan::gen1 {
namespace {

using Text = std::string_view;

constexpr std::int64_t kMaxU32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kMinI32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaxI32 = std::numeric_limits<std::int32_t>::max();

bool readResolution(Text text, Resolution& out) {
  std::int64_t numbers[2];
  if (!readNumbers(text, 0, kMaxU32, numbers)) return false;
  out = {false, numbers[0], numbers[1]};
  return true;
}

bool readColor(Text text, ColorMode& out) {
  return readWord<ColorMode>(text,
                             {{"TEXT", ColorMode::Text},
                              {"ERRDIF", ColorMode::ErrorDiffusion},
                              {"GRAY256", ColorMode::Grey},
                              {"C256", ColorMode::Palette},
                              {"CGRAY", ColorMode::Color}},
                             out);
}

bool readRequestResolution(Text text, ScanRequest& r) {
  const bool isRead = readResolution(text, r.settings.resolution);
  r.start.resolution = r.settings.resolution;
  return isRead;
}

bool readRequestColor(Text text, ScanRequest& r) { return readColor(text, r.settings.color); }

bool readSides(Text text, ScanRequest& r) {
  return readWord<Sides>(text, {{"SIN", Sides::Front}, {"DUP", Sides::Both}}, r.settings.sides);
}

bool readReading(Text text, ScanRequest& r) {
  const bool isRead = readWord<Reading>(text,
                                        {{"NORMAL_SCAN", Reading::Normal},
                                         {"EDGE_SCAN", Reading::Edges},
                                         {"ORIGINAL_SCAN", Reading::Original},
                                         {"CORNER_SCAN", Reading::Corners},
                                         {"SKEW_ADJUST", Reading::Deskewed}},
                                        r.start.reading);
  r.settings.deskew = r.start.reading == Reading::Deskewed;
  return isRead;
}

bool readFlag(Text text, bool& out) { return readWord<bool>(text, {{"0", false}, {"1", true}}, out); }

constexpr KeyRow<PaperSource> kSourceLine[] = {
    {"", false,
     [](Text text, PaperSource& source) {
       return readWord<PaperSource>(
           text, {{"ADF", PaperSource::Feeder}, {"FB", PaperSource::Flatbed}, {"AUTO", PaperSource::Automatic}},
           source);
     }},
};

constexpr KeyRow<ScanRequest> kQuestionKeys[] = {
    {"R", false, readRequestResolution},
    {"M", false, readRequestColor},
    {"D", false, readSides},
    {"S", false, readReading},
};

constexpr KeyRow<ScanRequest> kStartKeys[] = {
    {"R", false, readRequestResolution},
    {"M", false, readRequestColor},
    {"C", false,
     [](Text text, ScanRequest& r) {
       return readWord<Compression>(
           text, {{"NONE", Compression::None}, {"RLENGTH", Compression::RunLength}, {"JPEG", Compression::Jpeg}},
           r.settings.compression);
     }},
    {"J", false,
     [](Text text, ScanRequest& r) {
       constexpr std::int64_t kMiddleRate = 50;
       r.settings.jpegRate = kMiddleRate;
       r.settings.jpegSampling = JpegSampling::Yuv420;
       return text == "MID";
     }},
    {"B", false, [](Text text, ScanRequest& r) { return readNumber(text, 0, 100, r.settings.brightness); }},
    {"N", false, [](Text text, ScanRequest& r) { return readNumber(text, 0, 100, r.settings.contrast); }},
    {"A", false, [](Text text, ScanRequest& r) { return readNumbers(text, 0, kMaxU32, r.start.area); }},
    {"D", false, readSides},
    {"S", false, readReading},
    {"P", false,
     [](Text text, ScanRequest& r) {
       bool onePage = false;
       const bool isRead = readFlag(text, onePage);
       r.settings.maxSheets = onePage ? 1 : 0;
       return isRead;
     }},
    {"E", false,
     [](Text text, ScanRequest& r) {
       std::int64_t bits = 0;  // bit 0 double feeds are looked for, bit 1 landscape
       const bool isRead = readNumber(text, 0, 3, bits);
       r.settings.doubleFeedDetection.isOn = (bits & 1) != 0;
       r.settings.isLandscape = (bits & 2) != 0;
       return isRead;
     }},
    {"G", false, [](Text text, ScanRequest& r) { return readFlag(text, r.settings.backgroundRemoval.isOn); }},
    {"L", false,
     [](Text text, ScanRequest& r) {
       return readNumber(text, kMinI32, kMaxI32, r.settings.backgroundRemoval.level.emplace());
     }},
};

constexpr KeyRow<DocumentQuestion> kDocumentKeys[] = {
    {"R", false, [](Text text, DocumentQuestion& q) { return readResolution(text, q.resolution); }},
    {"M", false, [](Text text, DocumentQuestion& q) { return readColor(text, q.color); }},
};

}  // namespace

std::optional<Refusal> readSource(const Frame& frame, PaperSource& source) {
  return readLines<PaperSource>(kSourceLine, frame, source);
}

std::optional<Refusal> readQuestion(const Frame& frame, ScanRequest& request) {
  return readLines<ScanRequest>(kQuestionKeys, frame, request);
}

std::optional<Refusal> readStart(const Frame& frame, ScanRequest& request) {
  return readLines<ScanRequest>(kStartKeys, frame, request);
}

std::optional<Refusal> readDocumentQuestion(const Frame& frame, DocumentQuestion& question) {
  return readLines<DocumentQuestion>(kDocumentKeys, frame, question);
}

std::optional<Refusal> readNoLines(const Frame& frame) {
  if (frame.lines.empty()) return std::nullopt;
  return refuseLine(frame.lines.front(), frame.mnemonic + " has no lines");
}

}  // namespace vscan::gen1
