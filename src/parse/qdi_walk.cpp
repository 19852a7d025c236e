// The tags of a QDI body and where their values go.
#include <cstring>

#include "parse/ParseCmdRes_v2.h"
#include "parse/tag_walk.h"

namespace orvalle_scan_api {
namespace {

constexpr std::uint16_t kModelNameTag = 0x0102;   // reads its declared length
constexpr std::uint16_t kDocSizeMaxTag = 0x0308;  // reads nothing if its length is 0
constexpr std::uint16_t kWidenedTag = 0x0408;     // two bytes become two words

#define QDI_ROW(tag, readBytes, field) \
  { tag, readBytes, offsetof(_QDICMDRESPONSE, field) }
constexpr TagRow kTags[] = {
    QDI_ROW(0x0001, 2, protocolVersion),
    QDI_ROW(0x0101, 2, deviceCategory),
    QDI_ROW(0x0201, 2, pushScanEvent),
    QDI_ROW(0x0202, 2, continuousScan),
    QDI_ROW(0x0203, 2, deviceFunc),
    QDI_ROW(0x0204, 2, qciCommand),
    QDI_ROW(0x0301, 2, colorType),
    QDI_ROW(0x0302, 2, paperSource),
    QDI_ROW(0x0303, 2, adfStackCapacity),
    QDI_ROW(0x0304, 12, opticalResolution),
    QDI_ROW(0x0305, 12, scanSizeMax),
    QDI_ROW(0x0306, 4, longPaperSimplex),
    QDI_ROW(0x0307, 12, scanSizeMin),
    QDI_ROW(kDocSizeMaxTag, 12, docSizeMax),
    QDI_ROW(0x0309, 32, marginSize),
    QDI_ROW(0x030A, 64, marginAdjust),
    QDI_ROW(0x030B, 6, paperPosition),
    QDI_ROW(0x030C, 2, cardOrientFlatbed),
    QDI_ROW(0x030D, 2, multiPageSystem),
    QDI_ROW(0x030E, 4, overScan),
    QDI_ROW(0x030F, 2, cancelSystem),
    QDI_ROW(0x0310, 4, errorSystem),
    QDI_ROW(0x0311, 6, colorTapeMode),
    QDI_ROW(0x0401, 6, compressType),
    QDI_ROW(0x0402, 2, jpegLevel),
    QDI_ROW(0x0403, 4, monoThreshold),
    QDI_ROW(0x0404, 2, specialDocument),
    QDI_ROW(0x0405, 2, colorProfile),
    QDI_ROW(0x0406, 2, gammaRange),
    QDI_ROW(0x0407, 6, moire),
    QDI_ROW(0x0501, 2, kept0501),
    QDI_ROW(0x0502, 10, autoCrop),
    QDI_ROW(0x0503, 10, kept0503Bytes),
    QDI_ROW(0x0504, 4, idCard),
    QDI_ROW(0x0505, 16, carrierSheet),
    QDI_ROW(0x0506, 12, plasticCard),
    QDI_ROW(0x0507, 2, multifeed),
    QDI_ROW(0x0508, 6, backgroundRemove),
    QDI_ROW(0x0509, 6, bleedThroughRemove),
    QDI_ROW(0x050A, 2, autoDocSize),
    QDI_ROW(0x050B, 2, deskew),
    QDI_ROW(0x050C, 2, blankRemove),
    QDI_ROW(0x050D, 4, autoColorLevel),
    QDI_ROW(0x050E, 2, detectResolution),
    QDI_ROW(0x050F, 10, quietScan),
};
#undef QDI_ROW

// Kept: bytes are added onto what the record holds, and a name longer than its field runs on through the fields behind
// it. Devices exist whose later tags rely on the sums; cutting the name would change them. The run ends with the
// record. Pinned by ParseCmdRes_v2_test "AnOverlongModelNameAddsToTheFieldsBehindIt".
std::size_t readModelName(const TagValue& value, std::uint8_t* record) {
  constexpr std::size_t kNameOffset = offsetof(_QDICMDRESPONSE, modelName);
  std::memset(record + kNameOffset, 0, sizeof(_QDICMDRESPONSE::modelName));
  const std::size_t count = std::min(value.declaredLength(), sizeof(_QDICMDRESPONSE) - kNameOffset);
  for (std::size_t i = 0; i < count; ++i) {
    record[kNameOffset + i] = static_cast<std::uint8_t>(record[kNameOffset + i] + value.u8(i));
  }
  return value.declaredLength();
}

std::size_t readWidened(const TagValue& value, _QDICMDRESPONSE& response) {
  response.kept0408[0] = value.u8(0);
  response.kept0408[1] = value.u8(1);
  return 2;
}

}  // namespace

_QDICMDRESPONSE CParseCmdRes_v2::GetQDIcommandResponse(unsigned char* data, long size) {
  _QDICMDRESPONSE response{};
  auto* record = reinterpret_cast<std::uint8_t*>(&response);
  walkTags(data, size, "QDI", qdiResponseComplete,
           [&response, record](std::uint16_t tag, const TagValue& value) -> std::optional<std::size_t> {
             if (tag == kModelNameTag) return value.declaredLength() == 0 ? 0 : readModelName(value, record);
             if (tag == kDocSizeMaxTag && value.declaredLength() == 0) return 0;
             if (tag == kWidenedTag) return readWidened(value, response);
             return storeTag(kTags, tag, value, record);
           });
  return response;
}

}  // namespace orvalle_scan_api
