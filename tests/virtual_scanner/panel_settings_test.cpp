#include "protocol/panel_settings.h"

#include <gtest/gtest.h>

#include "support/failure.h"

namespace vscan {
namespace {

std::string textOf(const std::string& button) { return gen1::keyText(parsePanelSettings(button)); }
Bytes bodyOf(const std::string& button) { return gen2::keyBody(parsePanelSettings(button)); }

// A body with all groups open but for the places given.
Bytes openBody(int event, const std::vector<std::pair<std::size_t, int>>& places) {
  Bytes body{0x01, 0x10, 2,    0,    static_cast<std::uint8_t>(event),
             0xFF,  // 0
             0x02, 0x10, 10,   0,    0xFF,
             0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
             0xFF, 0xFF, 0xFF, 0xFF,  // 6
             0x03, 0x10, 2,    0,    0xFF,
             0xFF,  // 20
             0x04, 0x10, 8,    0,    0xFF,
             0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
             0xFF, 0xFF,  // 26
             0x05, 0x10, 4,    0,    0xFF,
             0xFF, 0xFF, 0x00,  // 38
             0xF0, 0xF0, 0,    0};
  for (const auto& [place, value] : places) body.at(place) = static_cast<std::uint8_t>(value);
  return body;
}

TEST(PanelSettings, WithNoButtonPressedBothAnswersAreShort) {
  EXPECT_EQ(gen1::keyText(std::nullopt), "\n");
  EXPECT_EQ(gen2::keyBody(std::nullopt), (Bytes{0x01, 0x10, 2, 0, 0, 0xFF, 0xF0, 0xF0, 0, 0}));
}

TEST(PanelSettings, EachItemHasItsLineAndItsPlace) {
  const struct {
    const char* button;
    const char* text;
    int event;
    std::vector<std::pair<std::size_t, int>> places;
  } rows[] = {
      {"image", "F=IMAGE\n", 1, {}},
      {"ocr", "F=OCR\n", 2, {}},
      {"email", "F=EMAIL\n", 3, {}},
      {"file", "F=FILE\n", 4, {}},
      {"image resolution=300", "F=IMAGE\nR=300\n", 1, {{10, 0x2C}, {11, 0x01}, {12, 0x2C}, {13, 0x01}}},
      {"image resolution=300x600", "F=IMAGE\nR=300\n", 1, {{10, 0x2C}, {11, 0x01}, {12, 0x58}, {13, 0x02}}},
      {"image resolution=auto", "F=IMAGE\nR=AUTO\n", 1, {{10, 0}, {11, 0}, {12, 0}, {13, 0}}},
      {"image color=auto", "F=IMAGE\nM=AUTO\n", 1, {{14, 0}}},
      {"image color=errdif", "F=IMAGE\nM=ERRDIF\n", 1, {{14, 2}}},
      {"image color=color", "F=IMAGE\nM=CGRAY\n", 1, {{14, 5}}},
      {"image paper=A4", "F=IMAGE\nP=A4\n", 1, {{15, 0x12}}},
      {"image paper=POSTCARD2", "F=IMAGE\nP=POSTCARD2\n", 1, {{15, 0x62}}},
      {"image turn=90", "F=IMAGE\nX=1\n", 1, {{16, 1}}},
      {"image landscape=on", "F=IMAGE\nO=1\n", 1, {{32, 1}}},
      {"image brightness=60 contrast=0", "F=IMAGE\nB=60\nN=0\n", 1, {{17, 60}, {18, 0}}},
      {"image duplex=on binding=short", "F=IMAGE\nD=DUP\nE=SHO\n", 1, {{24, 1}, {25, 2}}},
      {"image duplex=on binding=long", "F=IMAGE\nD=DUP\nE=LON\n", 1, {{24, 1}, {25, 1}}},
      {"image duplex=off", "F=IMAGE\nD=SIN\n", 1, {{24, 0}}},
      {"image crop=on deskew=off", "F=IMAGE\nA=1\nS=0\n", 1, {{30, 1}, {31, 0}}},
      {"image blank=on bleed=on", "F=IMAGE\nW=1\nK=1\n", 1, {{33, 1}, {34, 1}}},
      {"image background=99", "F=IMAGE\nG=1\nL=99\n", 1, {{35, 1}, {36, 99}}},
      {"image background=off", "F=IMAGE\nG=0\n", 1, {{35, 0}}},
      {"file format=jpeg compression=30", "F=FILE\nT=JPEG\nJ=30\n", 4, {{42, 0x21}, {43, 1}}},
      {"file format=multi-tiff compression=0", "F=FILE\nT=MULTI-TIFF\nC=0\n", 4, {{42, 0x12}, {43, 0}}},
      {"file format=pdf", "F=FILE\nT=PDF(Image)\n", 4, {{42, 0x01}}},
      {"file format=txt quality=3", "F=FILE\nT=TXT\n", 4, {{42, 'A'}, {44, 3}}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(textOf(row.button), row.text);
    EXPECT_EQ(bodyOf(row.button), openBody(row.event, row.places)) << row.button;
  }
}

TEST(PanelSettings, WhatIsWrongIsSaidInASentence) {
  const struct {
    const char* button;
    const char* words;
  } rows[] = {
      {"", "there is no button \"\""},
      {"fax", "there is no button \"fax\""},
      {"image resolution", "\"resolution\" is no setting"},
      {"image day=1", "\"day=1\" is no setting"},
      {"image resolution=0", "\"0\" is no value of resolution"},
      {"image resolution=300x", "\"300x\" is no value of resolution"},
      {"image paper=a4", "\"a4\" is no value of paper"},
      {"image format=doc", "\"doc\" is no value of format"},
      {"image brightness=101", "\"101\" is no value of brightness"},
      {"image crop=yes", "\"yes\" is no value of crop"},
      {"image background=256", "\"256\" is no value of background"},
      {"image quality=5", "\"5\" is no value of quality"},
      {"image binding=long", "binding means nothing without duplex=on"},
  };
  for (const auto& row : rows) {
    try {
      parsePanelSettings(row.button);
      ADD_FAILURE() << row.button;
    } catch (const Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(row.words), std::string::npos) << failure.what();
    }
  }
}

}  // namespace
}  // namespace vscan
