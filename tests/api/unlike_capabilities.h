// What the two dialects cannot say alike of one scanner, line by line with the reason, and the comparison of two
// capability records that leaves just these lines out.
#pragma once

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "scanner_capability.h"
#include "tests/parse/capability_fields.h"

namespace two_dialects {

using Capability = orvalle_scan_api::QS_SCANNER_CAPABILITY;
using orvalle_scan_api::MARGIN;

// What the dialects cannot say alike, and how both records are made to hold the same there.
struct CapabilityRow {
  const char* what;
  const char* why;
  std::function<void(Capability& first, Capability& second)> forget;
};

template <class Group>
void clear(Group& first, Group& second) {
  std::memset(static_cast<void*>(&first), 0, sizeof first);
  std::memset(static_cast<void*>(&second), 0, sizeof second);
}

inline constexpr const char* kNotTold =
    "the first dialect says nothing of it, which is 0; the second one says missing, 1";

#define FORGET(...) []([[maybe_unused]] Capability& a, Capability& b) { __VA_ARGS__; }
inline const std::vector<CapabilityRow> kUnlike = {
    {"generation", "it is what tells the dialects apart", FORGET(clear(a.generation, b.generation))},
    {"qciCommandSupport", kNotTold, FORGET(clear(a.func.qciCommandSupport, b.func.qciCommandSupport))},
    {"supportDocSizeMax", "only the second dialect knows documents beside the area",
     FORGET(clear(a.baseFunc.supportDocSizeMax, b.baseFunc.supportDocSizeMax))},
    {"longPaperLengthMax of two sides, and its unit", "the first dialect has one length, for one side",
     FORGET(clear(a.baseFunc.longPaperLengthMax.duplexMaxLength, b.baseFunc.longPaperLengthMax.duplexMaxLength);
            if (a.baseFunc.longPaperLengthMax.cap == 1) {
              clear(a.baseFunc.longPaperLengthMax.simplexMaxLength, b.baseFunc.longPaperLengthMax.simplexMaxLength);
              clear(a.baseFunc.longPaperLengthMax.unit, b.baseFunc.longPaperLengthMax.unit);
            })},
    {"marginSize", "one margin of the wire is positive from the first dialect and negative from the second",
     FORGET(
         for (MARGIN* m
              : {&b.baseFunc.marginSize.flatbed, &b.baseFunc.marginSize.adfSimplex, &b.baseFunc.marginSize.adfDuplex}) {
           *m = {-m->left, -m->right, -m->top, -m->bottom, m->unit};
         })},
    {"marginSize.cardslot", "its unit alone is told, and by the second dialect alone",
     FORGET(clear(a.baseFunc.marginSize.cardslot, b.baseFunc.marginSize.cardslot))},
    {"marginAdjust", "units alone, of the second dialect alone",
     FORGET(clear(a.baseFunc.marginAdjust, b.baseFunc.marginAdjust))},
    {"paperPosition of cards", "told for two-sided feeding by the first, for nothing but a card slot by the second",
     FORGET(clear(a.baseFunc.paperPosition.cardslotX, b.baseFunc.paperPosition.cardslotX);
            clear(a.baseFunc.paperPosition.cardslotY, b.baseFunc.paperPosition.cardslotY))},
    {"overScanSystem", kNotTold, FORGET(clear(a.baseFunc.overScanSystem, b.baseFunc.overScanSystem))},
    {"cancelSystem", kNotTold, FORGET(clear(a.baseFunc.cancelSystem, b.baseFunc.cancelSystem))},
    {"errorSystem", kNotTold, FORGET(clear(a.baseFunc.errorSystem, b.baseFunc.errorSystem))},
    {"moireRemoval", kNotTold, FORGET(clear(a.imageProcFunc.moireRemoval, b.imageProcFunc.moireRemoval))},
    {"toneAdjust", kNotTold, FORGET(clear(a.imageProcFunc.toneAdjust, b.imageProcFunc.toneAdjust))},
    {"finding the paper's size", "three groups tell it, of which each dialect has its own",
     FORGET(clear(a.advancedFunc.autoSize.paperWidthDetect, b.advancedFunc.autoSize.paperWidthDetect);
            clear(a.advancedFunc.autoSize.cornerDetect, b.advancedFunc.autoSize.cornerDetect);
            clear(a.advancedFunc.autoSize.deviceDetectSize, b.advancedFunc.autoSize.deviceDetectSize))},
    {"breedthroughRemove", kNotTold,
     FORGET(clear(a.advancedFunc.breedthroughRemove, b.advancedFunc.breedthroughRemove))},
    {"autoColor", "missing is 1 from the first dialect; from the second it is the whole group not told",
     FORGET(clear(a.advancedFunc.autoColor, b.advancedFunc.autoColor))},
    {"adfOnlyBackScan", kNotTold, FORGET(clear(a.advancedFunc.adfOnlyBackScan, b.advancedFunc.adfOnlyBackScan))},
    {"quietScan", kNotTold, FORGET(clear(a.advancedFunc.quietScan, b.advancedFunc.quietScan))},
};
// The same for devices that lack something.
inline const std::vector<CapabilityRow> kUnlikeWhereMissing = {
    {"cardSizeOrient without a feeder", "not told by the first dialect, missing by the second",
     FORGET(if (a.baseFunc.paperSource.supportPaperSource.adfSimplex == 0)
                clear(a.baseFunc.cardSizeOrient.capAdf, b.baseFunc.cardSizeOrient.capAdf))},
    {"multifeedDetect that is missing", "the first dialect still tells its system",
     FORGET(if (a.advancedFunc.multifeedDetect.cap == 1)
                clear(a.advancedFunc.multifeedDetect.systemType, b.advancedFunc.multifeedDetect.systemType))},
    {"autoCrop that is missing", "not told by the first dialect, missing by the second",
     FORGET(if (a.advancedFunc.autoSize.autoCrop.cap == 0)
                clear(a.advancedFunc.autoSize.autoCrop, b.advancedFunc.autoSize.autoCrop))},
};

#undef FORGET

// Difference of both capabilities with all lines of the lists applied but one.
inline std::string difference(Capability first, Capability second, const char* but = nullptr) {
  for (const auto* rows : {&kUnlike, &kUnlikeWhereMissing}) {
    for (const CapabilityRow& row : *rows) {
      if (row.what != but) row.forget(first, second);
    }
  }
  return CapabilityFields(first).differenceTo(CapabilityFields(second));
}

}  // namespace two_dialects
