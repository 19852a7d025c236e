#include "protocol/capability.h"

#include "support/failure.h"

namespace vscan {
namespace {

constexpr std::uint16_t kModelNameTag = 0x0102;
constexpr std::uint16_t kTerminator = 0xF0F0;

struct Field {
  const char* key = nullptr;
  int bytes = 0;  // of one place
  std::size_t places = 0;
  bool isSigned = false;
};

struct Row {
  std::uint16_t tag;
  Field fields[6];
};

// Fields called "...Reserved" belong to a tag and are read by no host that we know of.
constexpr Row kRows[] = {
    {0x0001, {{"protocolVersion", 2, 1}}},
    {0x0101, {{"deviceCategory", 2, 1}}},
    {kModelNameTag, {}},
    {0x0201, {{"pushScanEvent", 1, 1}, {"pushScanReserved", 1, 1}}},
    {0x0202, {{"continuousScan", 1, 1}, {"pushParamSetting", 1, 1}}},
    {0x0203, {{"deviceFunc", 2, 1}}},
    {0x0204, {{"qciCommand", 1, 1}, {"qciReserved", 1, 1}}},
    {0x0301, {{"colorType", 1, 1}, {"colorTypeReserved", 1, 1}}},
    {0x0302, {{"paperSource", 1, 1}, {"duplex", 1, 1}}},
    {0x0303, {{"adfStackCapacity", 2, 1}}},
    {0x0304, {{"opticalResolution", 2, 6}}},  // bed x, y; feeder one side x, y; feeder both sides x, y
    {0x0305, {{"scanSizeMax", 2, 6}}},        // the same order; tenths of a millimetre
    {0x0306, {{"longPaperSimplex", 2, 1}, {"longPaperDuplex", 2, 1}}},
    {0x0307, {{"scanSizeMin", 2, 6}}},
    {0x0308, {{"docSizeMax", 2, 6}}},
    {0x0309, {{"marginSize", 2, 16, true}}},    // left, right, top, bottom of bed, one side, both sides, card slot
    {0x030A, {{"marginAdjust", 2, 32, true}}},  // plus and minus for each of these
    {0x030B, {{"paperPosition", 1, 6}}},        // bed x, y; feeder x, y; card slot x, y
    {0x030C, {{"cardOrientFlatbed", 1, 1}, {"cardOrientAdf", 1, 1}}},
    {0x030D, {{"multiPageSystem", 1, 1}, {"multiPageReserved", 1, 1}}},
    {0x030E, {{"overScan", 1, 1}, {"overScanColor", 1, 1}, {"overScanExclusion", 2, 1}}},
    {0x030F, {{"cancelSystem", 1, 1}, {"cancelReserved", 1, 1}}},
    {0x0310, {{"errorSystem", 1, 3}, {"errorReserved", 1, 1}}},
    {0x0311, {{"colorTapeMode", 1, 1}, {"colorTapeValue", 1, 4}, {"colorTapeExtra", 1, 1}}},
    {0x0401, {{"compressType", 1, 5}, {"compressReserved", 1, 1}}},  // text, error diffusion, grey, palette, colour
    {0x0402, {{"jpegLevel", 1, 1}, {"jpegSampling", 1, 1}}},
    {0x0403,
     {{"monoThreshold", 1, 1}, {"monoThresholdMin", 1, 1}, {"monoThresholdMax", 1, 1}, {"thresholdReserved", 1, 1}}},
    {0x0404, {{"specialDocument", 2, 1}}},
    {0x0405, {{"colorProfile", 2, 1}}},
    {0x0406, {{"gammaRange", 1, 1}, {"gammaReserved", 1, 1}}},
    {0x0407, {{"moire", 1, 1}, {"moireReserved", 1, 1}, {"moireMaxX", 2, 1}, {"moireMaxY", 2, 1}}},
    {0x0408, {{"imageReserved", 1, 2}}},
    {0x0501, {{"advancedReserved", 1, 2}}},
    {0x0502, {{"autoCrop", 1, 1}, {"autoCropColor", 1, 1}, {"autoCropDpi", 2, 4}}},  // maximum x, y; minimum x, y
    {0x0503, {{"cropReserved", 1, 2}, {"cropReservedDpi", 2, 4}}},
    {0x0504, {{"idCard", 1, 1}, {"landscape", 1, 1}, {"adfOnlyBackScan", 2, 1}}},
    {0x0505,
     {{"carrierSheet", 1, 1},
      {"carrierColor", 1, 1},
      {"carrierOffset", 2, 2},  // top, bottom
      {"carrierDpiMin", 2, 2},
      {"carrierDpiMax", 2, 2},
      {"carrierExclusion", 2, 1}}},
    {0x0506, {{"plasticCard", 1, 1}, {"plasticCardReserved", 1, 1}, {"plasticCardReservedWords", 2, 5}}},
    {0x0507, {{"multifeed", 1, 1}, {"multifeedLevel", 1, 1}}},
    {0x0508, {{"backgroundRemove", 1, 6}}},
    {0x0509, {{"bleedThroughRemove", 1, 6}}},
    {0x050A, {{"autoDocSize", 1, 1}, {"autoDocSizeOption", 1, 1}}},
    {0x050B, {{"deskew", 1, 1}, {"deskewOption", 1, 1}}},
    {0x050C, {{"blankRemove", 1, 1}, {"blankRemoveLevel", 1, 1}}},
    {0x050D,
     {{"autoColorLevel", 1, 1}, {"autoColorRangeA", 1, 1}, {"autoColorRangeB", 1, 1}, {"autoColorReserved", 1, 1}}},
    {0x050E, {{"detectResolution", 1, 1}, {"detectResolutionReserved", 1, 1}}},
    {0x050F, {{"quietScan", 1, 1}, {"quietReserved", 1, 1}, {"quietSecond", 2, 2}, {"quietFirst", 2, 2}}},
};

const Field* findField(std::string_view key) {
  for (const Row& row : kRows) {
    for (const Field& field : row.fields) {
      if (field.key != nullptr && key == field.key) return &field;
    }
  }
  return nullptr;
}

}  // namespace

bool Capability::hasField(std::string_view key) { return findField(key) != nullptr; }

std::size_t Capability::places(std::string_view key) {
  const Field* field = findField(key);
  return field == nullptr ? 0 : field->places;
}

std::int64_t Capability::at(std::string_view key, std::size_t place) const {
  const auto found = values_.find(key);
  return found == values_.end() ? 0 : found->second.at(place);
}

void Capability::set(std::string_view key, std::size_t place, std::int64_t value) {
  const Field* field = findField(key);
  if (field == nullptr) throw Failure("\"" + std::string(key) + "\" is no field of the capability answer");
  if (place >= field->places) {
    throw Failure(std::string(key) + " has " + std::to_string(field->places) + " place(s), counted from 0");
  }
  const int bits = 8 * field->bytes;
  const std::int64_t minimum = field->isSigned ? -(std::int64_t{1} << (bits - 1)) : 0;
  const std::int64_t maximum = (std::int64_t{1} << (field->isSigned ? bits - 1 : bits)) - 1;
  if (value < minimum || value > maximum) {
    throw Failure(std::string(key) + " holds values from " + std::to_string(minimum) + " to " +
                  std::to_string(maximum) + ", not " + std::to_string(value));
  }
  auto& places = values_[std::string(key)];
  places.resize(field->places);
  places[place] = value;
}

void Capability::setModelName(std::string name) {
  if (name.size() > kMaxModelNameBytes) throw Failure("modelName is longer than 128 bytes");
  modelName_ = std::move(name);
}

Bytes Capability::body() const {
  Bytes body;
  for (const Row& row : kRows) {
    appendU16(body, row.tag);
    if (row.tag == kModelNameTag) {
      appendU16(body, static_cast<std::uint16_t>(modelName_.size()));
      body.insert(body.end(), modelName_.begin(), modelName_.end());
      continue;
    }
    std::size_t valueBytes = 0;
    for (const Field& field : row.fields) valueBytes += static_cast<std::size_t>(field.bytes) * field.places;
    appendU16(body, static_cast<std::uint16_t>(valueBytes));
    for (const Field& field : row.fields) {
      for (std::size_t place = 0; place < field.places; ++place) {
        appendLe(body, static_cast<std::uint64_t>(at(field.key, place)), field.bytes);
      }
    }
  }
  appendU16(body, kTerminator);
  appendU16(body, 0);
  return body;
}

}  // namespace vscan
