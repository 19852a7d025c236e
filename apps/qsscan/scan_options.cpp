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

// One for each row of the tables.
void addTableOptions(CLI::App& app, RawScanOptions& raw) {
  for (std::size_t i = 0; i < kToneControls.size(); ++i) {
    app.add_option(kToneControls[i].option, raw.options.wish.tone[i], kToneControls[i].help);
  }
  for (const Feature& feature : featureTable()) raw.features.push_back({&feature, nullptr, ""});
  for (RawScanOptions::Switch& row : raw.features) {
    const Feature& feature = *row.feature;
    row.option = feature.takesLevel
                     ? app.add_option(feature.option, row.level, feature.help)->type_name("[LEVEL]")->expected(0, 1)
                     : app.add_flag(feature.option, feature.help);
  }
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

void setFeatureWishes(RawScanOptions& raw) {
  for (const RawScanOptions::Switch& row : raw.features) {
    const bool isSwitchedOff = row.feature->takesLevel ? row.level == "false" : !row.option->as<bool>();
    if (row.option->count() == 0 || isSwitchedOff) continue;
    std::optional<int> level;
    if (!row.level.empty()) {
      level = wholeNumber(row.level);
      if (!level) refuse(std::string("The level of ") + row.feature->option + " is a whole number.");
    }
    raw.options.wish.features.push_back({row.feature, level});
  }
}

}  // namespace

void addScanOptions(CLI::App& app, RawScanOptions& raw) {
  ScanWish& wish = raw.options.wish;
  app.add_option("-o,--output", raw.path, "Output file; - is standard output. Without it scan-DATE-TIME.pdf");
  app.add_option("--format", raw.format, "pdf, tiff, png, jpeg or pnm; without it the ending of the file's name tells");
  app.add_option("--batch", raw.batch, "One file for each page, named by a pattern such as page%03d.png");
  app.add_option("--resolution", wish.resolutionDpi, "Dots per inch, one of those that info lists")
      ->capture_default_str();
  app.add_option("--mode", raw.mode, "color, gray, mono, dither or auto; without it the first that the device offers");
  app.add_option("--source", raw.source,
                 "auto, flatbed, adf or adf-duplex. The device itself takes paper from the feeder when there is some, "
                 "and else from the flatbed; this option chooses the margins and the position of the paper")
      ->capture_default_str();
  app.add_flag("--duplex", wish.duplex, "Scan both sides");
  app.add_option("--binding", raw.binding, "With both sides: long or short, the edge at which the sheets are bound");
  app.add_option("--page-size", raw.paper, paperHelp());
  app.add_option("-l", wish.leftMm, "Left edge of the area on the paper, in mm");
  app.add_option("-t", wish.topMm, "Top edge of the area, in mm");
  app.add_option("-x", wish.widthMm, "Width of the area, in mm");
  app.add_option("-y", wish.heightMm, "Height of the area, in mm");
  app.add_option("--brightness", wish.brightness, "-50 to 50")->check(CLI::Range(-50, 50))->capture_default_str();
  app.add_option("--contrast", wish.contrast, "-50 to 50")->check(CLI::Range(-50, 50))->capture_default_str();
  app.add_option("--threshold", raw.threshold,
                 "For mono: 1 to 254, brighter becomes white; auto finds it on each page");
  app.add_option("--color-drop", raw.colorDrop, "Leave a colour out: red, green, blue, all, or RRGGBB");
  app.add_option("--color-drop-range", wish.colorDropRange, "With RRGGBB: degrees of hue that count as this colour")
      ->check(CLI::Range(0, 180));
  addTableOptions(app, raw);
  app.add_option("--pages", wish.pages, "End after this many pages")->check(CLI::Range(1, 100000));
  app.add_option("--sheets", wish.sheets, "Feed this many sheets, where the device can count them")
      ->check(CLI::Range(1, 100000));
  app.add_option("--quality", raw.options.writer.jpegQuality, "Quality of JPEG pictures, 1 to 100")
      ->check(CLI::Range(1, 100))
      ->capture_default_str();
  app.add_option("--compression", raw.compression, "For PDF: auto (JPEG for color and gray) or lossless")
      ->capture_default_str();
  raw.progressOption =
      app.add_option("-p,--progress", raw.progress, "Tell of each page on standard error; --progress=json for programs")
          ->type_name("[json]")
          ->expected(0, 1);
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
  if (raw.progressOption->count() > 0) {
    if (!raw.progress.empty() && raw.progress != "json") refuse("Write --progress or --progress=json.");
    options.progress = raw.progress.empty() ? ProgressStyle::kText : ProgressStyle::kJson;
  }
  if (options.json && options.output.path == "-")
    refuse("--json and -o - both want standard output: name a file with -o.");
}

}  // namespace qsscan
