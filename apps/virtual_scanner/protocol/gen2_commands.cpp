#include "protocol/gen2_commands.h"

#include <limits>

#include "protocol/values.h"

namespace vscan::gen2 {
namespace {

using Text = std::string_view;

constexpr std::int64_t kMaxU32 = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kMinI32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaxI32 = std::numeric_limits<std::int32_t>::max();

bool readSource(Text text, PaperSource& out) {
  return readWord<PaperSource>(
      text, {{"AUTO", PaperSource::Automatic}, {"ADF", PaperSource::Feeder}, {"FB", PaperSource::Flatbed}}, out);
}

bool readResolution(Text text, Resolution& out) {
  if (text == "AUTO") {
    out = {true, 0, 0};
    return true;
  }
  std::int64_t numbers[2];
  if (!readNumbers(text, 0, kMaxU32, numbers)) return false;
  out = {false, numbers[0], numbers[1]};
  return true;
}

bool readAreaKeyword(Text text, AreaKind& out) {
  return readWord<AreaKind>(text,
                            {{"FULL", AreaKind::Full},
                             {"OVER", AreaKind::Over},
                             {"AUTO", AreaKind::Automatic},
                             {"ATDSKW", AreaKind::AutomaticDeskewed}},
                            out);
}

// The start command gives an area of kind Normal as numbers: left, top, right, bottom.
bool readStartArea(Text text, StartSettings& out) {
  if (readAreaKeyword(text, out.areaKind)) return true;
  out.areaKind = AreaKind::Normal;
  return readNumbers(text, 0, kMaxU32, out.area);
}

bool readSwitch(Text text, std::int64_t minimum, std::int64_t maximum, Switch& out) {
  out = {};
  if (readOnOff(text, out.isOn)) return true;
  std::int64_t level = 0;
  if (!readNumber(text, minimum, maximum, level)) return false;
  out = {true, level};
  return true;
}

// OFF, a level, or nothing for a level of the device's choice; there is no ON.
bool readGamma(Text text, Switch& out) {
  out.isOn = text != "OFF";
  return !out.isOn || text.empty() || readNumber(text, 1, kMaxU32, out.level.emplace());
}

template <std::size_t kCount>
bool oneOf(Text text, const Text (&words)[kCount]) {
  for (const Text word : words) {
    if (word == text) return true;
  }
  return false;
}

constexpr KeyRow<ScanSettings> kScanKeys[] = {
    // key  optional  value
    {"OS", false,
     [](Text text, ScanSettings& s) {
       s.hostSystem = text;
       return oneOf(text, {"WIN", "MAC", "IOS", "ADR", "LNX", "WPH"});
     }},
    {"PSRC", false, [](Text text, ScanSettings& s) { return readSource(text, s.source); }},
    {"RESO", false, [](Text text, ScanSettings& s) { return readResolution(text, s.resolution); }},
    {"CLR", false,
     [](Text text, ScanSettings& s) {
       return readWord<ColorMode>(text,
                                  {{"TEXT", ColorMode::Text},
                                   {"ERRDIF", ColorMode::ErrorDiffusion},
                                   {"GRAY256", ColorMode::Grey},
                                   {"C256", ColorMode::Palette},
                                   {"C24BIT", ColorMode::Color},
                                   {"AUTO", ColorMode::Automatic}},
                                  s.color);
     }},
    {"AREA", false,
     [](Text text, ScanSettings& s) {
       s.areaKind = AreaKind::Normal;
       return text == "NORMAL" || readAreaKeyword(text, s.areaKind);
     }},
    {"MRGN", false, [](Text text, ScanSettings& s) { return readNumbers(text, kMinI32, kMaxI32, s.margins); }},
    {"DPLX", false,
     [](Text text, ScanSettings& s) {
       return readWord<Sides>(text, {{"OFF", Sides::Front}, {"ON", Sides::Both}, {"BACK", Sides::BackOnly}}, s.sides);
     }},
    {"BRIT", false, [](Text text, ScanSettings& s) { return readNumber(text, 0, 100, s.brightness); }},
    {"CONT", false, [](Text text, ScanSettings& s) { return readNumber(text, 0, 100, s.contrast); }},
    {"ATCL", true,
     [](Text text, ScanSettings& s) { return readNumbers(text, kMinI32, kMaxI32, s.colorLevel.emplace()); }},
    {"THRS", true, [](Text text, ScanSettings& s) { return readNumber(text, 0, 255, s.threshold.emplace()); }},
    {"COMP", false,
     [](Text text, ScanSettings& s) {
       return readWord<Compression>(
           text, {{"NONE", Compression::None}, {"RLENGTH", Compression::RunLength}, {"JPEG", Compression::Jpeg}},
           s.compression);
     }},
    {"RATE", false, [](Text text, ScanSettings& s) { return readNumber(text, 0, 100, s.jpegRate); }},
    {"JSF", false,
     [](Text text, ScanSettings& s) {
       return readWord<JpegSampling>(text,
                                     {{"444", JpegSampling::Yuv444},
                                      {"422", JpegSampling::Yuv422},
                                      {"411", JpegSampling::Yuv411},
                                      {"420", JpegSampling::Yuv420},
                                      {"400", JpegSampling::Grey}},
                                     s.jpegSampling);
     }},
    {"IPRC", false,
     [](Text text, ScanSettings& s) {
       return readWord<ImageProcessing>(text,
                                        {{"NORMAL", ImageProcessing::Normal},
                                         {"COPY", ImageProcessing::Copy},
                                         {"OCR", ImageProcessing::Ocr},
                                         {"PHOTO", ImageProcessing::Photo},
                                         {"TXTGR", ImageProcessing::TextAndGraphics}},
                                        s.imageProcessing);
     }},
    // Kept: "THOCK" is how the device spells thick paper; a host that corrects it would be refused.
    // Pinned by Gen2Commands_test "EachValueOfTheScanSettingsIsUnderstood".
    {"PTYPE", false,
     [](Text text, ScanSettings& s) {
       return readWord<PaperType>(text,
                                  {{"NORMAL", PaperType::Normal},
                                   {"THIN", PaperType::Thin},
                                   {"THOCK", PaperType::Thick},
                                   {"PCARD", PaperType::PlasticCard}},
                                  s.paperType);
     }},
    {"PAGE", false, [](Text text, ScanSettings& s) { return readNumber(text, 0, kMaxU32, s.maxSheets); }},
    {"LONG", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.longPaper); }},
    {"CARR", false,
     [](Text text, ScanSettings& s) {
       return readWord<CarrierSheet>(
           text, {{"OFF", CarrierSheet::None}, {"AUTO", CarrierSheet::Automatic}, {"ON", CarrierSheet::Used}},
           s.carrierSheet);
     }},
    {"RMGC", false, [](Text text, ScanSettings& s) { return readSwitch(text, kMinI32, kMaxI32, s.backgroundRemoval); }},
    {"DTDF", false, [](Text text, ScanSettings& s) { return readSwitch(text, 0, kMaxU32, s.doubleFeedDetection); }},
    {"OPDF", true,
     [](Text text, ScanSettings& s) {
       return readWord<bool>(text, {{"CONT", true}, {"STOP", false}}, s.goesOnAfterDoubleFeed);
     }},
    // Corners are found or not; the stream has no record that would tell them.
    {"DT4V", false,
     [](Text text, ScanSettings&) {
       bool findsCorners = false;
       return readOnOff(text, findsCorners);
     }},
    {"DSKW", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.deskew); }},
    {"LSMD", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.isLandscape); }},
    {"RMBP", false, [](Text text, ScanSettings& s) { return readSwitch(text, 0, kMaxU32, s.blankRemoval); }},
    {"RMMR", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.removesMoire); }},
    {"GMMA", false, [](Text text, ScanSettings& s) { return readGamma(text, s.gamma); }},
    {"TONE", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.appliesTone); }},
    {"QTFD", false, [](Text text, ScanSettings& s) { return readOnOff(text, s.isQuiet); }},
    {"USER", false,
     [](Text text, ScanSettings& s) {
       s.userName = text;
       return true;
     }},
};

constexpr KeyRow<StartSettings> kStartKeys[] = {
    {"RESO", false, [](Text text, StartSettings& s) { return readResolution(text, s.resolution); }},
    {"AREA", false, readStartArea},
    {"MODE", false,
     [](Text text, StartSettings& s) {
       return readWord<Reading>(
           text, {{"NORMAL", Reading::Normal}, {"EDGEPRE", Reading::Edges}, {"ORIGINAL", Reading::Original}},
           s.reading);
     }},
};

constexpr KeyRow<DocumentCheck> kDocumentCheckKeys[] = {
    {"PSRC", false, [](Text text, DocumentCheck& check) { return readSource(text, check.source); }},
};

constexpr KeyRow<Abort> kAbortKeys[] = {
    {"EJCT", true,
     [](Text text, Abort& abort) {
       return readWord<Ejection>(text, {{"ALL", Ejection::All}, {"ONE", Ejection::One}, {"NO", Ejection::None}},
                                 abort.ejection);
     }},
};

}  // namespace

std::optional<Refusal> readScanSettings(const Frame& frame, ScanSettings& settings) {
  return readLines<ScanSettings>(kScanKeys, frame, settings);
}

std::optional<Refusal> readStart(const Frame& frame, StartSettings& settings) {
  return readLines<StartSettings>(kStartKeys, frame, settings);
}

std::optional<Refusal> readDocumentCheck(const Frame& frame, DocumentCheck& check) {
  return readLines<DocumentCheck>(kDocumentCheckKeys, frame, check);
}

std::optional<Refusal> readAbort(const Frame& frame, Abort& abort) {
  return readLines<Abort>(kAbortKeys, frame, abort);
}

std::optional<Refusal> readNoKeys(const Frame& frame) {
  if (frame.lines.empty()) return std::nullopt;
  return refuseLine(frame.lines.front(), frame.mnemonic + " has no keys");
}

}  // namespace vscan::gen2
