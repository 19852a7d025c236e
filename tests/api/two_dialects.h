// One scanner and one wish of its panel, told in both dialects: the Q block and the key lines of the first generation,
// the tagged bodies of the second. The bytes are spelled here and nowhere else.
#pragma once

#include <string>

#include "tests/parse/tag_body.h"

namespace two_dialects {

// What the scanner is; what both dialects can tell of it. Lengths are 1/10 mm, 0 where a source is missing.
struct Hardware {
  int commandVersion = 0x0B;
  int colours = 0x1F;  // bits: black and white, error diffusion, grey, 256 colours, 24 bits
  bool flatbed = true, feeder = true, bothSides = true;  // both sides only with a feeder
  int flatbedMax[2] = {2160, 2970}, feederMax[2] = {2159, 3556}, bothSidesMax[2] = {2158, 3555};
  // Of the feeder, with the way a card of 90 by 60 mm goes through it: 1 across, 2 upright, 0 not.
  int feederMin[2] = {600, 900};
  int card = 2;
  int bothSidesMin[2] = {1000, 1480};
  int flatbedDpi[2] = {1200, 2400}, feederDpi[2] = {600, 601}, bothSidesDpi[2] = {602, 603};
  int stack = 50;
  int marginX = 30, marginY = 42;
  int flatbedPosition[2] = {1, 1}, feederPosition[2] = {2, 3};  // as both dialects code them
  int longPaperMax = 8630;                                      // or 0; the first dialect knows this one length
  bool findsSize = true, cropsEdges = true;
  bool flatbedDeskew = true, feederDeskew = true;
  bool doubleFeed = true, carrierSheet = true, removesBackground = true, landscape = true;
};

inline Hardware withoutFeeder(Hardware h = {}) {
  h.feeder = h.bothSides = h.feederDeskew = h.doubleFeed = h.carrierSheet = h.landscape = false;
  h.longPaperMax = 0;
  return h;
}
inline Hardware withoutBothSides(Hardware h = {}) {
  h.bothSides = false;
  return h;
}
inline Hardware withoutFlatbed(Hardware h = {}) {
  h.flatbed = h.flatbedDeskew = false;
  return h;
}

inline std::string textOf(const BodyBytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

// The 73 bytes.
inline std::string qBlock(const Hardware& h) {
  BodyBytes block(73);
  const auto byte = [&block](std::size_t at, int value) { block[at] = static_cast<unsigned char>(value); };
  const auto words = [&byte](std::size_t at, const int(&pair)[2], bool present) {
    for (std::size_t i = 0; present && i < 2; ++i) {
      byte(at + 2 * i, pair[i] & 0xFF);
      byte(at + 2 * i + 1, pair[i] >> 8);
    }
  };
  const int margins[2] = {h.marginX, h.marginY}, stack[2] = {h.stack, 0};
  byte(0, h.commandVersion);
  byte(2, h.colours);
  byte(13, h.flatbedPosition[0]), byte(14, h.flatbedPosition[1]);
  byte(15, h.feederPosition[0]), byte(16, h.feederPosition[1]);
  byte(17, h.cropsEdges + h.findsSize * 2 + h.feederDeskew * 8 + h.flatbedDeskew * 16);
  byte(18, h.longPaperMax != 0);
  byte(19, h.doubleFeed);
  byte(20, h.carrierSheet);
  byte(26, h.removesBackground);
  words(27, h.flatbedMax, h.flatbed);
  words(31, h.feederMax, h.feeder);
  words(35, h.bothSidesMax, h.bothSides);
  words(39, h.feederMin, h.feeder);
  words(43, h.bothSidesMin, h.bothSides);
  words(47, margins, true);
  byte(51, h.landscape);
  words(54, h.flatbedDpi, h.flatbed);
  words(58, h.feederDpi, h.feeder);
  words(62, h.bothSidesDpi, h.bothSides);
  words(67, stack, true);
  return textOf(block);
}

inline std::string qdiBody(const Hardware& h) {
  const auto sixWords = [&h](const int(&flatbed)[2], const int(&feeder)[2], const int(&bothSides)[2]) {
    std::vector<int> words(6);
    for (std::size_t i = 0; i < 2; ++i) {
      if (h.flatbed) words[i] = flatbed[i];
      if (h.feeder) words[2 + i] = feeder[i];
      if (h.bothSides) words[4 + i] = bothSides[i];
    }
    return u16s(words);
  };
  const auto two = [](int first, int second) {
    return BodyBytes{static_cast<unsigned char>(first), static_cast<unsigned char>(second)};
  };
  const int none[2] = {0, 0};
  std::vector<int> margins;
  for (int source = 0; source < 4; ++source) {
    for (const int margin : {h.marginX, h.marginX, h.marginY, h.marginY}) margins.push_back(margin);
  }
  const unsigned char level = h.removesBackground ? 255 : 0;
  const auto sheet = [&h](int value) { return h.carrierSheet ? value : 0; };
  BodyBytes carrier = two(sheet(1), sheet(0x1F)),
            rest = u16s({sheet(320), 0, sheet(100), sheet(100), sheet(h.feederDpi[0]), sheet(h.feederDpi[1]), 0});
  carrier.insert(carrier.end(), rest.begin(), rest.end());
  BodyBytes crop = two(h.cropsEdges, h.cropsEdges ? 16 : 0);
  const int dpi = h.cropsEdges ? 300 : 0;
  rest = u16s({dpi, dpi, dpi, dpi});
  crop.insert(crop.end(), rest.begin(), rest.end());
  return textOf(
      TagBody()
          .tag(0x0001, u16s({h.commandVersion}))
          .tag(0x0101, u16s({2}))
          .tag(0x0201, two(0x0F, 0))
          .tag(0x0202, two(0, 2))
          .tag(0x0301, two(h.colours, 0))
          .tag(0x0302, two(h.feeder + h.flatbed * 2, h.bothSides ? 2 : 0))
          .tag(0x0303, u16s({h.stack}))
          .tag(0x0304, sixWords(h.flatbedDpi, h.feederDpi, h.bothSidesDpi))
          .tag(0x0305, sixWords(h.flatbedMax, h.feederMax, h.bothSidesMax))
          .tag(0x0306, u16s({h.longPaperMax, 0}))
          .tag(0x0307, sixWords(none, h.feederMin, h.bothSidesMin))
          .tag(0x0309, u16s(margins))
          .tag(0x030B,
               {static_cast<unsigned char>(h.flatbedPosition[0]), static_cast<unsigned char>(h.flatbedPosition[1]),
                static_cast<unsigned char>(h.feederPosition[0]), static_cast<unsigned char>(h.feederPosition[1]), 2, 1})
          .tag(0x030C, two(1, h.feeder ? h.card : 0))
          .tag(0x0401, BodyBytes{3, 3, 3, 1, 4, 0})
          .tag(0x0403, BodyBytes{2, 0, 0, 0})
          .tag(0x0502, crop)
          .tag(0x0504, {0, static_cast<unsigned char>(h.landscape ? 2 + h.bothSides * 4 : 0), 0, 0})
          .tag(0x0505, carrier)
          .tag(0x0507, two(h.doubleFeed, 0))
          .tag(0x0508, BodyBytes{level, level, 0, 0, 0, 0})
          .tag(0x050A, two(h.findsSize ? h.flatbed + h.feeder * 2 + h.bothSides * 4 : 0, 0))
          .tag(0x050B, two(h.flatbedDeskew + h.feederDeskew * (2 + h.bothSides * 4), 0))
          .end()
          .bytes);
}

// ---- the panel

// A value of the panel in both dialects.
struct Choice {
  const char* word;
  int code;
};

struct Wish {
  Choice event{"FILE", 4};
  Choice colour{"CGRAY", 5};
  Choice paper{"LETTER", 0x24};
  Choice file{"TIFF", 0x11};
  int dpi = 300;   // 0 automatic
  int duplex = 2;  // 0 one side, 1 bound at the long edge, 2 at the short one
  int brightness = 40, contrast = 60;
  bool crop = true, blank = true, bleed = false, deskew = true;
  bool landscape = false, turned = false;  // not both
  int background = 128;                    // level, or -1 for off
};

inline std::string keyLines(const Wish& w) {
  const auto flag = [](bool on) { return on ? "1\n" : "0\n"; };
  std::string text = std::string("F=") + w.event.word + "\nM=" + w.colour.word + "\nP=" + w.paper.word + "\n";
  text += w.duplex == 0 ? "D=SIN\n" : w.duplex == 1 ? "D=DUP\nE=LON\n" : "D=DUP\nE=SHO\n";
  text += "R=" + (w.dpi == 0 ? std::string("AUTO") : std::to_string(w.dpi)) + "\n";
  text += "B=" + std::to_string(w.brightness) + "\nN=" + std::to_string(w.contrast) + "\n";
  text += std::string("A=") + flag(w.crop) + "W=" + flag(w.blank) + "K=" + flag(w.bleed) + "S=" + flag(w.deskew);
  text += std::string("O=") + flag(w.landscape) + "X=" + flag(w.turned);
  text += w.background < 0 ? "G=0\n" : "G=1\nL=" + std::to_string(w.background) + "\n";
  return text + "T=" + w.file.word + "\n";
}

inline std::string gkpBody(const Wish& w) {
  const auto bytes = [](std::initializer_list<int> values) {
    BodyBytes list;
    for (const int value : values) list.push_back(static_cast<unsigned char>(value));
    return list;
  };
  const int low = w.dpi & 0xFF, high = w.dpi >> 8;
  return textOf(TagBody()
                    .tag(0x1001, bytes({w.event.code, 0}))
                    .tag(0x1002, bytes({low, high, low, high, w.colour.code, w.paper.code, w.turned, w.brightness,
                                        w.contrast, 0}))
                    .tag(0x1003, bytes({w.duplex != 0, w.duplex}))
                    .tag(0x1004, bytes({w.crop, w.deskew, w.landscape, w.blank, w.bleed, w.background >= 0,
                                        w.background < 0 ? 0 : w.background, 0}))
                    .tag(0x1005, bytes({w.file.code, 0xFF, 1, 0}))
                    .end()
                    .bytes);
}

}  // namespace two_dialects
