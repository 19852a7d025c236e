// The same questions, asked through the facade of two devices that describe one scanner in both dialects. What the
// answers agree in is compared field by field; what the dialects cannot say alike is listed, each line with its reason,
// and every line of the lists is needed.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "api/ScanProtocol.h"
#include "foundation/qvtcl/TTime.h"
#include "scanner_capability_v1.h"
#include "tests/api/two_dialects.h"
#include "tests/api/unlike_capabilities.h"
#include "tests/command/answers.h"
#include "tests/fakes/ScriptedDevice.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;
using namespace two_dialects;

using Flat = tagQS_SCANNER_CAPABILITY_VER1;
using Keys = tagQS_PUSHSCAN_PARAMETERS;

// The linker leads the pause between Q and QDI here: it is not slept.
extern "C" void __wrap__ZN5qvtcl6CTTime8Sleep_msEm(qvtcl::CTTime*, unsigned long) {}

namespace {

// What a host learns of a device with all its questions.
struct Answers {
  bool connected = false, paperIn = false;
  Capability capability;
  Flat flat;
  Keys keys;
};

Answers ask(const Hardware& hardware, const Wish& wish, bool second, bool paperIn = true) {
  ScriptedDevice device;
  const std::string adf = "ADF\n\x80";
  if (second) {
    device.expect("\x1BQ\n\x80").answer(answers::qAnswer("\x10"));
    device.expect("\x1BQDI\n\x80").answer(answers::framed("QDI", qdiBody(hardware)));
    device.expect("\x1B" + ("CKD\nPSRC=" + adf)).answer(paperIn ? "\0\x01"s : "\0\0"s);
    device.expect("\x1BGKP\n\x80").answer(answers::framed("GKP", gkpBody(wish)));
  } else {
    const std::string lines = keyLines(wish);
    device.expect("\x1BQ\n\x80").answer(answers::qAnswer(qBlock(hardware)));
    device.expect("\x1B" + ("D\n" + adf)).answer(paperIn ? "\x80" : "\x90");
    device.expect("\x1BK\n\x80").answer("\x30"s + static_cast<char>(lines.size()) + '\0' + lines);
  }
  CScanProtocol core;
  core.SetDeviceAccess(&device);
  EXPECT_EQ(core.Initialize(), 0u);
  _QS_SELECT_DEVICE_INFO info{};
  info.connectionType = 1;
  std::strcpy(info.primaryName, "scanner");
  EXPECT_EQ(core.SelectDevice(info), 0u);

  Answers told;
  std::memset(static_cast<void*>(&told.capability), 0x5A, sizeof told.capability);
  std::memset(static_cast<void*>(&told.flat), 0x5A, sizeof told.flat);
  std::memset(static_cast<void*>(&told.keys), 0x5A, sizeof told.keys);
  told.connected = core.CheckConnection();
  EXPECT_FALSE(core.IsAdfInserted()) << "nothing can be asked before the generation is known";
  EXPECT_EQ(core.QueryDeviceCapabilities(&told.capability), 0u);
  EXPECT_FALSE(device.open) << "the capability question closes the device";
  EXPECT_EQ(core.QueryDeviceCapabilities(1, &told.flat), 0u);
  told.paperIn = core.IsAdfInserted();
  EXPECT_EQ(core.GetPushScanParameter(1, &told.keys), 0u);
  EXPECT_TRUE(core.CheckConnection());
  EXPECT_EQ(device.opens, 2) << "opened once more behind the capability question";
  EXPECT_EQ(device.trouble(), "");
  core.UnInitialize();
  return told;
}

// ---- the capability

std::vector<std::pair<const char*, Hardware>> scanners() {
  std::vector<std::pair<const char*, Hardware>> all = {
      {"all of it", {}},
      {"a flatbed alone", withoutFeeder()},
      {"a flatbed and a one-sided feeder", withoutBothSides()},
      {"a feeder alone", withoutFlatbed()},
      {"a one-sided feeder alone", withoutFlatbed(withoutBothSides())}};
  const auto add = [&all](const char* name, auto change) {
    Hardware hardware;
    change(hardware);
    all.emplace_back(name, hardware);
  };
  add("plain", [](Hardware& h) {
    h.findsSize = h.cropsEdges = h.flatbedDeskew = h.feederDeskew = h.doubleFeed = h.carrierSheet = false;
    h.removesBackground = h.landscape = false;
    h.longPaperMax = 0;
  });
  add("no lengths", [](Hardware& h) { h.flatbedMax[1] = h.feederMax[1] = h.bothSidesMax[1] = 0; });
  add("no smallest paper", [](Hardware& h) {
    h.feederMin[0] = h.feederMin[1] = h.bothSidesMin[0] = h.bothSidesMin[1] = 0;
    h.card = 1;
  });
  add("cards across", [](Hardware& h) { h.feederMin[0] = 900, h.feederMin[1] = 600, h.card = 1; });
  add("no cards", [](Hardware& h) { h.feederMin[0] = h.feederMin[1] = 1440, h.card = 0; });
  add("no margins", [](Hardware& h) { h.marginX = h.marginY = 0; });
  return all;
}

TEST(BothGenerations, OneScannerIsOneCapabilityInBothDialects) {
  for (const auto& [name, hardware] : scanners()) {
    SCOPED_TRACE(name);
    const Answers first = ask(hardware, {}, false), second = ask(hardware, {}, true);
    EXPECT_EQ(first.capability.generation, SCANCMD_GENERATION_1ST);
    EXPECT_EQ(second.capability.generation, SCANCMD_GENERATION_2ND);
    EXPECT_EQ(difference(first.capability, second.capability), "");
  }
}

TEST(BothGenerations, EveryLineOfTheListIsNeeded) {
  const Capability first = ask({}, {}, false).capability, second = ask({}, {}, true).capability;
  for (const CapabilityRow& row : kUnlike) EXPECT_NE(difference(first, second, row.what), "") << row.what;
  Hardware bare = withoutFeeder();
  bare.cropsEdges = false;
  const Capability bareFirst = ask(bare, {}, false).capability, bareSecond = ask(bare, {}, true).capability;
  for (const CapabilityRow& row : kUnlikeWhereMissing) {
    EXPECT_NE(difference(bareFirst, bareSecond, row.what), "") << row.what;
  }
}

// Not only equal: right, for the fields that a host looks at first.
TEST(BothGenerations, TheCapabilityIsThatOfTheScanner) {
  for (const bool second : {false, true}) {
    SCOPED_TRACE(second ? "second generation" : "first generation");
    const Capability c = ask({}, {}, second).capability;
    const auto& base = c.baseFunc;
    EXPECT_EQ(c.commandVersion, 0x0B);
    EXPECT_EQ(base.deviceScanSizeMax.flatbed.x, 21600u);
    EXPECT_EQ(base.deviceScanSizeMax.duplex.y, 35550u);
    EXPECT_EQ(base.deviceScanSizeMin.simplex.x, 6000u);
    EXPECT_EQ(base.resolutionOptical.adfSimplex.y, 601u);
    EXPECT_EQ(base.paperSource.adfStackCapacity, 50);
    EXPECT_EQ(base.paperSource.duplexScanSystem, 1);
    EXPECT_EQ(base.longPaperLengthMax.simplexMaxLength, 86300);
    EXPECT_EQ(base.marginSize.adfSimplex.top, second ? -420 : 420);
    EXPECT_EQ(base.paperPosition.adfX, 1);
    EXPECT_EQ(base.paperPosition.adfY, 4);
    EXPECT_EQ(base.cardSizeOrient.orientAdf, 1);
    EXPECT_EQ(c.advancedFunc.deskew.suportPaperSource.adfDuplex, 1);
    EXPECT_EQ(c.advancedFunc.carrierSheet.offsetSizeMm.top, 3200);
    EXPECT_EQ(c.advancedFunc.autoSize.autoCrop.resolutionDpiMax.x, 300u);
  }
}

TEST(BothGenerations, AnyScannerIsOneCapability) {
  std::mt19937 random(14);
  const auto flag = [&random] { return random() % 2 == 0; };
  const auto word = [&random](int most) { return 1 + static_cast<int>(random() % static_cast<unsigned>(most)); };
  for (int round = 0; round < 300; ++round) {
    Hardware h;
    h.commandVersion = static_cast<int>(random() % 16);
    h.colours = static_cast<int>(random() % 32);
    for (int(*pair)[2] : {&h.flatbedMax, &h.feederMax, &h.bothSidesMax, &h.flatbedDpi, &h.feederDpi, &h.bothSidesDpi,
                          &h.bothSidesMin}) {
      (*pair)[0] = word(65535), (*pair)[1] = word(65535);
    }
    for (int(*pair)[2] : {&h.flatbedPosition, &h.feederPosition}) (*pair)[0] = word(4), (*pair)[1] = word(4);
    h.stack = word(500), h.marginX = word(3000), h.marginY = word(3000);
    h.longPaperMax = flag() ? 8630 : 0;
    for (bool* feature : {&h.findsSize, &h.cropsEdges, &h.flatbedDeskew, &h.feederDeskew, &h.doubleFeed,
                          &h.carrierSheet, &h.removesBackground, &h.landscape}) {
      *feature = flag();
    }
    if (round % 5 == 1) h = withoutFeeder(h);
    if (round % 5 == 2) h = withoutBothSides(h);
    if (round % 5 == 3) h = withoutFlatbed(h);
    ASSERT_EQ(difference(ask(h, {}, false).capability, ask(h, {}, true).capability), "") << round;
  }
}

// ---- the flat record

struct FlatRow {
  const char* name;
  std::vector<long long> (*numbers)(const Flat&);
  bool alike;
};
std::vector<long long> sizes(const DEVICESCANSIZES& s) {
  return {s.flatbed.x, s.flatbed.y, s.simplex.x, s.simplex.y, s.duplex.x, s.duplex.y, s.unit};
}
#define NUMBERS(...) [](const Flat& f) { return std::vector<long long>{__VA_ARGS__}; }
const FlatRow kFlat[] = {
    {"resolutionOptical",
     NUMBERS(f.resolutionOptical.flatbed.x, f.resolutionOptical.flatbed.y, f.resolutionOptical.adfSimplex.x,
             f.resolutionOptical.adfSimplex.y, f.resolutionOptical.adfDuplex.x, f.resolutionOptical.adfDuplex.y),
     true},
    {"resolutionList",
     [](const Flat& f) { return std::vector<long long>(std::begin(f.resolutionList), std::end(f.resolutionList)); },
     true},
    {"colorType",
     NUMBERS(f.colorType.blackAndWhite, f.colorType.errorDiffusion, f.colorType.trueGray, f.colorType.color256,
             f.colorType.color24bit, f.autoColorFlag),
     true},
    {"supportDocSizeMax", [](const Flat& f) { return sizes(f.supportDocSizeMax); }, false},  // not in the first dialect
    {"deviceScanSizeMin", [](const Flat& f) { return sizes(f.deviceScanSizeMin); }, true},
    // A length without long paper is told by the second dialect alone.
    {"longPaperLengthMax of one side",
     NUMBERS(f.longPaperLengthMax.cap, f.longPaperLengthMax.cap == 2 ? f.longPaperLengthMax.simplexMaxLength : 0),
     true},
    {"longPaperLengthMax of two sides", NUMBERS(f.longPaperLengthMax.duplexMaxLength), false},  // one length
    {"paperSource",
     NUMBERS(f.paperSource.supportPaperSource.flatbed, f.paperSource.supportPaperSource.adfSimplex,
             f.paperSource.supportPaperSource.adfDuplex, f.paperSource.supportPaperSource.cardslot,
             f.paperSource.duplexScanSystem, f.paperSource.adfStackCapacity),
     true},
    {"paperPosition",
     NUMBERS(f.paperPosition.flatbedX, f.paperPosition.flatbedY, f.paperPosition.adfX, f.paperPosition.adfY), true},
    {"paperPosition of cards", NUMBERS(f.paperPosition.cardslotX, f.paperPosition.cardslotY), false},
    {"marginSize", NUMBERS(f.marginSize.left, f.marginSize.right, f.marginSize.top, f.marginSize.bottom),
     false},  // sign
    {"marginSize without its sign",
     NUMBERS(std::abs(f.marginSize.left), std::abs(f.marginSize.bottom), f.marginSize.unit), true},
    // Told by different groups of the full record, and alike here.
    {"autoPaperSize", NUMBERS(f.autoPaperSize), true},
    {"autoCrop to detectEndOfPage", NUMBERS(f.autoCrop, f.autoDeskew, f.autoRotate, f.detectEndOfPage), true},
    {"autoColor", NUMBERS(f.autoColor.cap), false},  // missing is 1, or not told
    {"backgroundRemoval",
     NUMBERS(f.backgroundRemoval.blackAndWhite.cap, f.backgroundRemoval.blackAndWhite.level,
             f.backgroundRemoval.errorDiffusion.cap, f.backgroundRemoval.errorDiffusion.level,
             f.backgroundRemoval.trueGray.cap, f.backgroundRemoval.trueGray.level, f.backgroundRemoval.color24bit.cap,
             f.backgroundRemoval.color24bit.level),
     true},
    {"what the core does itself",
     NUMBERS(f.monoThreshold.manuanThresholdCap, f.colorTone.cap, f.smoothing.cap, f.colorDrop.cap, f.thickText.cap,
             f.dotTextCombine, f.edgeEnhance.cap, f.firstEnhanceFlag, f.dustRemoval.cap, f.lineRemoval.cap,
             f.punchHole.cap, f.edgeFill.cap),
     true},
    {"carrierSheet to edgeCut", NUMBERS(f.carrierSheet, f.plasticCard, f.edgeCut), true},
    {"blankRemoval",
     NUMBERS(f.blankRemoval.cap, f.blankRemoval.systemType, f.blankRemoval.levelCap, f.blankRemoval.levelFixed,
             f.blankRemoval.levelMax, f.blankRemoval.levelMin, f.blankRemoval.levelDefault),
     true},
    {"xferCount to iccProfile", NUMBERS(f.xferCount, f.multifeed, f.quietMode, f.iccProfile), true},
};

TEST(BothGenerations, TheFlatRecordIsTheSameButForFiveFields) {
  for (const auto& [name, hardware] : scanners()) {
    const Flat first = ask(hardware, {}, false).flat, second = ask(hardware, {}, true).flat;
    for (const FlatRow& row : kFlat) {
      if (row.alike) {
        EXPECT_EQ(row.numbers(first), row.numbers(second)) << row.name << " of " << name;
      }
    }
  }
  const Flat first = ask({}, {}, false).flat, second = ask({}, {}, true).flat;
  for (const FlatRow& row : kFlat) {
    if (!row.alike) {
      EXPECT_NE(row.numbers(first), row.numbers(second)) << row.name;
    }
  }
}

// ---- connection and paper

TEST(BothGenerations, TheConnectionIsTheSameAndPaperIsToldByTheFirstAlone) {
  for (const bool paperIn : {true, false}) {
    const Answers first = ask({}, {}, false, paperIn), second = ask({}, {}, true, paperIn);
    EXPECT_TRUE(first.connected);
    EXPECT_TRUE(second.connected);
    EXPECT_EQ(first.paperIn, paperIn);
    // The check of the second generation never answers 0, which is what counts as inserted.
    EXPECT_FALSE(second.paperIn);
  }
}

// ---- the panel

struct KeyRow {
  const char* name;
  std::vector<long long> (*numbers)(const Keys&);
};
#define KEY(...) [](const Keys& k) { return std::vector<long long>{__VA_ARGS__}; }
const KeyRow kKeys[] = {
    {"event", KEY(k.event.valid, k.event.value)},
    {"duplex", KEY(k.duplex.valid, k.duplex.value)},
    {"resolution", KEY(k.resolution.xValid, k.resolution.yValid, k.resolution.xAuto, k.resolution.yAuto, k.resolution.x,
                       k.resolution.y)},
    {"colorType", KEY(k.colorType.valid, k.colorType.value)},
    {"paperType", KEY(k.paperType.valid, k.paperType.value)},
    {"brightness, contrast", KEY(k.brightness.valid, k.brightness.value, k.contrast.valid, k.contrast.value)},
    {"autoCrop, deskew", KEY(k.autoCrop.valid, k.autoCrop.on, k.deskew.valid, k.deskew.on)},
    {"blankPageRemove, removeBleedThrough",
     KEY(k.blankPageRemove.valid, k.blankPageRemove.on, k.removeBleedThrough.valid, k.removeBleedThrough.on)},
    // A turned page has an angle of 9000 from the first dialect and of 90 from the second.
    {"orient", KEY(k.orient.valid, k.orient.isLandscape, k.orient.angle != 0)},
    // A removal that is off is not told by the first dialect and told as off by the second.
    {"removeBackground", KEY(k.removeBackground.on, k.removeBackground.hasLevel, k.removeBackground.level)},
    // The compression is a number in the first dialect and a yes or no in the second; quality is told by the second
    // alone, but for a TIFF of one page, which both tell.
    {"fileType", KEY(k.fileType.valid, k.fileType.format)},
    {"fileType of a TIFF",
     KEY(k.fileType.format == 2 && k.fileType.qualityValid, k.fileType.format == 2 ? k.fileType.quality : 0)},
};
void expectSameKeys(const Wish& wish, const std::string& name) {
  const Keys first = ask({}, wish, false).keys, second = ask({}, wish, true).keys;
  for (const KeyRow& row : kKeys) EXPECT_EQ(row.numbers(first), row.numbers(second)) << row.name << " of " << name;
}

TEST(BothGenerations, OneWishOfThePanelIsOneRecord) {
  expectSameKeys({}, "the plain wish");
  for (const Choice& event : {Choice{"IMAGE", 1}, {"OCR", 2}, {"EMAIL", 3}, {"FILE", 4}}) {
    Wish wish;
    wish.event = event;
    expectSameKeys(wish, event.word);
  }
  for (const Choice& colour :
       {Choice{"AUTO", 0}, {"TEXT", 1}, {"ERRDIF", 2}, {"GRAY256", 3}, {"C256", 4}, {"CGRAY", 5}}) {
    Wish wish;
    wish.colour = colour;
    expectSameKeys(wish, colour.word);
  }
  // Four papers have a name in the first dialect that another one hides, and A4 is what any other code means.
  for (const Choice& paper : {Choice{"AUTO", 0},
                              {"A4", 0x12},
                              {"LETTER", 0x24},
                              {"LEGAL", 0x22},
                              {"A3", 0x11},
                              {"LEDGER", 0x21},
                              {"JISB4", 49},
                              {"JISB5", 50},
                              {"A5", 0x13},
                              {"JISB6", 51},
                              {"A6", 0x14},
                              {"EXECUTIVE", 0x25},
                              {"PHOTO", 83},
                              {"INDEXCARD", 81},
                              {"POSTCARD", 97},
                              {"BCARD", 65},
                              {"LONG", 114},
                              {"FOLIO", 0x23}}) {
    Wish wish;
    wish.paper = paper;
    expectSameKeys(wish, paper.word);
  }
  for (const Choice& file : {Choice{"BMP", 'Q'},
                             {"JPEG", 0x21},
                             {"TIFF", 0x11},
                             {"PNG", 0x22},
                             {"PDF(Image)", 0x01},
                             {"XPS", 0x24},
                             {"TXT", 'A'},
                             {"HTML", 'C'},
                             {"RTF", 'B'}}) {
    Wish wish;
    wish.file = file;
    expectSameKeys(wish, file.word);
  }
}

TEST(BothGenerations, AnyWishOfThePanelIsOneRecord) {
  std::mt19937 random(41);
  const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int round = 0; round < 300; ++round) {
    Wish wish;
    wish.dpi = below(3) == 0 ? 0 : 1 + below(60000);
    wish.duplex = below(3);
    wish.brightness = below(101), wish.contrast = below(101);
    wish.background = below(257) - 1;
    for (bool* flag : {&wish.crop, &wish.blank, &wish.bleed, &wish.deskew, &wish.landscape}) *flag = below(2) == 0;
    wish.turned = !wish.landscape && below(2) == 0;
    expectSameKeys(wish, std::to_string(round));
  }
}

TEST(BothGenerations, WhatThePanelCannotSayAlike) {
  Wish wish;
  wish.turned = true;
  wish.background = -1;
  wish.paper = {"PHOTOL", 84};
  wish.file = {"MULTI-TIFF", 0x12};
  const Keys first = ask({}, wish, false).keys, second = ask({}, wish, true).keys;
  EXPECT_EQ(first.orient.angle, 9000);
  EXPECT_EQ(second.orient.angle, 90);
  EXPECT_FALSE(first.removeBackground.valid);
  EXPECT_TRUE(second.removeBackground.valid);
  EXPECT_EQ(first.paperType.value, PAPERTYPE_PHOTO);
  EXPECT_EQ(second.paperType.value, PAPERTYPE_PHOTOL);
  EXPECT_EQ(first.fileType.quality, 1);
  EXPECT_EQ(second.fileType.quality, 0);
}

}  // namespace
