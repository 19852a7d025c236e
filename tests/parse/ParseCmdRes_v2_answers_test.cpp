// What the device says it will do (SSP), and its colour profiles (GCP).
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "parse/ParseCmdRes_v2.h"
#include "tests/parse/tag_body.h"

using namespace orvalle_scan_api;

namespace {

// A parse of an exact copy, so that a read behind the body is found out.
struct Body {
  explicit Body(const BodyBytes& source)
      : bytes(new unsigned char[source.size()]), size(static_cast<long>(source.size())) {
    std::copy(source.begin(), source.end(), bytes.get());
  }
  ACTUALSCANPARAM actual() { return CParseCmdRes_v2().ParseActualParameterResponse(bytes.get(), size); }
  ICCPROFIE profiles() { return CParseCmdRes_v2().ParsePDFaColorProfileResponse(bytes.get(), size); }

  std::unique_ptr<unsigned char[]> bytes;
  long size;
};

// All fields as one line.
std::string told(const ACTUALSCANPARAM& a) {
  std::string text;
  for (const std::uint32_t value : {static_cast<std::uint32_t>(a.paperSource), a.resolution.x, a.resolution.y,
                                    a.maxSizeMm.x, a.maxSizeMm.y, a.maxSizePixel.x, a.maxSizePixel.y}) {
    text += std::to_string(value) + " ";
  }
  for (const std::uint32_t value : a.reserved) text += std::to_string(value);
  return text;
}
const std::string kZero = "0 0 0 0 0 0 0 0000000";

BodyBytes prefix(const BodyBytes& bytes, std::size_t size) {
  return BodyBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}

TagBody wholeAnswer() {
  return TagBody()
      .tag(0x2001, {1, 0xEE})
      .tag(0x2002, u16s({300, 0xFFFE}))
      .tag(0x2003, {0x11, 0x22, 0x33, 0x84, 0x55, 0x66, 0x77, 0x88});
}

void expectNoProfiles(const ICCPROFIE& p) {
  EXPECT_EQ(p.colorProfile, nullptr);
  EXPECT_EQ(p.colorProfileSize, 0);
  EXPECT_EQ(p.grayProfile, nullptr);
  EXPECT_EQ(p.grayProfileSize, 0);
}

}  // namespace

// ---- actual parameters

TEST(ParseCmdRes_v2_parameters, AWholeAnswer) {
  EXPECT_EQ(told(Body(wholeAnswer().end().bytes).actual()), "2 300 65534 0 0 2217943569 2289526357 0000000");
}

TEST(ParseCmdRes_v2_parameters, EverySourceByte) {
  for (int source = 0; source < 256; ++source) {
    Body body(TagBody().tag(0x2001, {static_cast<unsigned char>(source), 0}).end().bytes);
    EXPECT_EQ(body.actual().paperSource, source == 1 ? 2 : source == 2 ? 1 : 3) << source;
    _SSPCMDRESPONSE response{};
    response.paperSource = static_cast<std::uint8_t>(source);
    EXPECT_EQ(CParseCmdRes_v2().GetPaperSourceSelect(&response), source == 1 ? 2 : source == 2 ? 1 : 3) << source;
  }
}

TEST(ParseCmdRes_v2_parameters, ATerminatorAloneHasTheThirdSource) {
  EXPECT_EQ(told(Body(TagBody().end().bytes).actual()), "3 0 0 0 0 0 0 0000000");
}

TEST(ParseCmdRes_v2_parameters, TheWalkKeepsTheDevicesValues) {
  Body body(wholeAnswer().end().bytes);
  CParseCmdRes_v2 parser;
  const _SSPCMDRESPONSE r = parser.GetSSPcommandResponse(body.bytes.get(), body.size);
  EXPECT_TRUE(parser.sspResponseComplete);
  EXPECT_FALSE(parser.qdiResponseComplete || parser.gkpResponseComplete || parser.gcpResponseComplete);
  EXPECT_EQ(r.paperSource, 1);
  EXPECT_EQ(r.kept2001, 0xEE);
  EXPECT_EQ(r.resolutionX, 300);
  EXPECT_EQ(r.resolutionY, 0xFFFE);
  EXPECT_EQ(r.pixelWidth, 0x84332211u);
  EXPECT_EQ(r.pixelHeight, 0x88776655u);
  EXPECT_EQ(told(parser.GetParseActualParameterResponse(&r)), told(body.actual()));
}

TEST(ParseCmdRes_v2_parameters, WithoutATerminatorThereIsNothing) {
  const BodyBytes whole = wholeAnswer().end().bytes;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // Two bytes of the terminator are enough; its length then reads as 0.
    const bool terminated = size + 2 >= whole.size();
    EXPECT_EQ(told(Body(prefix(whole, size)).actual()) != kZero, terminated) << size;
  }
  EXPECT_EQ(told(Body(wholeAnswer().end().tag(0x2004, {1, 2}).bytes).actual()), kZero);
  EXPECT_NE(told(Body(wholeAnswer().tag(0x2004, {1, 2}).end().bytes).actual()), kZero);
  EXPECT_EQ(told(CParseCmdRes_v2().ParseActualParameterResponse(nullptr, 9)), kZero);
}

TEST(ParseCmdRes_v2_parameters, FixedFieldsAreReadWhateverTheDeclaredLength) {
  for (const int declared : {0, 1, 3, 4, 9, 20}) {
    BodyBytes resolution = u16s({200, 100}), size = {1, 0, 0, 0, 2, 0, 0, 0}, source = {2, 0};
    for (BodyBytes* value : {&resolution, &size, &source}) {
      value->resize(std::max(value->size(), static_cast<std::size_t>(declared)));
    }
    Body body(TagBody()
                  .tagDeclaring(0x2002, declared, resolution)
                  .tagDeclaring(0x2003, declared, size)
                  .tagDeclaring(0x2001, declared, source)
                  .end()
                  .bytes);
    EXPECT_EQ(told(body.actual()), "1 200 100 0 0 1 2 0000000") << declared;
  }
}

TEST(ParseCmdRes_v2_parameters, ATruncatedTagBehindTheTerminatorReadsAsZeroPadded) {
  Body body(TagBody().end().tagDeclaring(0x2003, 8, {0x10, 0x20, 0, 0, 0x30}).bytes);
  EXPECT_EQ(told(body.actual()), "3 0 0 0 0 8208 48 0000000");
}

// ---- colour profiles

TEST(ParseCmdRes_v2_profiles, BothPointIntoTheBody) {
  Body body(TagBody().tag(0x3101, "colour").tag(0x3102, "grey").end().bytes);
  const ICCPROFIE p = body.profiles();
  EXPECT_EQ(p.colorProfile, body.bytes.get() + 4);
  EXPECT_EQ(p.colorProfileSize, 6);
  EXPECT_EQ(p.grayProfile, body.bytes.get() + 14);
  EXPECT_EQ(p.grayProfileSize, 4);
  const ICCPROFIE copy = CParseCmdRes_v2().GetParseColorProfileResponse(&p);
  EXPECT_EQ(copy.colorProfile, p.colorProfile);
  EXPECT_EQ(copy.colorProfileSize, 6);
  EXPECT_EQ(copy.grayProfile, p.grayProfile);
  EXPECT_EQ(copy.grayProfileSize, 4);
}

TEST(ParseCmdRes_v2_profiles, AnEmptyProfileHasAnAddressAndNoBytes) {
  Body body(TagBody().tag(0x3101, BodyBytes{}).tag(0x3102, "grey").end().bytes);
  const ICCPROFIE p = body.profiles();
  EXPECT_EQ(p.colorProfile, body.bytes.get() + 4);
  EXPECT_EQ(p.colorProfileSize, 0);
  EXPECT_EQ(p.grayProfile, body.bytes.get() + 8);
  EXPECT_EQ(p.grayProfileSize, 4);
}

TEST(ParseCmdRes_v2_profiles, AGreyProfileAloneLeavesTheColourPairNull) {
  Body body(TagBody().tag(0x3102, "grey").end().bytes);
  const ICCPROFIE p = body.profiles();
  EXPECT_EQ(p.colorProfile, nullptr);
  EXPECT_EQ(p.colorProfileSize, 0);
  EXPECT_EQ(p.grayProfileSize, 4);
}

TEST(ParseCmdRes_v2_profiles, TheLongestProfile) {
  Body body(TagBody().tag(0x3101, BodyBytes(65535, 7)).end().bytes);
  EXPECT_EQ(body.profiles().colorProfileSize, 65535);
}

TEST(ParseCmdRes_v2_profiles, AProfileIsClippedToTheBody) {
  for (int present = 0; present < 10; ++present) {
    Body body(TagBody().end().tagDeclaring(0x3101, 10, BodyBytes(static_cast<std::size_t>(present), 1)).bytes);
    const ICCPROFIE p = body.profiles();
    EXPECT_EQ(p.colorProfile, body.bytes.get() + 8) << present;
    EXPECT_EQ(p.colorProfileSize, present);
  }
}

TEST(ParseCmdRes_v2_profiles, AHeaderCutShortStillPointsNowhereOutside) {
  const BodyBytes whole = TagBody().end().tag(0x3102, "grey").bytes;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    Body body(prefix(whole, size));
    const ICCPROFIE p = body.profiles();
    if (p.grayProfile == nullptr) {
      EXPECT_EQ(p.grayProfileSize, 0) << size;
      continue;
    }
    EXPECT_GE(p.grayProfile, body.bytes.get()) << size;
    EXPECT_GE(p.grayProfileSize, 0) << size;
    EXPECT_LE(p.grayProfile + p.grayProfileSize, body.bytes.get() + size) << size;
  }
}

TEST(ParseCmdRes_v2_profiles, WithoutATerminatorThereIsNothing) {
  expectNoProfiles(Body(TagBody().tag(0x3101, "colour").bytes).profiles());
  expectNoProfiles(Body(TagBody().tag(0x3101, "colour").end().tag(0x3103, {1}).bytes).profiles());
  expectNoProfiles(Body({}).profiles());
  expectNoProfiles(CParseCmdRes_v2().ParsePDFaColorProfileResponse(nullptr, 9));
  Body good(TagBody().tag(0x3103, {1}).tag(0x3101, "colour").end().bytes);
  EXPECT_EQ(good.profiles().colorProfileSize, 6);
}
