#include "apps/qsscan/paper.h"

#include <gtest/gtest.h>

#include "apps/qsscan/scan_wish.h"

namespace {

using namespace qsscan;
using namespace orvalle_scan_api;

TEST(Paper, NamesAreFoundInAnyCase) {
  ASSERT_TRUE(findPaper("A4"));
  EXPECT_EQ(findPaper("A4")->type, PAPERTYPE_A4);
  EXPECT_DOUBLE_EQ(findPaper("Letter")->widthMm, 215.9);
  EXPECT_DOUBLE_EQ(findPaper("long")->heightMm, 0);
}

TEST(Paper, ASizeInMillimetresIsCustomPaper) {
  const auto paper = findPaper("148x210.5");
  ASSERT_TRUE(paper);
  EXPECT_EQ(paper->type, PAPERTYPE_CUSTOM);
  EXPECT_DOUBLE_EQ(paper->widthMm, 148);
  EXPECT_DOUBLE_EQ(paper->heightMm, 210.5);
}

TEST(Paper, EverythingElseIsUnknown) {
  for (const char* name : {"", "a", "a44", "x", "10x", "x10", "10x20x30", "10x-20", "0x10", "10x0.5", "nanx10",
                           "infx10", "10x20mm", "1e9x1"}) {
    EXPECT_FALSE(findPaper(name)) << name;
  }
}

TEST(Paper, EachNameIsInTheTableOnce) {
  for (const PaperRow& row : paperTable()) {
    for (const PaperRow& other : paperTable()) {
      if (&row == &other) continue;
      EXPECT_STRNE(row.name, other.name);
      EXPECT_NE(row.paper.type, other.paper.type) << row.name << " and " << other.name;
    }
  }
}

TEST(Paper, LocaleTellsLetterOrA4) {
  EXPECT_STREQ(paperOfLocale("en_US.UTF-8"), "letter");
  EXPECT_STREQ(paperOfLocale("fr_CA"), "letter");
  EXPECT_STREQ(paperOfLocale("de_DE.UTF-8"), "a4");
  EXPECT_STREQ(paperOfLocale("C.UTF-8"), "a4");
  EXPECT_STREQ(paperOfLocale("en_"), "a4");
  EXPECT_STREQ(paperOfLocale(""), "a4");
}

TEST(Paper, LocaleVariablesCountInTheirOrder) {
  ::setenv("LANG", "en_US.UTF-8", 1);
  ::setenv("LC_PAPER", "de_DE.UTF-8", 1);
  ::setenv("LC_ALL", "", 1);
  EXPECT_STREQ(defaultPaperName(), "a4");
  ::setenv("LC_ALL", "es_MX", 1);
  EXPECT_STREQ(defaultPaperName(), "letter");
  ::unsetenv("LC_ALL");
  ::unsetenv("LC_PAPER");
  EXPECT_STREQ(defaultPaperName(), "letter");
}

TEST(ScanWish, UsualSpellingsOfModesAreKnown) {
  EXPECT_EQ(findMode("Color"), COLORTYPE_COLOR24BIT);
  EXPECT_EQ(findMode("Gray"), COLORTYPE_TRUEGRAY);
  EXPECT_EQ(findMode("Lineart"), COLORTYPE_BLACKANDWHITE);
  EXPECT_EQ(findMode("Black & White"), COLORTYPE_BLACKANDWHITE);
  EXPECT_EQ(findMode("Halftone"), COLORTYPE_ERRORDIFFUSION);
  EXPECT_EQ(findMode("auto"), COLORTYPE_AUTO);
  EXPECT_FALSE(findMode("256"));
  EXPECT_FALSE(findMode(""));
}

TEST(ScanWish, UsualSpellingsOfSourcesAreKnown) {
  EXPECT_EQ(findSource("Flatbed"), Source::kFlatbed);
  EXPECT_EQ(findSource("ADF"), Source::kFeeder);
  EXPECT_EQ(findSource("Automatic Document Feeder"), Source::kFeeder);
  EXPECT_EQ(findSource("ADF Duplex"), Source::kFeederDuplex);
  EXPECT_EQ(findSource("auto"), Source::kAuto);
  EXPECT_FALSE(findSource("scanner"));
}

TEST(Paper, AWidthMayBeOfLongPaper) {
  for (const char* name : {"100xlong", "100xLONG"}) {
    const auto paper = findPaper(name);
    ASSERT_TRUE(paper) << name;
    EXPECT_EQ(paper->type, PAPERTYPE_CUSTOM);
    EXPECT_EQ(paper->widthMm, 100);
    EXPECT_EQ(paper->heightMm, 0);
  }
  EXPECT_FALSE(findPaper("longx100"));
  EXPECT_FALSE(findPaper("xlong"));
}

TEST(ScanWish, EachModeNameIsFoundAgain) {
  for (const COLORTYPE mode :
       {COLORTYPE_AUTO, COLORTYPE_BLACKANDWHITE, COLORTYPE_ERRORDIFFUSION, COLORTYPE_TRUEGRAY, COLORTYPE_COLOR24BIT}) {
    EXPECT_EQ(findMode(modeName(mode)), mode);
  }
}

}  // namespace
