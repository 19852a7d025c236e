// The panel's settings as text, against a second reading of the keys that is written here: every keyword, every pair of
// keywords in one value, every number, and texts thrown together at random.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "parse/ParseCmdRes_v1.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;

namespace {

struct Word {
  const char* word;
  int value;
};
// In the order in which they are tried.
const std::vector<Word> kEvents = {{"IMAGE", 0}, {"OCR", 1}, {"EMAIL", 2}, {"FILE", 3}};
const std::vector<Word> kColours = {{"AUTO", 0}, {"TEXT", 1}, {"ERRDIF", 2}, {"GRAY256", 3}, {"C256", 4}, {"CGRAY", 5}};
const std::vector<Word> kPapers = {
    {"AUTO", 0},   {"A4", 1},         {"LETTER", 2},  {"LEGAL", 3},    {"A3", 4},        {"LEDGER", 5},
    {"JISB4", 6},  {"JISB5", 7},      {"A5", 8},      {"JISB6", 9},    {"A6", 10},       {"EXECUTIVE", 11},
    {"PHOTO", 12}, {"INDEXCARD", 13}, {"PHOTOL", 14}, {"PHOTO2L", 15}, {"POSTCARD", 16}, {"POSTCARD2", 17},
    {"BCARD", 18}, {"BCARDV", 19},    {"LONG", 24},   {"FOLIO", 20}};
const std::vector<Word> kFormats = {{"BMP", 0},        {"JPEG", 1}, {"TIFF", 2}, {"MULTI-TIFF", 2}, {"PNG", 3},
                                    {"PDF(Image)", 4}, {"XPS", 8},  {"TXT", 9},  {"HTML", 10},      {"RTF", 11}};

bool has(const std::string& value, const std::string& part) { return value.find(part) != std::string::npos; }
const Word* firstOf(const std::vector<Word>& words, const std::string& value) {
  for (const Word& word : words) {
    if (has(value, word.word)) return &word;
  }
  return nullptr;
}
std::string valueOf(const std::string& text, const std::string& key) {
  const std::size_t at = text.find(key);
  if (at == std::string::npos) return "";
  const std::string rest = text.substr(at + key.size());
  return rest.substr(0, rest.find('\n'));
}
int number(const std::string& digits) {
  return static_cast<int>(std::clamp<long>(std::strtol(digits.c_str(), nullptr, 10), INT_MIN, INT_MAX));
}

// A record as one line of text, so that all of it is compared and a difference can be read.
std::string print(const tagQS_PUSHSCAN_PARAMETERS& k) {
  std::string text;
  const auto value = [&](const char* name, PUSHSCAN_VALUE v) {
    text += name + " "s + std::to_string(v.valid) + "/" + std::to_string(v.value) + " ";
  };
  const auto state = [&](const char* name, PUSHSCAN_STATE s) {
    text += name + " "s + std::to_string(s.valid) + "/" + std::to_string(s.on) + " ";
  };
  const auto list = [&](const char* name, std::initializer_list<long long> numbers) {
    text += name;
    for (const long long n : numbers) text += " " + std::to_string(n);
    text += " ";
  };
  value("event", k.event), value("duplex", k.duplex), value("colour", k.colorType), value("paper", k.paperType);
  const PUSHSCAN_RESOLUTION& r = k.resolution;
  list("resolution", {r.xValid, r.yValid, r.xAuto, r.yAuto, r.x, r.y});
  value("brightness", k.brightness), value("contrast", k.contrast), state("crop", k.autoCrop);
  const PUSHSCAN_FILETYPE& f = k.fileType;
  list("file", {f.valid, f.format, f.compressValid, f.compress, f.tiffCompressValid, f.tiffCompressOn, f.qualityValid,
                f.quality, f.qualityArg});
  state("blank", k.blankPageRemove), state("bleed", k.removeBleedThrough);
  list("orient", {k.orient.valid, k.orient.isLandscape, k.orient.angle});
  state("deskew", k.deskew);
  const PUSHSCAN_REMOVEBACKGROUND& g = k.removeBackground;
  list("background", {g.valid, g.on, g.hasLevel, g.level});
  return text;
}

// The second reading.
struct Model {
  std::string text;

  PUSHSCAN_VALUE word(const char* key, const std::vector<Word>& words) const {
    const Word* found = firstOf(words, valueOf(text, key));
    return found == nullptr ? PUSHSCAN_VALUE{false, 0} : PUSHSCAN_VALUE{true, found->value};
  }
  PUSHSCAN_VALUE within(const char* key, int least, int most) const {
    const std::string value = valueOf(text, key);
    if (value.empty()) return {false, 0};
    return {true, std::min(std::max(number(value), least), most)};
  }
  PUSHSCAN_STATE onOff(const char* key) const {
    const std::string value = valueOf(text, key);
    if (has(value, "1")) return {true, true};
    return {has(value, "0"), false};
  }
  PUSHSCAN_VALUE duplex() const {
    const std::string d = valueOf(text, "D=");
    if (has(d, "DUP")) return {true, has(valueOf(text, "E="), "SHO") ? 2 : 1};
    return {has(d, "SIN"), 0};
  }
  PUSHSCAN_RESOLUTION resolution() const {
    const std::string value = valueOf(text, "R=");
    if (value.empty()) return {};
    if (has(value, "AUTO")) return {true, true, true, true, 0, 0};
    const auto dpi = static_cast<std::uint32_t>(number(value));
    return {true, true, false, false, dpi, dpi};
  }
  PUSHSCAN_FILETYPE file() const {
    PUSHSCAN_FILETYPE type{};
    const Word* found = firstOf(kFormats, valueOf(text, "T="));
    if (found == nullptr) return type;
    const std::string name = found->word;
    type.valid = true;
    type.format = found->value;
    type.quality = name == "BMP" || name == "JPEG" || name == "TIFF" || name == "PNG" ? 1 : 0;
    if (name == "JPEG" || name == "PDF(Image)") {
      const PUSHSCAN_VALUE compress = within("J=", name == "JPEG" ? 1 : 0, 100);
      type.compressValid = compress.valid;
      type.compress = compress.value;
    }
    if (name == "TIFF") {
      const PUSHSCAN_STATE compress = onOff("C=");
      type.tiffCompressValid = compress.valid;
      type.tiffCompressOn = compress.on;
      type.qualityValid = true;
    }
    return type;
  }
  PUSHSCAN_ORIENT orient() const {
    if (has(valueOf(text, "O="), "1")) return {true, true, 0};
    const std::string x = valueOf(text, "X=");
    if (has(x, "0")) return {true, false, 0};
    if (has(x, "1")) return {true, false, 9000};
    return {};
  }
  PUSHSCAN_REMOVEBACKGROUND background() const {
    if (!has(valueOf(text, "G="), "1")) return {};
    const PUSHSCAN_VALUE level = within("L=", 0, 255);
    return {true, true, level.valid, level.value};
  }
  tagQS_PUSHSCAN_PARAMETERS record() const {
    tagQS_PUSHSCAN_PARAMETERS k{};
    k.event = word("F=", kEvents), k.duplex = duplex(), k.resolution = resolution();
    k.colorType = word("M=", kColours), k.paperType = word("P=", kPapers);
    k.brightness = within("B=", 0, 100), k.contrast = within("N=", 0, 100);
    k.autoCrop = onOff("A="), k.fileType = file(), k.blankPageRemove = onOff("W=");
    k.removeBleedThrough = onOff("K="), k.orient = orient(), k.deskew = onOff("S=");
    k.removeBackground = background();
    return k;
  }
};

tagQS_PUSHSCAN_PARAMETERS parse(const std::string& body) {
  const std::unique_ptr<unsigned char[]> copy(new unsigned char[body.size()]);
  std::copy(body.begin(), body.end(), copy.get());
  return CParseCmdRes_v1().ParseDeviceKeyInfoResponse(copy.get(), static_cast<long>(body.size()));
}
std::string parsed(const std::string& body) { return print(parse(body)); }
// Text ends at the first zero byte.
std::string wanted(const std::string& body) { return print(Model{body.substr(0, body.find('\0'))}.record()); }

#define EXPECT_READ(body) EXPECT_EQ(parsed(body), wanted(body)) << (body)

// ---- keywords

struct KeywordItem {
  const char* key;
  const std::vector<Word>* words;
};
const KeywordItem kItems[] = {{"F=", &kEvents}, {"M=", &kColours}, {"P=", &kPapers}, {"T=", &kFormats}};

TEST(SkeyText, EveryKeywordAndEveryPairInOneValue) {
  for (const KeywordItem& item : kItems) {
    for (const Word& first : *item.words) {
      for (const char* decoration : {"", "x", " ", ","}) {
        EXPECT_READ(item.key + (decoration + (first.word + std::string(decoration))) + "\n");
      }
      for (const Word& second : *item.words) {
        EXPECT_READ(item.key + std::string(first.word) + second.word + "\n");
        EXPECT_READ(item.key + std::string(first.word) + "\n" + item.key + second.word);  // the first line wins
      }
      // Every piece of the word alone.
      const std::string word = first.word;
      for (std::size_t from = 0; from < word.size(); ++from) {
        for (std::size_t length = 1; from + length <= word.size(); ++length) {
          EXPECT_READ(item.key + word.substr(from, length));
        }
      }
    }
  }
}

TEST(SkeyText, ThePapersThatHideEachOther) {
  const struct {
    const char* word;
    int paper;
  } rows[] = {{"PHOTO", 12},   {"PHOTOL", 12},  {"PHOTO2L", 12},   {"POSTCARD", 16}, {"POSTCARD2", 16}, {"BCARD", 18},
              {"BCARDV", 18},  {"LONG", 24},    {"FOLIO", 20},     {"JISB4", 6},     {"JISB6", 9},      {"A6", 10},
              {"LETTERA3", 2}, {"A3LETTER", 2}, {"LONGFOLIO", 24}, {"FOLIOLONG", 24}};
  for (const auto& row : rows) {
    const tagQS_PUSHSCAN_PARAMETERS k = parse("P="s + row.word);
    EXPECT_TRUE(k.paperType.valid) << row.word;
    EXPECT_EQ(k.paperType.value, row.paper) << row.word;
  }
  const PUSHSCAN_FILETYPE tiff = parse("T=MULTI-TIFF\n").fileType;
  EXPECT_EQ(tiff.format, 2);
  EXPECT_EQ(tiff.quality, 1);
}

TEST(SkeyText, FormatsWithEveryExtra) {
  for (const Word& format : kFormats) {
    for (const char* j : {"", "J=\n", "J=0\n", "J=1\n", "J=100\n", "J=101\n", "J=-3\n", "J=x\n"}) {
      for (const char* c : {"", "C=\n", "C=0\n", "C=1\n", "C=10\n", "C=2\n"}) {
        EXPECT_READ("T="s + format.word + "\n" + j + c);
        EXPECT_READ(std::string(j) + c + "T=" + format.word);
      }
    }
  }
  const PUSHSCAN_FILETYPE jpeg = parse("T=JPEG\nJ=0\n").fileType, pdf = parse("J=0\nT=PDF(Image)\n").fileType;
  EXPECT_EQ(jpeg.compress, 1);
  EXPECT_EQ(pdf.compress, 0);
  EXPECT_TRUE(jpeg.compressValid && pdf.compressValid);
}

// ---- numbers and switches

TEST(SkeyText, NumbersOfEveryItem) {
  for (const char* key : {"B=", "N=", "R=", "J=", "L="}) {
    for (const std::string value :
         {"",        "0",    "1",       "99",  "100",        "101",        "150",         "254",
          "255",     "256",  "-1",      "-5",  "x",          "x5",         "5x",          " 7",
          "+8",      "--9",  "0x10",    "007", "2147483647", "2147483648", "-2147483649", "999999999999999999999999",
          "400,600", "AUTO", "600AUTO", "\t3"}) {
      for (const char* end : {"\n", "\nB=3\n", ""}) EXPECT_READ("T=JPEG\nG=1\n"s + key + value + end);
    }
  }
  for (int value = -10; value <= 300; ++value) {
    const std::string digits = std::to_string(value);
    EXPECT_EQ(parse("B=" + digits).brightness.value, std::min(std::max(value, 0), 100)) << value;
    EXPECT_EQ(parse("G=1\nL=" + digits).removeBackground.level, std::min(std::max(value, 0), 255)) << value;
  }
}

TEST(SkeyText, SwitchesOfEveryItem) {
  for (const char* key : {"A=", "C=", "W=", "K=", "S=", "G=", "O=", "X="}) {
    for (const char* value : {"", "0", "1", "2", "10", "01", "20", "21", "on", "-1", "x0", "x1", "l"}) {
      for (const char* rest : {"", "X=0\n", "X=1\n", "O=0\n", "O=1\n", "L=5\n"}) {
        EXPECT_READ("T=TIFF\n"s + key + value + "\n" + rest);
      }
    }
  }
}

TEST(SkeyText, BothSidesAndTheirEdge) {
  for (const char* d : {"", "D=\n", "D=DUP\n", "D=SIN\n", "D=DUPSIN\n", "D=SINDUP\n", "D=dup\n", "D=DU\n"}) {
    for (const char* e : {"", "E=\n", "E=SHO\n", "E=LON\n", "E=SHORT\n", "E=SH\n", "E=xSHO\n"}) {
      EXPECT_READ(std::string(d) + e);
      EXPECT_READ(std::string(e) + d);
    }
  }
}

// ---- whole texts

TEST(SkeyText, TheEdgesInWords) {
  EXPECT_EQ(parsed(""), print({}));
  tagQS_PUSHSCAN_PARAMETERS two{};
  two.event = {true, 0};
  two.resolution = {true, true, false, false, 300, 300};
  EXPECT_EQ(parsed("F=IMAGE\nR=300\n"), print(two));
  EXPECT_EQ(parse("R=400,600\n").resolution.x, 400u);
  EXPECT_EQ(parse("R=400,600\n").resolution.y, 400u);
  EXPECT_EQ(parse("D=DUP\n").duplex.value, 1);
  const PUSHSCAN_ORIENT turned = parse("O=0\nX=1\n").orient;
  EXPECT_TRUE(turned.valid && !turned.isLandscape);
  EXPECT_EQ(turned.angle, 9000);
  const PUSHSCAN_REMOVEBACKGROUND background = parse("G=1\n").removeBackground;
  EXPECT_TRUE(background.valid && background.on && !background.hasLevel);
  EXPECT_FALSE(parse("G=0\nL=7\n").removeBackground.valid);
  EXPECT_EQ(parsed("F=FILE\n\0R=300\n"s), parsed("F=FILE\n"));
}

TEST(SkeyText, AKeyIsFoundWhereverItStandsFirst) {
  EXPECT_EQ(parse("XF=OCR\nF=FILE\n").event.value, 1);
  EXPECT_EQ(parse("F=R=75\nR=300\n").resolution.x, 75u);
  EXPECT_READ("P=A=1\nA=0\n"s);
  EXPECT_READ("PDF=EMAIL,T=PNG\n"s);
  EXPECT_READ("F =FILE\nF=OCR"s);
  EXPECT_READ("F=FILE\r\nR=300\r\n"s);
}

TEST(SkeyText, EveryPrefixOfAWholeText) {
  const std::string text =
      "F=FILE\nD=DUP\nE=SHO\nR=300\nM=CGRAY\nP=LETTER\nB=40\nN=160\nA=1\nT=TIFF\nC=1\nJ=80\nW=0\nK=1\nO=0\nX=1\nS=1\n"
      "G=1\nL=300\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    EXPECT_READ(text.substr(0, size));
    std::string zeroed = text;
    zeroed.replace(size, std::string::npos, std::string(text.size() - size, '\0'));
    EXPECT_READ(zeroed);
  }
}

TEST(SkeyText, AnyTextIsReadTheSameWayTwice) {
  std::mt19937 random(35);
  const std::vector<std::string> keys = {
      "F=", "D=", "E=", "R=", "M=", "P=", "B=", "N=", "A=", "T=", "J=", "C=", "W=", "K=", "O=", "X=", "S=", "G=", "L="};
  const std::vector<std::string> pieces = {"0",   "1",   "5", "300", "-",  ",", " ", "AUTO", "DUP",
                                           "SIN", "SHO", "=", "\n",  "\r", "A", "4", "L"};
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t lines = random() % 8; lines > 0; --lines) {
      text += keys[random() % keys.size()];
      for (std::size_t parts = random() % 4; parts > 0; --parts) {
        const KeywordItem& item = kItems[random() % 4];
        text +=
            random() % 2 == 0 ? pieces[random() % pieces.size()] : (*item.words)[random() % item.words->size()].word;
        if (random() % 40 == 0) text += static_cast<char>(random());
      }
      if (random() % 8 != 0) text += '\n';
    }
    ASSERT_EQ(parsed(text), wanted(text)) << round << "\n" << text;
  }
}

}  // namespace
