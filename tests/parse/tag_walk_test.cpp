// The header of a tag; the walk itself is tested with the bodies of ParseCmdRes_v2_test.
#include "parse/tag_walk.h"

#include <gtest/gtest.h>

using namespace orvalle_scan_api;

TEST(tag_walk, ATagHeaderIsReadAndPassed) {
  unsigned char bytes[] = {0x03, 0x81, 0x02, 0x90, 0x32};
  unsigned char* cursor = bytes;
  unsigned short length = 7;
  EXPECT_EQ(GetTagID(&length, &cursor), 0x8103);
  EXPECT_EQ(length, 0x9002);
  EXPECT_EQ(cursor, bytes + 4);
  EXPECT_EQ(GetTagID(nullptr, &cursor), 0);
  EXPECT_EQ(cursor, bytes + 4);
  unsigned char* nowhere = nullptr;
  EXPECT_EQ(GetTagID(&length, &nowhere), 0);
  EXPECT_EQ(GetTagID(&length, nullptr), 0);
  EXPECT_EQ(length, 0x9002);
}
