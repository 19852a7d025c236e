// Every field of a capability record by name, so that two records can be compared without their padding and a
// difference can be told.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "scanner_capability.h"

class CapabilityFields {
 public:
  explicit CapabilityFields(const orvalle_scan_api::QS_SCANNER_CAPABILITY& c) {
    add("generation", c.generation);
    add("commandVersion", c.commandVersion);
    add("modelInfo.category", c.modelInfo.category);
    for (const char letter : c.modelInfo.modelName) add("modelInfo.modelName", letter);
    function(c.func);
    base(c.baseFunc);
    imageProcessing(c.imageProcFunc);
    advanced(c.advancedFunc);
  }

  bool operator==(const CapabilityFields& other) const { return values_ == other.values_; }

  // What differs, one line each.
  std::string differenceTo(const CapabilityFields& wanted) const {
    std::string text;
    for (std::size_t i = 0; i < values_.size(); ++i) {
      if (values_[i] == wanted.values_[i]) continue;
      text += std::string(names_[i]) + " (field " + std::to_string(i) + ") is " + std::to_string(values_[i]) +
              ", wanted " + std::to_string(wanted.values_[i]) + "\n";
    }
    return text;
  }

 private:
  void add(const char* name, long long value) {
    names_.push_back(name);
    values_.push_back(value);
  }
  template <class... Values>
  void each(const char* name, const Values&... values) {
    (add(name, values), ...);
  }

  void axis(const char* name, const orvalle_scan_api::AXIS& a) { each(name, a.x, a.y); }
  void margin(const char* name, const orvalle_scan_api::MARGIN& m) {
    each(name, m.left, m.right, m.top, m.bottom, m.unit);
  }
  void sizes(const char* name, const orvalle_scan_api::DEVICESCANSIZES& s) {
    axis(name, s.flatbed), axis(name, s.simplex), axis(name, s.duplex), add(name, s.unit);
  }
  void colors(const char* name, const orvalle_scan_api::SUPPORTCOLORTYPES& s) {
    each(name, s.blackAndWhite, s.errorDiffusion, s.trueGray, s.color256, s.color24bit, s.color256table, s.autoColor);
  }
  void sources(const char* name, const orvalle_scan_api::SUPPORTPAPERSOURCES& s) {
    each(name, s.flatbed, s.adfSimplex, s.adfDuplex, s.cardslot);
  }
  void exclusion(const char* name, const orvalle_scan_api::FUNCEXCLUSION& e) {
    each(name, e.detectDocSize, e.detectMultifeed, e.removeBackgroundByDevice, e.deskewByDevice, e.autoColorByDevice,
         e.blankRemovalByDevice, e.detectDocSizeByDevice, e.autoResolutionByDevice, e.autoRotateByDevice);
  }
  void compression(const char* name, const orvalle_scan_api::COMPRESSSUPPORT& s) {
    each(name, s.noCompress, s.packbits, s.mh, s.jpeg);
  }
  void removal(const char* name, const orvalle_scan_api::BACKGROUNDREMOVALSUPPORT& r) {
    for (const auto& level : {r.blackAndWhite, r.errorDiffusion, r.trueGray, r.color24bit}) {
      each(name, level.cap, level.level);
    }
  }

  void function(const orvalle_scan_api::DEVINFO_FUNC& f) {
    const auto& event = f.pushScan.supportPushScanEvent;
    each("supportPushScanEvent", event.scanToImage, event.scanToCOR, event.scanToEmail, event.scanToFile);
    const auto& scan = f.pushScan.continuousScan;
    each("continuousScan", scan.cap, scan.supportScanSystem.pushScan, scan.supportScanSystem.otherSystem);
    each("paramSetting", f.pushScan.paramSetting.cap, f.pushScan.paramSetting.dupScanOnly);
    each("deviceSupportScanFunc", f.pushScan.deviceSupportScanFunc.officeDocCreator);
    each("qciCommandSupport", f.qciCommandSupport);
  }

  void base(const orvalle_scan_api::DEVINFO_BASEFUNC& b) {
    for (const auto& a : {b.resolutionOptical.flatbed, b.resolutionOptical.adfSimplex, b.resolutionOptical.adfDuplex}) {
      axis("resolutionOptical", a);
    }
    colors("colorType", b.colorType);
    sources("paperSource", b.paperSource.supportPaperSource);
    each("paperSource", b.paperSource.duplexScanSystem, b.paperSource.adfStackCapacity);
    sizes("deviceScanSizeMax", b.deviceScanSizeMax);
    sizes("deviceScanSizeMin", b.deviceScanSizeMin);
    sizes("supportDocSizeMax", b.supportDocSizeMax);
    each("longPaperLengthMax", b.longPaperLengthMax.cap, b.longPaperLengthMax.simplexMaxLength,
         b.longPaperLengthMax.duplexMaxLength, b.longPaperLengthMax.unit);
    const auto& offset = b.startOffset;
    for (const auto& a : {offset.flatbed, offset.simplex, offset.duplex, offset.cardslot}) axis("startOffset", a);
    add("startOffset.unit", offset.unit);
    const auto& size = b.marginSize;
    for (const auto& m : {size.flatbed, size.adfSimplex, size.adfDuplex, size.cardslot}) margin("marginSize", m);
    const auto& adjust = b.marginAdjust;
    for (const auto& m : {adjust.flatbed_plus, adjust.flatbed_minus, adjust.adfSimplex_plus, adjust.adfSimplex_minus,
                          adjust.adfDuplex_plus, adjust.adfDuplex_minus, adjust.cardslot_plus, adjust.cardslot_minus}) {
      margin("marginAdjust", m);
    }
    const auto& position = b.paperPosition;
    each("paperPosition", position.flatbedX, position.flatbedY, position.adfX, position.adfY, position.cardslotX,
         position.cardslotY);
    const auto& orient = b.cardSizeOrient;
    each("cardSizeOrient", orient.capFlatbed, orient.orientFlatbed, orient.capAdf, orient.orientAdf);
    each("multipageScanSystem", b.multipageScanSystem.scan1Paper, b.multipageScanSystem.definingPageNums);
    add("overScanSystem.cap", b.overScanSystem.capOverScan);
    colors("overScanSystem", b.overScanSystem.colorType);
    exclusion("overScanSystem", b.overScanSystem.funcExclusion);
    const auto& cancel = b.cancelSystem;
    each("cancelSystem", cancel.cap, cancel.ejectAll, cancel.ejectOne, cancel.ejectNone);
    const auto& error = b.errorSystem;
    each("errorSystem.first", error.first.cap, error.first.flagA, error.first.flagB);
    each("errorSystem.feed", error.feed.cap, error.feed.stop, error.feed.resume, error.feed.keepOn);
    each("errorSystem.third", error.third.cap, error.third.flagA, error.third.flagB);
    const auto& tape = b.colorTape;
    each("colorTape", tape.cap, tape.red, tape.green, tape.blue, tape.upperRange, tape.lowerRange);
  }

  void imageProcessing(const orvalle_scan_api::DEVINFO_IMAGEPROCFUNC& i) {
    const auto& types = i.supportCompresssionType;
    for (const auto& t :
         {types.blackAndWhite, types.errorDiffusion, types.trueGray, types.color256, types.color24bit}) {
      compression("supportCompresssionType", t);
    }
    const auto& factor = types.jpegCompression.jpegSamplingFactor;
    each("jpegCompression", types.jpegCompression.compressLevel, factor.ycbcr444, factor.ycbcr422, factor.ycbcr411,
         factor.ycbcr420, factor.ycbcr400);
    const auto& mono = i.monoThreshold;
    each("monoThreshold", mono.autoThresholdCap, mono.autoThresholdFlag, mono.manuanThresholdCap,
         mono.manualThresholdLevelMax, mono.manualThresholdLevelMin, mono.manualThresholdLevelDefault);
    const auto& special = i.specialDocumentImageProcs;
    each("specialDocumentImageProcs", special.ocr, special.photo, special.textandgraph, special.copy);
    each("colorProfileOutput, gammaRange", i.colorProfileOutput, i.gammaRange);
    add("moireRemoval.moireCap", i.moireRemoval.moireCap);
    axis("moireRemoval", i.moireRemoval.moireMaxResolution);
    add("toneAdjust", i.toneAdjust);
  }

  void advanced(const orvalle_scan_api::DEVINFO_ADVANCEDFUNC& a) {
    const auto& width = a.autoSize.paperWidthDetect;
    add("paperWidthDetect.cap", width.cap);
    colors("paperWidthDetect", width.supportColorType), sources("paperWidthDetect", width.supportPaperSource);
    const auto& crop = a.autoSize.autoCrop;
    add("autoCrop.cap", crop.cap);
    colors("autoCrop", crop.supportColorType);
    axis("autoCrop.max", crop.resolutionDpiMax), axis("autoCrop.min", crop.resolutionDpiMin);
    const auto& corner = a.autoSize.cornerDetect;
    each("cornerDetect", corner.cap, corner.cornerInfoOutputSystem);
    colors("cornerDetect", corner.supportColorType), sources("cornerDetect", corner.supportPaperSource);
    axis("cornerDetect.min", corner.resolutionDpiMin), axis("cornerDetect.max", corner.resolutionDpiMax);
    const auto& detect = a.autoSize.deviceDetectSize;
    each("deviceDetectSize", detect.cap, detect.detectSystem, detect.detectOverScan);
    sources("deviceDetectSize", detect.supportPaperSource);
    const auto& card = a.idCardMode;
    each("idCardMode", card.cap, card.deviceFunc.scanFromFlatbed, card.deviceFunc.showGuidsOnPanel);
    add("landscape.cap", a.landscape.cap);
    sources("landscape", a.landscape.ladscapeCapablePaperSource);
    const auto& sheet = a.carrierSheet;
    each("carrierSheet", sheet.cap, sheet.skipOffsetSystem, sheet.offsetSizeMm.top, sheet.offsetSizeMm.bottom);
    colors("carrierSheet", sheet.supportColorType), exclusion("carrierSheet", sheet.exclusion);
    axis("carrierSheet.max", sheet.resolutionDpiMax), axis("carrierSheet.min", sheet.resolutionDpiMin);
    const auto& plastic = a.plasticCard;
    add("plasticCard.cap", plastic.cap);
    colors("plasticCard", plastic.supportColorType), exclusion("plasticCard", plastic.exclusion);
    axis("plasticCard.min", plastic.resolutionDpiMin), axis("plasticCard.max", plastic.resolutionDpiMax);
    each("multifeedDetect", a.multifeedDetect.cap, a.multifeedDetect.systemType, a.multifeedDetect.level);
    removal("backgroundRemove", a.backgroundRemove), removal("breedthroughRemove", a.breedthroughRemove);
    add("deskew.cap", a.deskew.cap);
    sources("deskew", a.deskew.suportPaperSource);
    for (const auto flag : a.deskew.systemType) add("deskew.systemType", flag);
    const auto& blank = a.blankRemoval;
    each("blankRemoval", blank.cap, blank.systemType, blank.levelCap, blank.levelFixed, blank.levelMax, blank.levelMin,
         blank.levelDefault);
    const auto& color = a.autoColor;
    each("autoColor", color.cap, color.firstMax, color.firstMin, color.firstDefault, color.secondMax, color.secondMin,
         color.secondDefault);
    each("detectResolution, adfOnlyBackScan", a.detectResolution, a.adfOnlyBackScan);
    each("quietScan", a.quietScan.cap, a.quietScan.level, a.quietScan.levelAlt);
  }

  std::vector<const char*> names_;
  std::vector<long long> values_;
};
