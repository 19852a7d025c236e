#include "protocol/frame.h"

#include <gtest/gtest.h>

#include "host.h"

namespace vscan {
namespace {

using test::bytesOf;
using test::settingsFrame;

std::optional<Command> feedAll(FrameReader& reader, const std::string& bytes) {
  reader.feed(bytesOf(bytes));
  return reader.next();
}

TEST(FrameReader, NoProperPrefixOfACommandIsACommand) {
  const std::string whole = settingsFrame();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    FrameReader reader;
    EXPECT_FALSE(feedAll(reader, whole.substr(0, length))) << length;
  }
}

TEST(FrameReader, ACommandThatComesByteByByteComesWhole) {
  const std::string whole = settingsFrame();
  FrameReader reader;
  for (std::size_t i = 0; i + 1 < whole.size(); ++i) EXPECT_FALSE(feedAll(reader, whole.substr(i, 1)));
  const auto command = feedAll(reader, whole.substr(whole.size() - 1));
  ASSERT_TRUE(command);
  const auto& frame = std::get<Frame>(*command);
  EXPECT_EQ(frame.mnemonic, "SSP");
  EXPECT_EQ(frame.lines.size(), 28u);
  EXPECT_EQ(frame.bytes, bytesOf(whole));
}

TEST(FrameReader, TwoCommandsInOneReadComeOneAfterTheOther) {
  FrameReader reader;
  const auto first = feedAll(reader, "\x1BQ\n\x80\x1BQDI\n\x80");
  const auto second = reader.next();
  ASSERT_TRUE(first && second);
  EXPECT_EQ(std::get<Frame>(*first).mnemonic, "Q");
  EXPECT_EQ(std::get<Frame>(*second).mnemonic, "QDI");
  EXPECT_FALSE(reader.next());
}

TEST(FrameReader, AValueMayHoldAnEqualsSign) {
  FrameReader reader;
  const auto command = feedAll(reader, "\x1BSSP\nUSER=a=b\n\x80");
  ASSERT_TRUE(command);
  EXPECT_EQ(std::get<Frame>(*command).lines.at(0).value, "a=b");
}

TEST(FrameReader, TheEndByteInsideACharacterOfANameEndsNothing) {
  FrameReader reader;
  const std::string name = "\xC3\x80 \xE2\x82\x80 \xE4\xB8\x80\x7A\xC3\x80";  // A grave, subscript zero, one
  const auto command = feedAll(reader, "\x1BSSP\nUSER=" + name + "\n\x80");
  ASSERT_TRUE(command);
  ASSERT_TRUE(std::holds_alternative<Frame>(*command));
  EXPECT_EQ(std::get<Frame>(*command).lines.at(0).value, name);
  EXPECT_EQ(reader.pendingBytes(), 0u);
}

TEST(FrameReader, ALineOfOneWordHasNoKey) {
  FrameReader reader;
  const auto command = feedAll(reader,
                               "\x1B"
                               "D\nADF\n\x80");
  ASSERT_TRUE(command);
  EXPECT_EQ(std::get<Frame>(*command).lines.at(0).key, "");
  EXPECT_EQ(std::get<Frame>(*command).lines.at(0).value, "ADF");
}

TEST(FrameReader, WhatIsNoCommandIsHandedOutWithItsBytes) {
  const struct {
    const char* name;
    std::string bytes;
  } rows[] = {
      {"no escape byte", "Q\n\x80"},
      {"no line feed behind the name", "\x1BQ\x80"},
      {"nothing at all", "\x1B\x80"},
      {"an empty name", "\x1B\n\x80"},
      {"a small letter in the name", "\x1BQdi\n\x80"},
      {"a line with neither an equals sign nor a word", "\x1BSSP\nos x\n\x80"},
      {"an empty line", "\x1BSSP\n\n\x80"},
      {"a line without a key", "\x1BSSP\n=MAC\n\x80"},
      {"a last line without a line feed", "\x1BSSP\nOS=MAC\x80"},
      {"a carriage return", "\x1BQ\r\n\x80"},
  };
  for (const auto& row : rows) {
    FrameReader reader;
    const auto command = feedAll(reader, row.bytes);
    ASSERT_TRUE(command) << row.name;
    ASSERT_TRUE(std::holds_alternative<BadFrame>(*command)) << row.name;
    EXPECT_EQ(std::get<BadFrame>(*command).bytes, bytesOf(row.bytes)) << row.name;
    EXPECT_FALSE(std::get<BadFrame>(*command).sentence.empty()) << row.name;
  }
}

TEST(FrameReader, AfterGarbageTheNextCommandIsFoundAgain) {
  FrameReader reader;
  const auto garbage = feedAll(reader, "GET / HTTP/1.1\x80\x1BQ\n\x80");
  ASSERT_TRUE(garbage && std::holds_alternative<BadFrame>(*garbage));
  const auto command = reader.next();
  ASSERT_TRUE(command && std::holds_alternative<Frame>(*command));
}

TEST(FrameReader, GarbageWithoutAnEndDoesNotPileUp) {
  FrameReader reader;
  const auto garbage = feedAll(reader, "GET / HTTP/1.1\r\n");
  ASSERT_TRUE(garbage && std::holds_alternative<BadFrame>(*garbage));
  EXPECT_EQ(reader.pendingBytes(), 0u);
}

TEST(FrameReader, ACommandOfTheGreatestLengthPassesAndOneByteMoreDoesNot) {
  const std::string head = "\x1BSSP\nUSER=";
  const std::string tail = "\n\x80";
  for (const std::size_t extra : {0u, 1u}) {
    const std::size_t fill = FrameReader::kMaxFrameBytes - head.size() - tail.size() + extra;
    FrameReader reader;
    const auto command = feedAll(reader, head + std::string(fill, 'x') + tail);
    ASSERT_TRUE(command);
    EXPECT_EQ(std::holds_alternative<Frame>(*command), extra == 0);
  }
}

TEST(FrameReader, ACommandThatNeverEndsIsGivenUp) {
  FrameReader reader;
  const auto command = feedAll(reader, "\x1BSSP\nUSER=" + std::string(FrameReader::kMaxFrameBytes, 'x'));
  ASSERT_TRUE(command && std::holds_alternative<BadFrame>(*command));
  EXPECT_EQ(reader.pendingBytes(), 0u);
}

}  // namespace
}  // namespace vscan
