// What capability records must hold, spelled out by hand, and the parse of a body held against it.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "parse/ParseCmdRes_v2.h"
#include "tests/parse/capability_fields.h"
#include "tests/parse/tag_body.h"

namespace expected_capability {

using Capability = orvalle_scan_api::QS_SCANNER_CAPABILITY;
using orvalle_scan_api::UNIT_MILLIMETER;

inline Capability zero() {
  Capability c;
  std::memset(static_cast<void*>(&c), 0, sizeof c);
  return c;
}

// A body of the terminator alone: a device without sources.
inline Capability emptyDevice() {
  Capability c = zero();
  c.modelInfo.category = 1;
  c.func.pushScan.continuousScan.cap = c.func.pushScan.paramSetting.cap = c.func.qciCommandSupport = 1;

  auto& b = c.baseFunc;
  b.deviceScanSizeMax.unit = b.deviceScanSizeMin.unit = b.supportDocSizeMax.unit = UNIT_MILLIMETER;
  b.longPaperLengthMax.cap = 1;
  b.longPaperLengthMax.unit = UNIT_MILLIMETER;
  for (auto* m : {&b.marginSize.flatbed, &b.marginSize.adfSimplex, &b.marginSize.adfDuplex, &b.marginSize.cardslot,
                  &b.marginAdjust.flatbed_plus, &b.marginAdjust.flatbed_minus, &b.marginAdjust.adfSimplex_plus,
                  &b.marginAdjust.adfSimplex_minus, &b.marginAdjust.adfDuplex_plus, &b.marginAdjust.adfDuplex_minus,
                  &b.marginAdjust.cardslot_plus, &b.marginAdjust.cardslot_minus}) {
    m->unit = UNIT_MILLIMETER;
  }
  b.cardSizeOrient.capFlatbed = b.cardSizeOrient.capAdf = 1;
  b.overScanSystem.capOverScan = b.cancelSystem.cap = 1;
  b.errorSystem.first.cap = b.errorSystem.feed.cap = b.errorSystem.third.cap = 1;

  auto& i = c.imageProcFunc;
  i.monoThreshold.autoThresholdCap = i.monoThreshold.manuanThresholdCap = 1;
  i.colorProfileOutput = i.moireRemoval.moireCap = i.toneAdjust = 1;

  auto& a = c.advancedFunc;
  a.autoSize.autoCrop.cap = a.autoSize.deviceDetectSize.cap = 1;
  a.idCardMode.cap = a.landscape.cap = a.adfOnlyBackScan = 1;
  a.carrierSheet.cap = a.plasticCard.cap = a.multifeedDetect.cap = 1;
  for (auto* r : {&a.backgroundRemove, &a.breedthroughRemove}) {
    r->blackAndWhite.cap = r->errorDiffusion.cap = r->trueGray.cap = r->color24bit.cap = 1;
  }
  a.deskew.cap = a.blankRemoval.cap = a.detectResolution = a.quietScan.cap = 1;
  return c;
}

// The two bytes of tag 0x0302.
struct Sources {
  int paperSource;
  int duplex;

  bool adf() const { return (paperSource & 1) != 0; }
  bool flatbed() const { return (paperSource & 2) != 0; }
  bool card() const { return (paperSource & 4) != 0; }
  bool twoSides() const { return duplex != 0; }
};

// A device that tells its sources and nothing else.
inline Capability deviceWith(const Sources& s) {
  Capability c = emptyDevice();
  auto& b = c.baseFunc;
  auto& flags = b.paperSource.supportPaperSource;
  if (s.flatbed()) {
    flags.flatbed = 1;
    b.deviceScanSizeMax.flatbed = b.supportDocSizeMax.flatbed = {21000, 29700};
    b.deviceScanSizeMin.flatbed = {1, 1};
    b.paperPosition.flatbedY = 3;
  }
  if (s.adf()) {
    flags.adfSimplex = 1;
    b.deviceScanSizeMax.simplex = b.supportDocSizeMax.simplex = {21000, 35560};
    b.deviceScanSizeMin.simplex = {1, 1};
    b.longPaperLengthMax.simplexMaxLength = 86300;
    b.paperPosition.adfY = 3;
  }
  if (s.twoSides()) {
    b.deviceScanSizeMax.duplex = b.supportDocSizeMax.duplex = {21000, 35560};
    b.deviceScanSizeMin.duplex = {1, 1};
    b.longPaperLengthMax.duplexMaxLength = 86300;
  }
  if (s.adf() && s.twoSides()) flags.adfDuplex = 1;
  if (s.adf() && s.duplex == 2) b.paperSource.duplexScanSystem = 1;
  if (s.card()) flags.cardslot = 1;
  if (s.paperSource == 4) b.paperPosition.cardslotY = 3;
  return c;
}

inline TagBody bodyWith(const Sources& s) {
  return TagBody().tag(0x0302, {static_cast<unsigned char>(s.paperSource), static_cast<unsigned char>(s.duplex)});
}

// Parses an exact copy, so that a read behind the body is found out.
inline Capability parse(const BodyBytes& body) {
  const std::unique_ptr<unsigned char[]> copy(new unsigned char[body.size()]);
  std::copy(body.begin(), body.end(), copy.get());
  return orvalle_scan_api::CParseCmdRes_v2().ParseDeviceInfoResponse(copy.get(), static_cast<long>(body.size()));
}

inline void expectSame(const Capability& got, const Capability& wanted) {
  const CapabilityFields gotFields(got), wantedFields(wanted);
  if (!(gotFields == wantedFields)) ADD_FAILURE() << gotFields.differenceTo(wantedFields);
}

}  // namespace expected_capability
