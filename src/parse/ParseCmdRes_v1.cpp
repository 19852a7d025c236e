#include "parse/ParseCmdRes_v1.h"

#include <algorithm>
#include <iterator>

#include "foundation/trace.h"
#include "parse/CmdStrParse.h"
#include "parse/answer_text_v1.h"
#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"

namespace orvalle_scan_api {

using qvtcl::CTString;

namespace {

CTString listToken(const CTString& list, int index) { return CCmdStrParse().GetStrPart(list, ",", index); }

std::uint32_t unsignedOf(const CTString& token) { return static_cast<std::uint32_t>(decimalOf(token)); }

std::uint32_t tenthsOf(const CTString& token) {
  return CConvertUnit().ConvDeviceMillimeterToDriverMillimeter(unsignedOf(token));
}

PAPERSOURCESELECT sourceOf(const CTString& token) {
  if (token.IsEmpty()) return {};
  if (token == "1") return PAPERSOURCE_ADF;
  if (token == "3") return PAPERSOURCE_CARDSLOT;
  return PAPERSOURCE_FLATBED;
}

// The pair that a key's line tells; false, with nothing changed, unless both numbers are there.
bool readPair(const CTString& text, const char* key, AXIS_SIGNED& pair) {
  const CTString value = lineValue(text, key);
  const CTString x = listToken(value, 1);
  const CTString y = listToken(value, 2);
  if (x.IsEmpty() || y.IsEmpty()) return false;
  pair = {decimalOf(x), decimalOf(y)};
  return true;
}

}  // namespace

tagQS_PUSHSCAN_PARAMETERS CParseCmdRes_v1::ParseDeviceKeyInfoResponse(unsigned char* data, long size) {
  Trace trace("ParseDeviceKeyInfoResponse");
  tagQS_PUSHSCAN_PARAMETERS keys{};
  if (data == nullptr || size < 1) return keys;
  const CTString text = answerText(data, size);
  keys.event = GetSkeyEventInfo(text);
  keys.duplex = GetSkeyDuplexInfo(text);
  keys.resolution = GetSkeyResolutionInfo(text);
  keys.colorType = GetSkeyColorTypeInfo(text);
  keys.paperType = GetSkeyPaperTypeInfo(text);
  keys.brightness = GetSkeyBrightnessInfo(text);
  keys.contrast = GetSkeyContrastInfo(text);
  keys.autoCrop = GetSkeyAutoCropInfo(text);
  keys.fileType = GetSkeyFileTypeInfo(text);
  keys.blankPageRemove = GetSkeyBlankPageRemoveInfo(text);
  keys.removeBleedThrough = GetSkeyRemoveBleedThroughInfo(text);
  keys.orient = GetSkeyOrientInfo(text);
  keys.deskew = GetSkeyDskewInfo(text);
  keys.removeBackground = GetSkeyRemoveBacgroundInfo(text);
  return keys;
}

ACTUALSCANPARAM CParseCmdRes_v1::ParseActualParameterResponse(unsigned char* data, long size) {
  Trace trace("ParseActualParameterResponse");
  ACTUALSCANPARAM actual{};
  if (data == nullptr || size < 1) return actual;
  const CTString text = answerText(data, size);
  actual.resolution = {unsignedOf(listToken(text, 1)), unsignedOf(listToken(text, 2))};
  actual.paperSource = sourceOf(listToken(text, 3));
  // Each direction is told twice: in tenths of a millimetre and in pixels.
  actual.maxSizeMm.x = tenthsOf(listToken(text, 4));
  actual.maxSizePixel.x = unsignedOf(listToken(text, 5));
  actual.maxSizeMm.y = tenthsOf(listToken(text, 6));
  actual.maxSizePixel.y = unsignedOf(listToken(text, 7));
  return actual;
}

// Kept: the body has three bytes an entry and its count is a quarter of them. It looks like a slip; clients take count
// as told and find the entries behind it 0. Pinned by ParseCmdRes_v1_test "TheCountIsAQuarterOfTheBody".
PALETTE CParseCmdRes_v1::ParseColorPaletteResponse(unsigned char* data, long size) {
  Trace trace("ParseColorPaletteResponse");
  PALETTE palette{};
  if (data == nullptr || size < 1) return palette;
  palette.valid = 1;
  palette.count = static_cast<std::uint32_t>(size / 4);
  const std::size_t filled = std::min<std::size_t>(palette.count, std::size(palette.entries));
  for (std::size_t i = 0; i < filled; ++i) {
    const unsigned char* rgb = data + 3 * i;
    palette.entries[i] = {rgb[2], rgb[1], rgb[0], 0};
  }
  return palette;
}

ICCPROFIE CParseCmdRes_v1::ParsePDFaColorProfileResponse(unsigned char*, long) {
  Trace trace("ParsePDFaColorProfileResponse");
  return {};
}

DETECTEDPAPER CParseCmdRes_v1::ParsePaperSizeDetectFrom2Vertex(unsigned char* data, long size,
                                                               QS_SCANNER_CAPABILITY capability, ACTUALSCANPARAM actual,
                                                               UNITTYPE unit) {
  Trace trace("ParsePaperSizeDetectFrom2Vertex");
  DETECTEDPAPER paper{};
  if (data == nullptr || size < 1) return paper;
  const CTString text = answerText(data, size);
  AXIS_SIGNED dpi{};
  if (readPair(text, "R=", dpi)) {
    paper.resolution = {static_cast<std::uint32_t>(dpi.x), static_cast<std::uint32_t>(dpi.y)};
  }
  readPair(text, "V1=", paper.vertex1);
  readPair(text, "V2=", paper.vertex2);
  paper.paperType =
      CPaperSize().GetPaperTypeFromVertex(paper.vertex1, paper.vertex2, paper.resolution, capability, actual, unit);
  return paper;
}

}  // namespace orvalle_scan_api
