// Every frame of the first generation byte for byte: the fixed commands as numbers, the built ones from lines that are
// spelled out here, for every combination of the words and every value of the numbers that has a meaning.
#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <string>
#include <vector>

#include "command/ScanCmd_v1.h"
#include "tests/command/frame_lines.h"
#include "tests/fakes/ScriptedDevice.h"

using namespace orvalle_scan_api;
using frame_lines::as;
using frame_lines::Param;

namespace {

std::string bytesOf(std::initializer_list<int> numbers) {
  std::string bytes;
  for (const int number : numbers) bytes += static_cast<char>(number);
  return bytes;
}

// The values of an X frame, in wire order.
struct XText {
  std::string r = "0,0", m = "TEXT", c = "NONE", j = "MID", b = "50", n = "50", a = "0,0,0,0";
  std::string d = "SIN", s = "NORMAL_SCAN", p = "0", e = "0", g = "0", l = "0";

  std::string x() const {
    return "\x1BX\nR=" + r + "\nM=" + m + "\nC=" + c + "\nJ=" + j + "\nB=" + b + "\nN=" + n + "\nA=" + a + "\nD=" + d +
           "\nS=" + s + "\nP=" + p + "\nE=" + e + "\nG=" + g + "\nL=" + l + "\n\x80";
  }
  std::string i() const { return "\x1BI\nR=" + r + "\nM=" + m + "\nD=" + d + "\nS=" + s + "\n\x80"; }
  // Never sent, but built.
  std::string ownE() const { return "\x1B" + ("E\nR=" + r) + "\nM=" + m + "\n\x80"; }
};

void expectFrames(const Param& param, const XText& text) {
  const CCmdString_v1 strings;
  EXPECT_EQ(strings.MakeXcmdString(&param), text.x());
  EXPECT_EQ(strings.MakeIcmdString(&param), text.i());
  EXPECT_EQ(strings.MakeEcmdString(&param), text.ownE());
}

class OnTheWire : public ::testing::Test {
 protected:
  OnTheWire() { access.SetPointerToDeviceAccess(&device); }
  ~OnTheWire() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  CScanCmd_v1 command{&access};
};

}  // namespace

using CmdString_v1_wire = OnTheWire;

TEST_F(CmdString_v1_wire, TheFixedCommandsAreFourBytes) {
  _SCANCMD_RESPONSE_INFO response{};
  device.expect(bytesOf({0x1B, 0x4B, 0x0A, 0x80})).answer(bytesOf({0x30, 0x01, 0x00, 0x0A}));
  EXPECT_EQ(command.ExeKcmd(&response), 0u);
  device.expect(bytesOf({0x1B, 0x50, 0x0A, 0x80})).answer(bytesOf({0x03, 0x00, 0x01, 0x02, 0x03}));
  EXPECT_EQ(command.ExePcmd(&response), 0u);
  device.expect(bytesOf({0x1B, 0x52, 0x0A, 0x80}));
  EXPECT_EQ(command.ExeRcmd(), 0u);
}

TEST_F(CmdString_v1_wire, TheSourceIsAWordWithoutAKey) {
  const std::string kAdf = bytesOf({0x41, 0x44, 0x46, 0x0A, 0x80});
  const std::string kFb = bytesOf({0x46, 0x42, 0x0A, 0x80});
  const std::string kAuto = bytesOf({0x41, 0x55, 0x54, 0x4F, 0x0A, 0x80});
  const std::string d = bytesOf({0x1B, 0x44, 0x0A}), s = bytesOf({0x1B, 0x53, 0x0A});
  for (const auto& [source, word] : {std::pair(0, kAuto), {1, kAdf}, {2, kFb}, {3, kAuto}, {-1, kAuto}}) {
    device.expect(d + word).answer("\x80").expect(s + word).answer("\x80");
    EXPECT_EQ(command.ExeDcmd(as<SCANCMD_PAPERSOURCE_TYPE>(source)), 0u) << source;
    EXPECT_EQ(command.ExeScmd(as<SCANCMD_PAPERSOURCE_TYPE>(source)), 0u) << source;
  }
}

TEST_F(CmdString_v1_wire, TheSizeOfTheDocumentIsAskedForWithAnIFrame) {
  Param param = frame_lines::zero();
  param.resolution = {150, 150, false};
  param.colorType = SCANCMD_COLOR_GRAY256;
  const std::string i = bytesOf({0x1B, 0x49, 0x0A, 0x52, 0x3D, 0x31, 0x35, 0x30, 0x2C, 0x31, 0x35, 0x30, 0x0A}) +
                        bytesOf({0x4D, 0x3D, 0x47, 0x52, 0x41, 0x59, 0x32, 0x35, 0x36, 0x0A}) +
                        bytesOf({0x44, 0x3D, 0x53, 0x49, 0x4E, 0x0A}) +
                        bytesOf({0x53, 0x3D, 0x4E, 0x4F, 0x52, 0x4D, 0x41, 0x4C, 0x5F, 0x53, 0x43, 0x41, 0x4E, 0x0A}) +
                        bytesOf({0x80});
  _SCANCMD_RESPONSE_INFO response{};
  device.expect(i).answer(bytesOf({0x00, 0x01, 0x00, 0x41})).expect(i).answer(bytesOf({0x00, 0x01, 0x00, 0x42}));
  EXPECT_EQ(command.ExeIcmd(&response, &param), 0u);
  EXPECT_EQ(command.ExeEcmd(&response, &param), 0u);
  ASSERT_EQ(response.size, 1);
  EXPECT_EQ(response.data[0], 0x42);
}

TEST(CmdString_v1_text, AStartIsTheseBytes) {
  Param param = frame_lines::zero();
  param.resolution = {600, 300, true};
  param.colorType = SCANCMD_COLOR_AUTO;
  param.compressionType = SCANCMD_COMPRESSION_JPEG_SECOND;
  param.jpegCompressionRate = 77;
  param.brightness = -7;
  param.contrast = 13;
  param.scanArea = {SCANCMD_SCAN_AREA_AUTO, 1, 22, 333, 4444};
  param.duplexScan = {true, true};
  param.autoDeskew = true;
  param.specialScan = SCANCMD_SPECIAL_SCAN_ORIGINAL;
  param.scanPage = 2;
  param.doubleFeedDetection = {true, true, 9};
  param.landscapeMode = true;
  param.groundColorRemoval = {true, true, 12};
  // Fields that have no line here.
  param.paperSource = SCANCMD_PAPERSOURCE_ADF;
  param.longPaperMode = param.vertexDetection = param.quietScan = param.moireRemoval = param.toneAdjust = true;
  std::strcpy(param.userName, "somebody");
  EXPECT_EQ(CCmdString_v1().MakeXcmdString(&param),
            "\x1BX\x0A"
            "R=600,300\x0A"
            "M=CGRAY\x0A"
            "C=NONE\x0A"
            "J=MID\x0A"
            "B=43\x0A"
            "N=63\x0A"
            "A=1,22,334,4466\x0A"
            "D=DUP\x0A"
            "S=SKEW_ADJUST\x0A"
            "P=0\x0A"
            "E=3\x0A"
            "G=1\x0A"
            "L=12\x0A"
            "\x80");
}

// All words against each other, so that no line leans on another one's field.
TEST(CmdString_v1_text, EveryCombinationOfTheWords) {
  const std::array<const char*, 8> colours = {"CGRAY", "TEXT",  "ERRDIF", "GRAY256",
                                              "C256",  "CGRAY", "CGRAY",  "CGRAY"};  // -1 to 6
  const std::array<const char*, 8> compressions = {"NONE", "NONE", "NONE", "RLENGTH", "JPEG", "NONE", "NONE", "NONE"};
  for (int colour = -1; colour <= 6; ++colour) {
    for (int compression = -1; compression <= 6; ++compression) {
      for (int flags = 0; flags < 32; ++flags) {
        for (int area = 0; area <= 4; ++area) {
          for (int special = 0; special <= 4; ++special) {
            Param param = frame_lines::zero();
            param.colorType = as<SCANCMD_COLOR_TYPE>(colour);
            param.compressionType = as<SCANCMD_COMPRESSION_TYPE>(compression);
            param.duplexScan.isDuplex = (flags & 1) != 0;
            param.autoDeskew = (flags & 2) != 0;
            param.doubleFeedDetection.isOn = (flags & 4) != 0;
            param.landscapeMode = (flags & 8) != 0;
            param.groundColorRemoval.isOn = (flags & 16) != 0;
            param.scanArea.areaType = as<SCANCMD_SCAN_AREA_TYPE>(area);
            param.specialScan = as<SCANCMD_SPECIAL_SCAN_TYPE>(special);
            param.scanPage = static_cast<std::uint32_t>(special);

            XText text;
            text.m = colours[static_cast<std::size_t>(colour + 1)];
            text.c = compressions[static_cast<std::size_t>(compression + 1)];
            text.d = (flags & 1) != 0 ? "DUP" : "SIN";
            if (special == 2) text.s = "EDGE_SCAN";
            if (special == 3) text.s = "ORIGINAL_SCAN";
            if (area == 3) text.s = "CORNER_SCAN";
            if ((flags & 2) != 0) text.s = "SKEW_ADJUST";
            text.p = special == 1 ? "1" : "0";
            text.e = std::to_string((flags >> 2 & 1) + (flags >> 3 & 1) * 2);
            text.g = (flags & 16) != 0 ? "1" : "0";
            ASSERT_EQ(CCmdString_v1().MakeXcmdString(&param), text.x());
            if (compression != 0) continue;
            ASSERT_EQ(CCmdString_v1().MakeIcmdString(&param), text.i());
            ASSERT_EQ(CCmdString_v1().MakeEcmdString(&param), text.ownE());
          }
        }
      }
    }
  }
}

TEST(CmdString_v1_text, EveryBrightnessAndContrastIsShiftedTo0To100) {
  for (int value = -50; value <= 50; ++value) {
    Param param = frame_lines::zero();
    XText text;
    param.brightness = value;
    param.contrast = -value;
    text.b = std::to_string(value + 50);
    text.n = std::to_string(50 - value);
    expectFrames(param, text);
  }
}

TEST(CmdString_v1_text, EveryResolutionOfTheListAndItsNeighbours) {
  for (const std::uint32_t x : {0u, 1u, 99u, 100u, 150u, 200u, 300u, 400u, 600u, 1200u, 19200u, 4294967295u}) {
    for (const std::uint32_t y : {0u, 75u, 300u, 2147483648u}) {
      for (const bool automatic : {false, true}) {
        Param param = frame_lines::zero();
        param.resolution = {x, y, automatic};
        XText text;
        text.r = std::to_string(x) + "," + std::to_string(y);
        expectFrames(param, text);
      }
    }
  }
}

TEST(CmdString_v1_text, TheAreaIsTwoCornersWhateverItsKind) {
  const struct {
    std::uint32_t left, top, width, height;
    const char* text;
  } rows[] = {
      {0, 0, 2480, 3507, "0,0,2480,3507"},
      {8, 16, 2464, 3491, "8,16,2472,3507"},
      {1, 2, 0, 0, "1,2,1,2"},
      {2147483647, 1, 1, 2147483647, "2147483647,1,2147483648,2147483648"},
      {4294967295u, 4294967295u, 1, 2, "4294967295,4294967295,0,1"},
  };
  for (const auto& row : rows) {
    for (const int kind : {0, 1, 2, 4, 5, -1}) {
      Param param = frame_lines::zero();
      param.scanArea = {as<SCANCMD_SCAN_AREA_TYPE>(kind), row.left, row.top, row.width, row.height};
      XText text;
      text.a = row.text;
      expectFrames(param, text);
    }
  }
}

TEST(CmdString_v1_text, OnlyOnePageIsSaid) {
  for (const std::uint32_t pages : {0u, 1u, 2u, 3u, 256u, 257u, 65537u, 4294967295u}) {
    Param param = frame_lines::zero();
    param.scanPage = pages;
    XText text;
    text.p = pages == 1 ? "1" : "0";
    expectFrames(param, text);
  }
}

TEST(CmdString_v1_text, TheLevelOfTheRemovalIsSentWhateverTheSwitchesSay) {
  for (const int level : {INT_MIN, -255, -1, 0, 1, 9, 10, 128, 255, 256, INT_MAX}) {
    for (const bool on : {false, true}) {
      for (const bool hasLevel : {false, true}) {
        Param param = frame_lines::zero();
        param.groundColorRemoval = {on, hasLevel, level};
        XText text;
        text.g = on ? "1" : "0";
        text.l = std::to_string(level);
        expectFrames(param, text);
      }
    }
  }
}
