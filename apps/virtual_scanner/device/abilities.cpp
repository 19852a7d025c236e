#include "device/abilities.h"

namespace vscan {
namespace {

bool hasBit(std::int64_t mask, std::size_t bit) { return (mask >> bit & 1) != 0; }

Abilities ofSecond(const Capability& device) {
  Abilities can;
  can.hasFeeder = hasBit(device.at("paperSource"), 0);
  can.hasFlatbed = hasBit(device.at("paperSource"), 1);
  can.hasDuplex = can.hasFeeder && device.at("duplex") != 0;
  for (std::size_t path = 0; path < can.paths.size(); ++path) {
    PathAbilities& one = can.paths[path];
    for (std::size_t axis = 0; axis < 2; ++axis) {
      one.dpi[axis] = device.at("opticalResolution", 2 * path + axis);
      one.size[axis] = device.at("scanSizeMax", 2 * path + axis);
    }
    for (std::size_t side = 0; side < one.margins.size(); ++side) {
      one.margins[side] = device.at("marginSize", one.margins.size() * path + side);
    }
    one.straightens = hasBit(device.at("deskew"), path);
    one.takesLandscape = hasBit(device.at("landscape"), path);
    one.findsSize = hasBit(device.at("autoDocSize"), path);
  }
  can.paths[1].longLength = device.at("longPaperSimplex");
  can.paths[2].longLength = device.at("longPaperDuplex");
  for (std::size_t i = 0; i < can.position.size(); ++i) can.position[i] = device.at("paperPosition", i);
  can.colors = device.at("colorType");
  for (std::size_t i = 0; i < can.compressions.size(); ++i) can.compressions[i] = device.at("compressType", i);
  can.jpegSamplings = device.at("jpegSampling");
  if (hasBit(device.at("monoThreshold"), 0)) {
    can.thresholdMin = device.at("monoThresholdMin");
    can.thresholdMax = device.at("monoThresholdMax");
  }
  can.findsDoubleFeeds = hasBit(device.at("multifeed"), 0);
  can.gradesDoubleFeeds = hasBit(device.at("multifeed"), 1);
  can.judgesColor = hasBit(device.at("autoColorLevel"), 0);
  can.gradesGrey = device.at("autoColorRangeB") >= 2;
  can.hasColorProfiles = device.at("colorProfile") == 1;
  can.findsEdges = device.at("autoCrop") == 1;
  can.overScans = hasBit(device.at("overScan"), 0);
  can.scansBacksOnly = device.at("adfOnlyBackScan") == 1;
  can.takesCarrierSheets = device.at("carrierSheet") == 1;
  if (device.at("carrierOffset") != 0) can.carrierOffset = device.at("carrierOffset");
  can.takesPlasticCards = device.at("plasticCard") != 0;
  can.imageProcessings = device.at("specialDocument");
  for (const std::size_t i : {0u, 1u, 2u, 4u}) can.backgroundLevels[i] = device.at("backgroundRemove", i);
  can.findsBlankPages = hasBit(device.at("blankRemove"), 0);
  can.gradesBlankPages = hasBit(device.at("blankRemove"), 2);
  can.removesMoire = device.at("moire") == 1;
  can.moireDpi = {device.at("moireMaxX"), device.at("moireMaxY")};
  can.gammaMax = device.at("gammaRange");
  can.isQuietOnWish = device.at("quietScan") == 1;
  return can;
}

// A first-generation device says little of itself: what its block leaves out is the same for all of them.
Abilities ofFirst(const Capability& device) {
  constexpr std::int64_t kLongPaperTenths = 8630;
  constexpr std::int64_t kLines = 3, kJpeg = 4;  // masks of compressions
  constexpr std::int64_t kHostsUse420 = 1 << 3;
  Abilities can;
  can.hasFlatbed = device.at("flatbedMaxX") != 0;
  can.hasFeeder = device.at("adfMaxX") != 0;
  can.hasDuplex = can.hasFeeder && device.at("duplexMaxX") != 0;
  const std::int64_t x = device.at("marginX"), y = device.at("marginY");
  can.paths[0] = {{device.at("flatbedOpticalX"), device.at("flatbedOpticalY")},
                  {device.at("flatbedMaxX"), device.at("flatbedMaxY")},
                  0,
                  {x, x, y, y},
                  hasBit(device.at("scanFunc"), 4)};
  can.paths[1] = {{device.at("adfOpticalX"), device.at("adfOpticalY")},
                  {device.at("adfMaxX"), device.at("adfMaxY")},
                  device.at("longPaper") == 1 ? kLongPaperTenths : 0,
                  {x, x, y, y},
                  hasBit(device.at("scanFunc"), 3)};
  can.paths[2] = {{device.at("duplexOpticalX"), device.at("duplexOpticalY")},
                  {device.at("duplexMaxX"), device.at("duplexMaxY")},
                  0,
                  {x, x, y, y},
                  hasBit(device.at("scanFunc"), 3)};
  can.position = {device.at("flatbedPositionX"), device.at("flatbedPositionY"), device.at("adfPositionX"),
                  device.at("adfPositionY")};
  can.colors = device.at("colorType");
  // Palette pages go uncompressed only; grey JPEG and colour lines do no harm to a host that does not ask for them.
  can.compressions = {kLines, kLines, kLines | kJpeg, 1, kLines | kJpeg};
  can.jpegSamplings = kHostsUse420;
  can.findsDoubleFeeds = device.at("multifeed") != 0;
  can.findsEdges = hasBit(device.at("scanFunc"), 0);
  can.findsCorners = hasBit(device.at("scanFunc"), 1) || hasBit(device.at("scanFunc"), 2);
  if (device.at("removeBackground") != 0) can.backgroundLevels = {255, 255, 0, 0, 0};
  for (const Path path : {Path::FeederOneSide, Path::FeederBothSides}) {
    can.paths[static_cast<std::size_t>(path)].takesLandscape = device.at("landscape") != 0;
  }
  return can;
}

}  // namespace

Abilities abilitiesOf(const Capability& capability) {
  return capability.generation() == Generation::First ? ofFirst(capability) : ofSecond(capability);
}

}  // namespace vscan
