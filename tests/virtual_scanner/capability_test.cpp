#include "protocol/capability.h"

#include <gtest/gtest.h>

#include "device/profile.h"
#include "support/failure.h"

namespace vscan {
namespace {

// What the office profile says of itself, spelled by hand: tag, length, value.
const Bytes kOfficeBody = {
    0x01, 0x00, 0x02, 0x00, 0x02, 0x01,  // protocol version 0x0102
    0x01, 0x01, 0x02, 0x00, 0x01, 0x00,  // category
    0x02, 0x01, 0x16, 0x00,              // model name, 22 bytes
    'V',  'i',  'r',  't',  'u',  'a',  'l',  ' ',  'O',  'f',  'f',  'i',  'c',  'e',  ' ',  'S',
    'c',  'a',  'n',  'n',  'e',  'r',  0x01, 0x02, 0x02, 0x00, 0x0F, 0x00,  // push scan: four buttons
    0x02, 0x02, 0x02, 0x00, 0x00, 0x02,  // no continuous scan, settings of the panel
    0x03, 0x02, 0x02, 0x00, 0x00, 0x00,  // device function
    0x04, 0x02, 0x02, 0x00, 0x00, 0x00,  //
    0x01, 0x03, 0x02, 0x00, 0x17, 0x00,  // mono, error diffusion, grey, 24-bit colour
    0x02, 0x03, 0x02, 0x00, 0x03, 0x01,  // feeder and bed, both sides
    0x03, 0x03, 0x02, 0x00, 0x32, 0x00,  // 50 sheets
    0x04, 0x03, 0x0C, 0x00, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02, 0x58, 0x02,  // 600 dpi
    0x05, 0x03, 0x0C, 0x00, 0x6F, 0x08, 0x9C, 0x0B, 0x6F, 0x08, 0xE4, 0x0D, 0x6F, 0x08, 0xE4, 0x0D,  // largest
    0x06, 0x03, 0x04, 0x00, 0xB6, 0x21, 0xB6, 0x21,                                                  // long paper
    0x07, 0x03, 0x0C, 0x00, 0x0A, 0x00, 0x0A, 0x00, 0xFC, 0x01, 0xFC, 0x01, 0xFC, 0x01, 0xFC, 0x01,  // smallest
    0x08, 0x03, 0x0C, 0x00, 0x6F, 0x08, 0x9C, 0x0B, 0x6F, 0x08, 0xE4, 0x0D, 0x6F, 0x08, 0xE4, 0x0D,  // documents
    0x09, 0x03, 0x20, 0x00,                                                                          // margins
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  //
    0x0A, 0x03, 0x40, 0x00,                                                                       // adjustment
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  //
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  //
    0x0B, 0x03, 0x06, 0x00, 0x01, 0x01, 0x02, 0x01, 0x00, 0x00,  // bed left and top; feeder centred and top
    0x0C, 0x03, 0x02, 0x00, 0x00, 0x00,                          // card orientation
    0x0D, 0x03, 0x02, 0x00, 0x03, 0x00,                          // one paper, page numbers
    0x0E, 0x03, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00,              // over-scan
    0x0F, 0x03, 0x02, 0x00, 0x07, 0x00,                          // cancel: all, one, none
    0x10, 0x03, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00,              // errors
    0x11, 0x03, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // colour tape
    0x01, 0x04, 0x06, 0x00, 0x03, 0x03, 0x07, 0x00, 0x07, 0x00,  // compressions
    0x02, 0x04, 0x02, 0x00, 0x64, 0x1F,                          // JPEG
    0x03, 0x04, 0x04, 0x00, 0x01, 0x01, 0xFF, 0x00,              // threshold by hand, 1 to 255
    0x04, 0x04, 0x02, 0x00, 0x00, 0x00,                          // special documents
    0x05, 0x04, 0x02, 0x00, 0x01, 0x00,                          // colour profiles
    0x06, 0x04, 0x02, 0x00, 0x00, 0x00,                          // gamma
    0x07, 0x04, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // moire
    0x08, 0x04, 0x02, 0x00, 0x00, 0x00,                          //
    0x01, 0x05, 0x02, 0x00, 0x00, 0x00,                          //
    0x02, 0x05, 0x0A, 0x00, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  // automatic crop
    0x03, 0x05, 0x0A, 0x00, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  //
    0x04, 0x05, 0x04, 0x00, 0x00, 0x00, 0x01, 0x00,                                   // backs only
    0x05, 0x05, 0x10, 0x00, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0,    0,    0,    0,                                                                          // carrier sheet
    0x06, 0x05, 0x0C, 0x00, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  // plastic card
    0x07, 0x05, 0x02, 0x00, 0x01, 0x00,                          // double feed, no levels
    0x08, 0x05, 0x06, 0x00, 0xFF, 0xFF, 0xFF, 0x00, 0xFF, 0x00,  // background
    0x09, 0x05, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // bleed-through
    0x0A, 0x05, 0x02, 0x00, 0x07, 0x00,                          // automatic size on all three paths
    0x0B, 0x05, 0x02, 0x00, 0x07, 0x00,                          // deskew on all three paths
    0x0C, 0x05, 0x02, 0x00, 0x05, 0x05,                          // blank pages, five levels
    0x0D, 0x05, 0x04, 0x00, 0x01, 0x05, 0x00, 0x00,              // automatic colour, five levels
    0x0E, 0x05, 0x02, 0x00, 0x00, 0x00,                          // resolution detection
    0x0F, 0x05, 0x0A, 0x00, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,  // quiet scan
    0xF0, 0xF0, 0x00, 0x00,
};

TEST(Capability, TheOfficeProfileSaysWhatIsSpelledHere) {
  EXPECT_EQ(loadProfile(QS_PROFILES "/office.json").capability.body(), kOfficeBody);
}

TEST(Capability, AFieldGoesOutLowestByteFirstInItsPlace) {
  Capability capability(Generation::Second);
  const Bytes before = capability.body();
  capability.set("marginSize", 1, -2);
  const Bytes after = capability.body();
  ASSERT_EQ(before.size(), after.size());
  std::vector<std::size_t> changed;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (before[i] != after[i]) changed.push_back(i);
  }
  ASSERT_EQ(changed.size(), 2u);
  EXPECT_EQ(after[changed[0]], 0xFE);
  EXPECT_EQ(after[changed[1]], 0xFF);
}

TEST(Capability, EachValueHasToFitItsPlace) {
  const struct {
    const char* key;
    std::size_t place;
    std::int64_t value;
    bool fits;
  } rows[] = {
      {"duplex", 0, 255, true},
      {"duplex", 0, 256, false},
      {"duplex", 0, -1, false},
      {"duplex", 1, 0, false},
      {"adfStackCapacity", 0, 65535, true},
      {"adfStackCapacity", 0, 65536, false},
      {"marginSize", 15, -32768, true},
      {"marginSize", 15, -32769, false},
      {"marginSize", 15, 32768, false},
      {"marginSize", 16, 0, false},
      {"noSuchField", 0, 0, false},
  };
  for (const auto& row : rows) {
    Capability capability(Generation::Second);
    if (row.fits) {
      EXPECT_NO_THROW(capability.set(row.key, row.place, row.value)) << row.key;
      EXPECT_EQ(capability.at(row.key, row.place), row.value) << row.key;
    } else {
      EXPECT_THROW(capability.set(row.key, row.place, row.value), Failure) << row.key << " " << row.value;
    }
  }
}

TEST(Capability, AModelNameMayHave128Bytes) {
  Capability capability(Generation::Second);
  EXPECT_NO_THROW(capability.setModelName(std::string(128, 'x')));
  EXPECT_THROW(capability.setModelName(std::string(129, 'x')), Failure);
}

}  // namespace
}  // namespace vscan
