// The items of the panel's settings, each found in the whole text on its own.
//
// Kept: keywords are looked for anywhere in a value and in the order of their rows, so that a keyword inside another
// one hides it: PHOTOL and PHOTO2L are read as PHOTO, POSTCARD2 as POSTCARD, BCARDV as BCARD, MULTI-TIFF as TIFF, and
// 10 as on. It looks like a wrong order; clients know these devices' answers this way. Pinned by skey_items_v1_test
// "AKeywordInsideAnotherOneHidesIt".
#include <algorithm>
#include <span>

#include "parse/ParseCmdRes_v1.h"
#include "parse/answer_text_v1.h"

namespace orvalle_scan_api {

using qvtcl::CTString;

namespace {

struct KeywordRow {
  const char* keyword;
  std::int32_t value;
};

constexpr KeywordRow kEvents[] = {{"IMAGE", 0}, {"OCR", 1}, {"EMAIL", 2}, {"FILE", 3}};

constexpr KeywordRow kColorTypes[] = {
    {"AUTO", COLORTYPE_AUTO},        {"TEXT", COLORTYPE_BLACKANDWHITE}, {"ERRDIF", COLORTYPE_ERRORDIFFUSION},
    {"GRAY256", COLORTYPE_TRUEGRAY}, {"C256", COLORTYPE_COLOR256},      {"CGRAY", COLORTYPE_COLOR24BIT},
};

constexpr KeywordRow kPaperTypes[] = {
    {"AUTO", PAPERTYPE_AUTO},
    {"A4", PAPERTYPE_A4},
    {"LETTER", PAPERTYPE_LETTER},
    {"LEGAL", PAPERTYPE_LEGAL},
    {"A3", PAPERTYPE_A3},
    {"LEDGER", PAPERTYPE_LEDGER},
    {"JISB4", PAPERTYPE_JISB4},
    {"JISB5", PAPERTYPE_JISB5},
    {"A5", PAPERTYPE_A5},
    {"JISB6", PAPERTYPE_JISB6},
    {"A6", PAPERTYPE_A6},
    {"EXECUTIVE", PAPERTYPE_EXECUTIVE},
    {"PHOTO", PAPERTYPE_PHOTO},
    {"INDEXCARD", PAPERTYPE_INDEXCARD},
    {"PHOTOL", PAPERTYPE_PHOTOL},
    {"PHOTO2L", PAPERTYPE_PHOTO2L},
    {"POSTCARD", PAPERTYPE_POSTCARD},
    {"POSTCARD2", PAPERTYPE_POSTCARD2},
    {"BCARD", PAPERTYPE_BCARD},
    {"BCARDV", PAPERTYPE_BCARDV},
    {"LONG", PAPERTYPE_LONG},
    {"FOLIO", PAPERTYPE_FOLIO},
};

// What a file type has beside its format.
enum class FileExtra { kNone, kJpegRate, kPdfRate, kTiffCompression };

struct FileTypeRow {
  const char* keyword;
  std::int32_t format;
  bool qualityValid;
  std::int32_t quality;  // 1 one image a file, 0 many pages
  FileExtra extra;
};

constexpr FileTypeRow kFileTypes[] = {
    {"BMP", 0, false, 1, FileExtra::kNone},
    {"JPEG", 1, false, 1, FileExtra::kJpegRate},
    {"TIFF", 2, true, 1, FileExtra::kTiffCompression},
    {"MULTI-TIFF", 2, false, 0, FileExtra::kTiffCompression},  // hidden by the row above
    {"PNG", 3, false, 1, FileExtra::kNone},
    {"PDF(Image)", 4, false, 0, FileExtra::kPdfRate},
    {"XPS", 8, false, 0, FileExtra::kNone},
    {"TXT", 9, false, 0, FileExtra::kNone},
    {"HTML", 10, false, 0, FileExtra::kNone},
    {"RTF", 11, false, 0, FileExtra::kNone},
};

// The first row whose keyword is in the value, or null.
template <class Rows>
const auto* firstHit(const Rows& rows, const CTString& value) {
  const auto hit = std::ranges::find_if(rows, [&value](const auto& row) { return contains(value, row.keyword); });
  return hit == std::ranges::end(rows) ? nullptr : &*hit;
}

PUSHSCAN_VALUE keywordItem(const CTString& text, const char* key, std::span<const KeywordRow> rows) {
  const KeywordRow* row = firstHit(rows, lineValue(text, key));
  return row == nullptr ? PUSHSCAN_VALUE{} : PUSHSCAN_VALUE{true, row->value};
}

}  // namespace

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeySettingValueTypeInfo(CTString text, CTString key, int maximum,
                                                            int minimum) const {
  const CTString value = lineValue(text, key);
  if (value.IsEmpty()) return {};
  return {true, std::min(std::max(decimalOf(value), minimum), maximum)};
}

PUSHSCAN_STATE CParseCmdRes_v1::GetSkeySettingSwitchTypeInfo(CTString text, CTString key, CTString on,
                                                             CTString off) const {
  const CTString value = lineValue(text, key);
  if (contains(value, on.C_str())) return {true, true};
  return {contains(value, off.C_str()), false};
}

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyEventInfo(CTString text) const { return keywordItem(text, "F=", kEvents); }

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyDuplexInfo(CTString text) const {
  const CTString sides = lineValue(text, "D=");
  if (contains(sides, "DUP")) {
    return {true, contains(lineValue(text, "E="), "SHO") ? DUPLEXTYPE_SHORT_EDGE : DUPLEXTYPE_LONG_EDGE};
  }
  return {contains(sides, "SIN"), DUPLEXTYPE_SIMPLEX};
}

PUSHSCAN_RESOLUTION CParseCmdRes_v1::GetSkeyResolutionInfo(CTString text) const {
  const CTString value = lineValue(text, "R=");
  if (value.IsEmpty()) return {};
  if (contains(value, "AUTO")) return {true, true, true, true, 0, 0};
  const auto dpi = static_cast<std::uint32_t>(decimalOf(value));
  return {true, true, false, false, dpi, dpi};
}

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyColorTypeInfo(CTString text) const {
  return keywordItem(text, "M=", kColorTypes);
}

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyPaperTypeInfo(CTString text) const {
  return keywordItem(text, "P=", kPaperTypes);
}

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyBrightnessInfo(CTString text) const {
  return GetSkeySettingValueTypeInfo(text, "B=", 100, 0);
}

PUSHSCAN_VALUE CParseCmdRes_v1::GetSkeyContrastInfo(CTString text) const {
  return GetSkeySettingValueTypeInfo(text, "N=", 100, 0);
}

PUSHSCAN_STATE CParseCmdRes_v1::GetSkeyAutoCropInfo(CTString text) const {
  return GetSkeySettingSwitchTypeInfo(text, "A=", "1", "0");
}

PUSHSCAN_FILETYPE CParseCmdRes_v1::GetSkeyFileTypeInfo(CTString text) const {
  PUSHSCAN_FILETYPE file{};
  const FileTypeRow* row = firstHit(kFileTypes, lineValue(text, "T="));
  if (row == nullptr) return file;
  file.valid = true;
  file.format = row->format;
  file.qualityValid = row->qualityValid;
  file.quality = row->quality;
  if (row->extra == FileExtra::kJpegRate || row->extra == FileExtra::kPdfRate) {
    const PUSHSCAN_VALUE rate =
        GetSkeySettingValueTypeInfo(text, "J=", 100, row->extra == FileExtra::kJpegRate ? 1 : 0);
    file.compressValid = rate.valid;
    file.compress = rate.value;
  } else if (row->extra == FileExtra::kTiffCompression) {
    const PUSHSCAN_STATE compression = GetSkeySettingSwitchTypeInfo(text, "C=", "1", "0");
    file.tiffCompressValid = compression.valid;
    file.tiffCompressOn = compression.on;
  }
  return file;
}

PUSHSCAN_STATE CParseCmdRes_v1::GetSkeyBlankPageRemoveInfo(CTString text) const {
  return GetSkeySettingSwitchTypeInfo(text, "W=", "1", "0");
}

PUSHSCAN_STATE CParseCmdRes_v1::GetSkeyRemoveBleedThroughInfo(CTString text) const {
  return GetSkeySettingSwitchTypeInfo(text, "K=", "1", "0");
}

PUSHSCAN_ORIENT CParseCmdRes_v1::GetSkeyOrientInfo(CTString text) const {
  const PUSHSCAN_STATE landscape = GetSkeySettingSwitchTypeInfo(text, "O=", "1", "0");
  if (landscape.valid && landscape.on) return {true, true, 0};
  // Kept: the angle is in hundredths of a degree, while a second-generation device's is in degrees. Readers of the
  // record take both. Pinned by skey_items_v1_test "ATurnedPageIs9000".
  const CTString angle = lineValue(text, "X=");
  if (contains(angle, "0")) return {true, false, 0};
  if (contains(angle, "1")) return {true, false, 9000};
  return {};
}

PUSHSCAN_STATE CParseCmdRes_v1::GetSkeyDskewInfo(CTString text) const {
  return GetSkeySettingSwitchTypeInfo(text, "S=", "1", "0");
}

// Kept: an explicit 0 leaves the item invalid, as if the line were missing; a second-generation device's off is valid.
// Pinned by skey_items_v1_test "BackgroundRemovalIsValidOnlyWhenItIsOn".
PUSHSCAN_REMOVEBACKGROUND CParseCmdRes_v1::GetSkeyRemoveBacgroundInfo(CTString text) const {
  if (!contains(lineValue(text, "G="), "1")) return {};
  const PUSHSCAN_VALUE level = GetSkeySettingValueTypeInfo(text, "L=", 255, 0);
  return {true, true, level.valid, level.value};
}

}  // namespace orvalle_scan_api
