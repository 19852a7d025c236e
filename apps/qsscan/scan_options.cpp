#include "scan_options.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>

#include "exit_codes.h"

namespace qsscan {
namespace {

[[noreturn]] void refuse(const std::string& sentence) { throw CommandError(ExitCode::kUsage, sentence); }

std::string paperHelp() {
  std::string text = "Paper: auto, WIDTHxHEIGHT in mm, WIDTHxlong, or ";
  for (const PaperRow& row : paperTable()) text += std::string(&row == paperTable().data() ? "" : ", ") + row.name;
  return text + "; without it " + defaultPaperName();
}

// "[LEVEL]", or the words in place of it.
std::string valueName(const Feature& feature) {
  if (feature.words.empty()) return "[LEVEL]";
  std::string text;
  for (const char* word : feature.words) text += (text.empty() ? "[" : "|") + std::string(word);
  return text + "]";
}

// One for each row of the table.
void addFeatures(CLI::App& app, RawScanOptions& raw) {
  for (const Feature& feature : featureTable()) raw.features.push_back({&feature, nullptr, ""});
  for (RawScanOptions::Switch& row : raw.features) {
    const Feature& feature = *row.feature;
    app.option_defaults()->group(feature.group);
    row.option =
        feature.takesValue()
            ? app.add_option(feature.option, row.level, feature.help)->type_name(valueName(feature))->expected(0, 1)
            : app.add_flag(feature.option, feature.help);
  }
}

CLI::Validator range(int min, int max) { return CLI::Range(min, max).description(""); }

void addOutputOptions(CLI::App& app, RawScanOptions& raw) {
  app.option_defaults()->group("Output");
  app.add_option("-o,--output", raw.path, "Output file; - is standard output. Without it scan-DATE-TIME.pdf")
      ->type_name("FILE");
  app.add_option("--format", raw.format, "pdf, tiff, png, jpeg or pnm; without it the ending of the file's name tells")
      ->type_name("FORMAT");
  app.add_option("--batch", raw.batch, "One file for each page, named by a pattern such as page%03d.png")
      ->type_name("PATTERN");
  app.add_option("--quality", raw.options.writer.jpegQuality, "Quality of JPEG pictures, 1 to 100; 90 without it")
      ->check(range(1, 100))
      ->type_name("N");
  app.add_option("--compression", raw.compression, "For PDF: auto (JPEG for color and gray, as without it) or lossless")
      ->type_name("KIND");
  raw.progressOption =
      app.add_option("-p,--progress", raw.progress, "Tell of each page on standard error; --progress=json for programs")
          ->type_name("[json]")
          ->expected(0, 1);
}

void addPageOptions(CLI::App& app, RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  app.option_defaults()->group(kPageGroup);
  app.add_option("--resolution", wish.resolutionDpi, "Dots per inch, one of those that info lists; 300 without it")
      ->type_name("DPI");
  app.add_option("--mode", raw.mode, "color, gray, mono, dither or auto; without it the first that the device offers")
      ->type_name("MODE");
  app.add_option("--page-size", raw.paper, paperHelp())->type_name("PAPER");
  app.add_option("-l", wish.leftMm, "Left edge of the area on the paper, in mm")->type_name("MM");
  app.add_option("-t", wish.topMm, "Top edge of the area")->type_name("MM");
  app.add_option("-x", wish.widthMm, "Width of the area")->type_name("MM");
  app.add_option("-y", wish.heightMm, "Height of the area")->type_name("MM");
  app.add_option("--edge-cut", raw.edgeCut, "Leave this much off the edges: a width in mm, or L,T,R,B")
      ->type_name("MM");
  app.add_option("--rotate", wish.turnDegrees, "Turn every page clockwise: 90, 180 or 270 degrees")
      ->check(CLI::IsMember({0, 90, 180, 270}).description(""))
      ->type_name("N");
}

void addFeedOptions(CLI::App& app, RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  app.option_defaults()->group(kFeedGroup);
  app.add_option("--source", raw.source,
                 "auto, flatbed, adf or adf-duplex: whose margins and position to reckon with. The device itself takes "
                 "paper from the feeder when there is some")
      ->type_name("SOURCE");
  app.add_flag("--duplex", wish.duplex, "Scan both sides");
  app.add_option("--binding", raw.binding, "With both sides: long or short, the edge at which the sheets are bound")
      ->type_name("EDGE");
  app.add_option("--pages", wish.pages, "End after this many pages")->check(range(1, 100000))->type_name("N");
  app.add_option("--sheets", wish.sheets, "Feed this many sheets, where the device can count them")
      ->check(range(1, 100000))
      ->type_name("N");
}

void addPictureOptions(CLI::App& app, RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  app.option_defaults()->group(kPictureGroup);
  app.add_option("--brightness", wish.brightness, "-50 to 50")->check(range(-50, 50))->type_name("N");
  app.add_option("--contrast", wish.contrast, "-50 to 50")->check(range(-50, 50))->type_name("N");
  app.add_option("--threshold", raw.threshold, "For mono: 1 to 254, brighter becomes white; auto finds it on each page")
      ->type_name("N");
  app.add_option("--color-drop", raw.colorDrop, "Leave a colour out: red, green, blue, all, or RRGGBB")
      ->type_name("COLOR");
  app.add_option("--color-drop-range", wish.colorDropRange, "With RRGGBB: degrees of hue that count as this colour")
      ->check(range(0, 180))
      ->type_name("N");
  for (std::size_t i = 0; i < kToneControls.size(); ++i) {
    app.add_option(kToneControls[i].option, wish.tone[i], kToneControls[i].help)->type_name("N");
  }
}

void addEdgeFill(CLI::App& app, RawScanOptions& raw) {
  app.option_defaults()->group(kCleaningGroup);
  app.add_option("--edge-fill", raw.edgeFill, "Paint the edges over: a width in mm, or L,T,R,B")->type_name("MM");
  app.add_option("--edge-color", raw.edgeColor, "With --edge-fill: white, as without it, or black")->type_name("COLOR");
}

void setPaper(RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  wish.paperIsWished = !raw.paper.empty();
  const std::string name = wish.paperIsWished ? raw.paper : defaultPaperName();
  if (name == "auto") {
    wish.paperIsAuto = true;
    return;
  }
  const auto paper = findPaper(name);
  if (!paper) refuse("The page size \"" + name + "\" is unknown. Write a name such as a4, or WIDTHxHEIGHT in mm.");
  wish.paper = *paper;
}

void setSides(RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  const auto source = findSource(raw.source);
  if (!source) refuse("The source \"" + raw.source + "\" is unknown. There are auto, flatbed, adf and adf-duplex.");
  wish.source = *source;
  if (wish.source == Source::kFeederDuplex) wish.duplex = true;
  if (raw.binding.empty()) return;
  if (raw.binding != "long" && raw.binding != "short") refuse("The binding is long or short.");
  if (!wish.duplex) refuse("--binding needs both sides: add --duplex.");
  wish.bindShortEdge = raw.binding == "short";
}

// A whole number; nothing for any other text.
std::optional<int> wholeNumber(const std::string& text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

void setThreshold(RawScanOptions& raw) {
  if (raw.threshold.empty()) return;
  ScanWish& wish = raw.options.wish;
  wish.autoThreshold = raw.threshold == "auto";
  if (wish.autoThreshold) return;
  const auto value = wholeNumber(raw.threshold);
  if (!value || *value < 1 || *value > 254) refuse("--threshold is auto or a number of 1 to 254.");
  wish.threshold = static_cast<unsigned>(*value);
}

void setColors(RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  if (!raw.colorDrop.empty()) {
    wish.colorDrop = findColorDrop(raw.colorDrop);
    if (!wish.colorDrop) {
      refuse("The colour \"" + raw.colorDrop + "\" is unknown. Write red, green, blue, all, or RRGGBB such as 00A0FF.");
    }
  }
  const bool isOwnColor = wish.colorDrop && wish.colorDrop->preset == nullptr;
  if (wish.colorDropRange && !isOwnColor) refuse("--color-drop-range belongs to --color-drop RRGGBB.");
}

EdgeWidths edgeWidths(const char* option, const std::string& text) {
  const auto widths = findEdgeWidths(text);
  if (!widths) {
    refuse(std::string(option) + " takes a width in mm, or LEFT,TOP,RIGHT,BOTTOM such as 10,0,3,0; each 0 to 100.");
  }
  return *widths;
}

void setEdges(RawScanOptions& raw) {
  EdgeWish& edges = raw.options.wish.edges;
  if (!raw.edgeCut.empty()) edges.cut = edgeWidths("--edge-cut", raw.edgeCut);
  if (!raw.edgeFill.empty()) edges.fill = edgeWidths("--edge-fill", raw.edgeFill);
  if (raw.edgeColor.empty()) return;
  if (raw.edgeColor != "white" && raw.edgeColor != "black") refuse("The colour of edges is white or black.");
  if (!edges.fill) refuse("--edge-color belongs to --edge-fill.");
  edges.fillIsBlack = raw.edgeColor == "black";
}

void setFeatureWishes(RawScanOptions& raw) {
  for (const RawScanOptions::Switch& row : raw.features) {
    const bool isSwitchedOff = row.feature->takesValue() ? row.level == "false" : !row.option->as<bool>();
    if (row.option->count() == 0 || isSwitchedOff) continue;
    std::optional<int> level;
    if (!row.level.empty()) level = parseLevel(*row.feature, row.level);
    raw.options.wish.features.push_back({row.feature, level});
  }
}

}  // namespace

void addScanOptions(CLI::App& app, RawScanOptions& raw) {
  addOutputOptions(app, raw);
  addPageOptions(app, raw);
  addFeedOptions(app, raw);
  addPictureOptions(app, raw);
  addFeatures(app, raw);
  addEdgeFill(app, raw);
}

void finishScanOptions(RawScanOptions& raw) {
  Options& options = raw.options;
  if (!raw.mode.empty()) {
    options.wish.mode = findMode(raw.mode);
    if (!options.wish.mode) {
      refuse("The mode \"" + raw.mode + "\" is unknown. There are color, gray, mono, dither and auto.");
    }
  }
  setSides(raw);
  setPaper(raw);
  setThreshold(raw);
  setColors(raw);
  setEdges(raw);
  setFeatureWishes(raw);
  options.output = planOutput(raw.format, raw.path, raw.batch);
  const FormatRow& format = rowOf(options.output.format);
  if (wishesProfile(options.wish.features) && !format.holdsProfile) {
    refuse(std::string("A ") + format.name +
           " file holds no colour profile: leave out --icc-profile or use another "
           "format.");
  }
  if (raw.compression != "auto" && raw.compression != "lossless") refuse("The compression is auto or lossless.");
  options.writer.lossless = raw.compression == "lossless";
  if (raw.progressOption->count() > 0 && raw.progress != "false") {
    if (!raw.progress.empty() && raw.progress != "json") refuse("Write --progress or --progress=json.");
    options.progress = raw.progress.empty() ? ProgressStyle::kText : ProgressStyle::kJson;
  }
  if (options.json && options.output.path == "-")
    refuse("--json and -o - both want standard output: name a file with -o.");
}

}  // namespace qsscan
