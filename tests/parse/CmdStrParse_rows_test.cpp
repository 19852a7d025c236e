// Both ways to cut a value out of a text, against plain searches in a standard string, over every short text there is.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "parse/CmdStrParse.h"

using orvalle_scan_api::CCmdStrParse;
using namespace std::string_literals;

namespace {

// Every text of these letters up to a length, the empty one included.
std::vector<std::string> allTexts(const std::string& letters, std::size_t longest) {
  std::vector<std::string> texts = {""};
  for (std::size_t from = 0, length = 1; length <= longest; ++length) {
    const std::size_t to = texts.size();
    for (; from < to; ++from) {
      for (const char letter : letters) texts.push_back(texts[from] + letter);
    }
  }
  return texts;
}

std::string between(const std::string& source, const std::string& begin, const std::string& end) {
  return CCmdStrParse().GetStrPart(source.c_str(), begin.c_str(), end.c_str()).C_str();
}
std::string token(const std::string& source, const std::string& delimiter, int index) {
  return CCmdStrParse().GetStrPart(source.c_str(), delimiter.c_str(), index).C_str();
}
int count(const std::string& source, const std::string& delimiter) {
  return CCmdStrParse().GetTokenCount(source.c_str(), delimiter.c_str());
}

std::string betweenAgain(const std::string& source, const std::string& begin, const std::string& end) {
  const std::size_t at = source.find(begin);
  if (at == std::string::npos) return "";
  const std::string rest = source.substr(at + begin.size());
  return rest.substr(0, rest.find(end));
}
std::string tokenAgain(const std::string& source, const std::string& delimiter, int index) {
  const std::size_t width = delimiter.size();
  std::size_t from = width - 1;  // where the next search begins
  for (int step = 1; step < index; ++step) {
    const std::size_t hit = source.find(delimiter, from);
    if (hit == std::string::npos) return "";
    from = hit + width;
  }
  const std::size_t end = source.find(delimiter, from);
  const std::size_t begin = index >= 2 ? from : 0;
  return end == std::string::npos ? source.substr(begin) : source.substr(begin, end - begin);
}
int countAgain(const std::string& source, const std::string& delimiter) {
  int hits = 0;
  for (std::size_t at = 0; at < source.size(); ++at) hits += source.compare(at, delimiter.size(), delimiter) == 0;
  return hits;
}

TEST(CmdStrParseRows, EveryShortTextBetweenEveryPairOfMarkers) {
  const auto markers = allTexts("a=", 2);
  for (const std::string& source : allTexts("a=;", 6)) {
    for (const std::string& begin : markers) {
      if (begin.empty()) continue;
      for (const std::string& end : {std::string(";"), std::string("a"), std::string("=;"), std::string("==")}) {
        ASSERT_EQ(between(source, begin, end), betweenAgain(source, begin, end))
            << source << " " << begin << " " << end;
      }
    }
  }
}

TEST(CmdStrParseRows, EveryTokenOfEveryShortText) {
  for (const std::string& source : allTexts("a,;", 7)) {
    for (const std::string& delimiter : {","s, ",,"s, ",;"s, ";,;"s, ",,,,,,,,"s}) {
      for (const int index : {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 9, INT_MAX}) {
        ASSERT_EQ(token(source, delimiter, index), tokenAgain(source, delimiter, index))
            << source << " " << delimiter << " " << index;
      }
    }
  }
}

TEST(CmdStrParseRows, EveryDelimiterIsCountedOverlappingOrNot) {
  for (const std::string& source : allTexts("a,", 8)) {
    for (const std::string& delimiter : {","s, ",,"s, "a,a"s, ",,,"s}) {
      ASSERT_EQ(count(source, delimiter), countAgain(source, delimiter)) << source << " " << delimiter;
    }
  }
  EXPECT_EQ(count("aaa", "aa"), 2);
  EXPECT_EQ(count("a,b,c", ","), 2) << "three tokens";
}

TEST(CmdStrParseRows, TheTextsOfTheDevice) {
  EXPECT_EQ(between("F=IMAGE\nD=DUP", "D=", "\n"), "DUP");
  EXPECT_EQ(between("DF=1\nF=2", "F=", "\n"), "1");
  EXPECT_EQ(between("F=IMAGE", "F=", "\n"), "IMAGE");
  EXPECT_EQ(between("F=IMAGE", "D=", "\n"), "");
  EXPECT_EQ(token("a,b,c", ",", 3), "c");
  EXPECT_EQ(token("a,b", ",", 3), "");
  EXPECT_EQ(token("a,b", ",", 0), "a");
  EXPECT_EQ(token("a,b", "", 1), "");
}

}  // namespace
