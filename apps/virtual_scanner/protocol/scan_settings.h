// What the host asks for, as read from its commands.
#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace vscan {

enum class PaperSource { Automatic, Feeder, Flatbed };
enum class ColorMode { Text, ErrorDiffusion, Grey, Palette, Color, Automatic };
enum class Sides { Front, Both, BackOnly };
enum class Compression { None, RunLength, Jpeg };
enum class JpegSampling { Yuv444, Yuv422, Yuv411, Yuv420, Grey };
enum class AreaKind { Normal, Full, Over, Automatic, AutomaticDeskewed };
enum class Ejection { NotSaid, All, One, None };
enum class ImageProcessing { Normal, Copy, Ocr, Photo, TextAndGraphics };
enum class PaperType { Normal, Thin, Thick, PlasticCard };
enum class CarrierSheet { None, Automatic, Used };

// How a sheet is looked at: for its edges, untouched, for its corners, or straightened. The first generation has one
// word for all of it, the second knows the first three.
enum class Reading { Normal, Edges, Original, Corners, Deskewed };

struct Resolution {
  bool isAutomatic = false;
  std::int64_t x = 0;  // dots per inch
  std::int64_t y = 0;
  bool operator==(const Resolution&) const = default;
};

// A value that is OFF, ON, or a level that implies ON.
struct Switch {
  bool isOn = false;
  std::optional<std::int64_t> level;
  bool operator==(const Switch&) const = default;
};

struct ScanSettings {
  std::string hostSystem;
  PaperSource source = PaperSource::Automatic;
  Resolution resolution;
  ColorMode color = ColorMode::Color;
  AreaKind areaKind = AreaKind::Normal;
  std::array<std::int64_t, 4> margins{};  // left, right, top, bottom; tenths of a millimetre
  Sides sides = Sides::Front;
  std::int64_t brightness = 50;  // 0 to 100
  std::int64_t contrast = 50;    // 0 to 100
  std::optional<std::array<std::int64_t, 2>> colorLevel;
  std::optional<std::int64_t> threshold;
  Compression compression = Compression::None;
  std::int64_t jpegRate = 0;  // 0 to 100
  JpegSampling jpegSampling = JpegSampling::Yuv444;
  ImageProcessing imageProcessing = ImageProcessing::Normal;
  PaperType paperType = PaperType::Normal;
  std::int64_t maxSheets = 0;  // 0 = all there are
  bool longPaper = false;
  CarrierSheet carrierSheet = CarrierSheet::None;
  Switch backgroundRemoval;
  Switch doubleFeedDetection;
  bool goesOnAfterDoubleFeed = false;
  bool deskew = false;
  bool isLandscape = false;  // the sheets go in with their left edge first
  Switch blankRemoval;
  bool removesMoire = false;
  Switch gamma;             // the level in hundredths
  bool appliesTone = true;  // brightness, contrast and gamma
  bool isQuiet = false;
  std::string userName;
};

struct StartSettings {
  Resolution resolution;
  AreaKind areaKind = AreaKind::Normal;
  std::array<std::int64_t, 4> area{};  // left, top, right, bottom; pixels; for AreaKind::Normal only
  Reading reading = Reading::Normal;
};

struct DocumentCheck {
  PaperSource source = PaperSource::Automatic;
};

struct Abort {
  Ejection ejection = Ejection::NotSaid;
};

}  // namespace vscan
