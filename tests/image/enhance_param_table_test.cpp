// The whole enhancement record for every preset, command version and colour class, spelled out by hand.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "image/enhance_param.h"

using namespace orvalle_scan_api;

namespace {

// Every field in the order of the record, so that a row of a table is compared with all of it.
std::string text(const _IE_PARAM& p) {
  std::ostringstream out;
  const struct {
    bool is;
    const char* name;
  } kFlags[] = {{p.doFirstEnhance, "first"},  {p.doAutoTone, "autoTone"},   {p.doSmoothing, "smoothing"},
                {p.doThickText, "thickText"}, {p.doColorDrop, "colorDrop"}, {p.doDotTextCombine, "dotText"},
                {p.doEdgeEnhance, "edge"},    {p.doPunchHole, "punchHole"}, {p.doToneAdjust, "tone"},
                {p.doNoiseRemoval, "noise"},  {p.doLineRemoval, "line"},    {p.doAutoThreshold, "autoThreshold"},
                {p.doAutoRotate, "rotate"},   {p.doEdgeFill, "fill"}};
  for (const auto& flag : kFlags) {
    if (flag.is) out << flag.name << ' ';
  }
  const auto part = [&out](const char* name, std::initializer_list<double> values) {
    out << "| " << name;
    for (const double value : values) out << ' ' << value;
    out << ' ';
  };
  const auto removal = [&part](const char* name, const IE_LINEREMOVAL& line) {
    part(name,
         {double(line.enable), double(line.reserved), double(line.mode), double(line.second), double(line.first)});
  };
  const auto& hole = p.punchHole;
  part("class", {double(p.colorClass)});
  part("smoothing", {double(p.smoothingMode), double(p.smoothingLevel)});
  part("drop", {double(p.colorDrop.isChromatic), double(p.colorDrop.red), double(p.colorDrop.green),
                double(p.colorDrop.blue), double(p.colorDrop.range), double(p.colorDrop.flag)});
  part("hole", {double(hole.margin[0]), double(hole.margin[1]), double(hole.margin[2]), double(hole.margin[3]),
                double(hole.areaLimit), double(hole.step), double(hole.hasColorTape), double(hole.grayLow),
                double(hole.grayHigh), double(hole.fillMode), double(hole.reserved[0]), double(hole.reserved[1])});
  part("tone", {double(p.toneAdjust.brightness), double(p.toneAdjust.contrast), double(p.toneAdjust.shadow),
                double(p.toneAdjust.highlight), p.toneAdjust.gamma});
  part("gray", {double(p.grayBrightness)});
  part("thick", {double(p.thickTextLevel)});
  part("dot", {double(p.dotTextCombineMode)});
  part("edge", {double(p.edgeEnhanceLevel)});
  part("auto", {double(p.autoThreshold.first[0]), double(p.autoThreshold.first[1]), double(p.autoThreshold.word),
                double(p.autoThreshold.second[0]), double(p.autoThreshold.second[1])});
  part("threshold", {double(p.threshold)});
  part("noise", {double(p.noiseRemoval.value[0]), double(p.noiseRemoval.value[1]), double(p.noiseRemoval.value[2]),
                 double(p.noiseRemoval.value[3]), double(p.noiseRemoval.value[4])});
  removal("A", p.lineRemovalA);
  removal("B", p.lineRemovalB);
  part("third", {double(p.lineRemovalThird)});
  part("fill", {double(p.edgeFill.isPixel), double(p.edgeFill.first), double(p.edgeFill.third),
                double(p.edgeFill.second), double(p.edgeFill.fourth), double(p.edgeFill.fifth)});
  part("rotate", {double(p.autoRotateParam)});
  return out.str();
}

// Everything at once that does not hide another wish.
QS_SCANNER_PARAMETERS everyWish() {
  QS_SCANNER_PARAMETERS user{};
  user.resolution = {600, 300};
  user.brightness = 20;  // 20 * 2.55 + 128 = 179
  user.contrast = -20;   // 77
  user.autoRotate = 1;
  user.autoRotateParam = 9;
  user.autoThreshold = 1;
  user.threshold = 77;
  user.colorTone = {1, 0, 10, -10, 0x105, 0x2DC, 150};  // 10 -> 153, -10 -> 102 (102.5), low bytes 5 and 220
  user.smoothing = {1, 2, -30};
  user.colorDrop = {1, 0, 0, 0, 0, 11, 12, 13, 14, 2};
  user.dotTextCombine = 1;
  user.edgeEnhance = {1, 4};
  user.firstEnhanceFlag = 1;
  user.noiseRemoval = {1, 2};
  user.lineRemoval = {1, 2, 21, 22, 23};
  user.punchHoleRemoval = {1, 5};
  user.edgeFill = {1, 2, 31, 32, 33, 34, 35};
  return user;
}

QS_SCANNER_CAPABILITY device(int commandVersion) {
  QS_SCANNER_CAPABILITY capability{};
  capability.commandVersion = static_cast<std::uint16_t>(commandVersion);
  capability.baseFunc.colorTape = {1, 200, 100, 50, 7, 9};  // (61200 + 60100 + 5850) / 1024 = 124
  return capability;
}

struct ClassRow {
  COLORTYPE color;
  const char* colorClass;
  const char* tone;
  const char* gray;
};

// The parts of the record that the colour class decides, for the settings above.
constexpr ClassRow kClasses[] = {
    {COLORTYPE_AUTO, "0", "153 102 5 220 1.5", "179"},
    {COLORTYPE_BLACKANDWHITE, "1", "179 128 0 255 1.4", "0"},
    {COLORTYPE_ERRORDIFFUSION, "2", "179 77 0 220 1", "0"},
    {COLORTYPE_TRUEGRAY, "3", "153 102 5 220 1.5", "0"},
    {COLORTYPE_COLOR256, "0", "153 102 5 220 1.5", "179"},
    {COLORTYPE_COLOR24BIT, "4", "153 102 5 220 1.5", "0"},
    {static_cast<COLORTYPE>(6), "0", "153 102 5 220 1.5", "179"},
};

struct VersionRow {
  int version;
  const char* flags;
  const char* removals;
};
constexpr VersionRow kVersions[] = {
    {0x102, "noise line autoThreshold ",
     "| auto 50 50 0 7 2 | threshold 77 | noise 100 60 60 500 1 | A 1 0 33 22 21 | B 1 0 33 22 21 | third 23 "},
    {0x101, "", "| auto 0 0 0 0 0 | threshold 77 | noise 0 0 0 0 0 | A 0 0 0 0 0 | B 0 0 0 0 0 | third 0 "},
    {0x103, "", "| auto 0 0 0 0 0 | threshold 77 | noise 0 0 0 0 0 | A 0 0 0 0 0 | B 0 0 0 0 0 | third 0 "},
    {0x100, "", "| auto 0 0 0 0 0 | threshold 77 | noise 0 0 0 0 0 | A 0 0 0 0 0 | B 0 0 0 0 0 | third 0 "},
    {0, "", "| auto 0 0 0 0 0 | threshold 77 | noise 0 0 0 0 0 | A 0 0 0 0 0 | B 0 0 0 0 0 | third 0 "},
};

TEST(EnhanceParamTable, EveryClassWithEveryVersion) {
  for (const VersionRow& version : kVersions) {
    for (const ClassRow& row : kClasses) {
      QS_SCANNER_PARAMETERS user = everyWish();
      user.colorType = row.color;
      const std::string expected =
          std::string("first smoothing colorDrop dotText edge punchHole tone ") + version.flags +
          "rotate fill | class " + row.colorClass +
          " | smoothing 2 -30 | drop 0 11 12 13 14 1 | hole 30 30 30 30 3 10 1 115 131 2 0 0 | tone " + row.tone +
          " | gray " + row.gray + " | thick 0 | dot 1 | edge 4 " + version.removals +
          "| fill 1 31 33 32 34 35 | rotate 9 ";
      EXPECT_EQ(text(makeEnhanceParam(user, device(version.version))), expected)
          << "colour type " << row.color << ", version " << version.version;
    }
  }
}

constexpr char kNothing[] =
    "| class 4 | smoothing 0 0 | drop 0 0 0 0 0 0 | hole 0 0 0 0 0 0 0 0 0 0 0 0 | tone 0 0 0 0 0 | gray 0 | thick 0 "
    "| dot 0 | edge 0 | auto 0 0 0 0 0 | threshold 0 | noise 0 0 0 0 0 | A 0 0 0 0 0 | B 0 0 0 0 0 | third 0 "
    "| fill 0 0 0 0 0 0 | rotate 0 ";

struct WishRow {
  const char* name;
  void (*wish)(QS_SCANNER_PARAMETERS& user);
  const char* flags;
  const char* without;  // this part of the record of no wishes ...
  const char* with;     // ... reads so
};

// One wish at a time, everything else as in a record of zeros.
constexpr WishRow kWishes[] = {
    {"nothing", [](auto&) {}, "", "", ""},
    {"first", [](auto& u) { u.firstEnhanceFlag = 2; }, "first ", "", ""},
    {"chromatic drop", [](auto& u) { u.colorDrop = {1, 1, 1, 1, 1, 5, 6, 7, 8, 1}; }, "colorDrop ", "drop 0 0 0 0 0 0",
     "drop 1 0 0 0 1 1"},
    {"red drop", [](auto& u) { u.colorDrop = {1, 0, 1, 1, 1, 5, 6, 7, 8, 0}; }, "colorDrop ", "drop 0 0 0 0 0 0",
     "drop 0 80 0 28 40 1"},
    {"green drop", [](auto& u) { u.colorDrop = {1, 0, 0, 1, 1, 5, 6, 7, 8, 0}; }, "colorDrop ", "drop 0 0 0 0 0 0",
     "drop 0 0 60 0 40 1"},
    {"blue drop", [](auto& u) { u.colorDrop = {1, 0, 0, 0, 1, 5, 6, 7, 8, 0}; }, "colorDrop ", "drop 0 0 0 0 0 0",
     "drop 0 0 0 40 60 1"},
    {"custom drop", [](auto& u) { u.colorDrop = {1, 0, 0, 0, 0, 255, 254, 253, 8, 0}; }, "colorDrop ",
     "drop 0 0 0 0 0 0", "drop 0 255 254 253 8 0"},
    {"colours without a drop", [](auto& u) { u.colorDrop = {0, 1, 1, 1, 1, 5, 6, 7, 8, 1}; }, "", "", ""},
    {"holes, fill 6",
     [](auto& u) {
       u.punchHoleRemoval = {1, 6};
     },
     "punchHole ", "hole 0 0 0 0 0 0 0 0 0 0 0 0", "hole 30 30 30 30 3 10 1 115 131 0 0 0"},
    {"holes, fill 0",
     [](auto& u) {
       u.punchHoleRemoval = {1, 0};
     },
     "punchHole ", "hole 0 0 0 0 0 0 0 0 0 0 0 0", "hole 30 30 30 30 3 10 1 115 131 1 0 0"},
    {"holes, any other fill",
     [](auto& u) {
       u.punchHoleRemoval = {1, -1};
     },
     "punchHole ", "hole 0 0 0 0 0 0 0 0 0 0 0 0", "hole 30 30 30 30 3 10 1 115 131 2 0 0"},
    {"smoothing",
     [](auto& u) {
       u.smoothing = {1, 255, 50};
     },
     "smoothing ", "smoothing 0 0", "smoothing 255 50"},
    {"automatic tone", [](auto& u) { u.colorTone = {1, 1, 10, 10, 1, 2, 150}; }, "autoTone ", "", ""},
    {"automatic tone without tone", [](auto& u) { u.colorTone = {0, 1, 10, 10, 1, 2, 150}; }, "", "", ""},
    {"neutral tone", [](auto& u) { u.colorTone = {1, 0, 0, 0, 0, 220, 100}; }, "tone ", "tone 0 0 0 0 0",
     "tone 128 128 0 220 1"},
    {"the ends of tone", [](auto& u) { u.colorTone = {1, 0, -50, 50, 254, 255, 1000}; }, "tone ", "tone 0 0 0 0 0",
     "tone 0 255 254 255 10"},
    {"edges",
     [](auto& u) {
       u.edgeEnhance = {1, 5};
     },
     "edge ", "edge 0", "edge 5"},
    {"automatic threshold", [](auto& u) { u.autoThreshold = 1; }, "autoThreshold ", "auto 0 0 0 0 0",
     "auto 50 50 0 7 2"},
    {"a threshold", [](auto& u) { u.threshold = 254; }, "", "threshold 0", "threshold 254"},
    {"noise 1",
     [](auto& u) {
       u.noiseRemoval = {1, 1};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 30 30 500 1"},
    {"noise 2",
     [](auto& u) {
       u.noiseRemoval = {1, 2};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 60 60 500 1"},
    {"noise 3",
     [](auto& u) {
       u.noiseRemoval = {1, 3};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 120 120 500 1"},
    {"noise 4",
     [](auto& u) {
       u.noiseRemoval = {1, 4};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 200 200 500 1"},
    {"noise 5",
     [](auto& u) {
       u.noiseRemoval = {1, 5};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 300 300 500 1"},
    {"noise 0",
     [](auto& u) {
       u.noiseRemoval = {1, 0};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 120 120 500 1"},
    {"noise 6",
     [](auto& u) {
       u.noiseRemoval = {1, 6};
     },
     "noise ", "noise 0 0 0 0 0", "noise 100 120 120 500 1"},
    {"lines one way",
     [](auto& u) {
       u.lineRemoval = {1, 0, 5, 6, 7};
     },
     "line ", "A 0 0 0 0 0 | B 0 0 0 0 0 | third 0", "A 1 0 33 6 5 | B 0 0 33 6 5 | third 7"},
    {"lines the other way",
     [](auto& u) {
       u.lineRemoval = {1, 1, 5, 6, 7};
     },
     "line ", "A 0 0 0 0 0 | B 0 0 0 0 0 | third 0", "A 0 0 33 6 5 | B 1 0 33 6 5 | third 7"},
    {"lines both ways",
     [](auto& u) {
       u.lineRemoval = {1, 3, 5, 6, 7};
     },
     "line ", "A 0 0 0 0 0 | B 0 0 0 0 0 | third 0", "A 1 0 33 6 5 | B 1 0 33 6 5 | third 7"},
    {"thick text",
     [](auto& u) {
       u.thickText = {1, 3};
     },
     "thickText ", "thick 0", "thick 3"},
    {"thick text hides dot text",
     [](auto& u) {
       u.thickText = {1, 3};
       u.dotTextCombine = 1;
     },
     "thickText ", "thick 0", "thick 3"},
    {"dot text at 300 dpi", [](auto& u) { u.dotTextCombine = 1; }, "dotText ", "dot 0", "dot 1"},
    {"dot text at 600 dpi",
     [](auto& u) {
       u.dotTextCombine = 1;
       u.resolution = {600, 600};
     },
     "dotText ", "dot 0", "dot 2"},
    {"dot text at 600 by 300 dpi",
     [](auto& u) {
       u.dotTextCombine = 1;
       u.resolution = {600, 300};
     },
     "dotText ", "dot 0", "dot 1"},
    {"rotation",
     [](auto& u) {
       u.autoRotate = 1;
       u.autoRotateParam = 3;
     },
     "rotate ", "rotate 0", "rotate 3"},
    {"a rotation's number without the wish", [](auto& u) { u.autoRotateParam = 3; }, "", "", ""},
    {"edge fill in pixels", [](auto& u) { u.edgeFill = {1, 2, 1, 2, 3, 4, 5}; }, "fill ", "fill 0 0 0 0 0 0",
     "fill 1 1 3 2 4 5"},
    {"edge fill otherwise", [](auto& u) { u.edgeFill = {1, 1, 1, 2, 3, 4, 5}; }, "fill ", "fill 0 0 0 0 0 0",
     "fill 0 1 3 2 4 5"},
};

TEST(EnhanceParamTable, EveryWishAlone) {
  for (const WishRow& row : kWishes) {
    QS_SCANNER_PARAMETERS user{};
    user.colorType = COLORTYPE_COLOR24BIT;
    user.resolution = {300, 300};
    row.wish(user);
    std::string expected = kNothing;
    const std::size_t at = expected.find(row.without);
    ASSERT_NE(at, std::string::npos) << row.name;
    expected.replace(at, std::string(row.without).size(), row.with);
    EXPECT_EQ(text(makeEnhanceParam(user, device(0x102))), row.flags + expected) << row.name;
  }
}

}  // namespace
