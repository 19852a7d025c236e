#include "device/profile.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/failure.h"

namespace vscan {
namespace {

std::string failureOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Failure& failure) {
    return failure.what();
  }
  return "";
}

constexpr const char* kSmall = R"({"capability": {"paperSource": 2, "opticalResolution": [600, 600],
                                                  "scanSizeMax": [2159, 2972]}})";

TEST(Profile, TheOfficeScannerHasABedAndADuplexFeeder) {
  const Profile profile = loadProfile(QS_PROFILES "/office.json");
  EXPECT_EQ(profile.name, "office");
  EXPECT_TRUE(profile.abilities().hasFlatbed);
  EXPECT_TRUE(profile.abilities().hasFeeder);
  EXPECT_TRUE(profile.abilities().hasDuplex);
  EXPECT_GE(profile.firstBodyByte, 0x10);
  EXPECT_LE(profile.firstBodyByte, 0x7F);
  EXPECT_EQ(profile.capability.at("protocolVersion"), 0x0102);
}

TEST(Profile, AProfileSetsOnlyWhatItNames) {
  const Profile profile = parseProfile(kSmall, "small");
  EXPECT_TRUE(profile.abilities().hasFlatbed);
  EXPECT_FALSE(profile.abilities().hasFeeder);
  EXPECT_EQ(profile.capability.at("opticalResolution", 1), 600);
  EXPECT_EQ(profile.capability.at("opticalResolution", 2), 0);
  EXPECT_EQ(profile.threshold, 128);
}

TEST(Profile, WhatIsWrongIsSaidInASentence) {
  const struct {
    const char* json;
    const char* words;
  } rows[] = {
      {"{", "parse error"},
      {"[]", "a profile is a JSON object"},
      {R"({"capability": {}})", "paperSource names neither"},
      {R"({"generation": 3})", "generation is 1 or 2"},
      {R"({"generation": 1, "capability": {"version": 16}})", "version 16 tells hosts"},
      {R"({"generation": 1, "capability": {"flatbedMaxX": 0, "adfMaxX": 0}})", "neither bed nor feeder"},
      {R"({"generation": 1, "capability": {"adfOpticalY": 10}})",
       "the optical resolution of one side in the feeder, y, has to be"},
      {R"({"generation": 1, "capability": {"paperSource": 1}})", "there is no key \"paperSource\""},
      {R"({"generation": 1, "blockBytes": 255})", "blockBytes lies between 1 and 254"},
      {R"({"nonsense": 1})", "there is no key \"nonsense\""},
      {R"({"firstBodyByte": 128})", "firstBodyByte lies between 16 and 127"},
      {R"({"capability": {"duplex": "two"}})", "duplex needs a whole number"},
      {R"({"capability": {"duplex": "0x"}})", "duplex needs a whole number"},
      {R"({"capability": {"duplex": 1.5}})", "duplex needs a whole number"},
      {R"({"capability": {"duplex": "0x-1"}})", "duplex needs a whole number"},
      {R"({"capability": {"marginSize": 18446744073709551615}})", "marginSize needs a whole number"},
      {R"({"capability": {"duplex": {}}})", "duplex needs a whole number, such as 258 or \"0x0102\", not {}"},
      {"{\"name\": \"\xFF\"}", "parse error"},
      {R"({"capability": {"duplex": 300}})", "duplex holds values from 0 to 255, not 300"},
      {R"({"capability": {"duplex": [1, 2]}})", "duplex has 1 place(s)"},
      {R"({"capability": {"modelName": 5}})", "modelName needs a text"},
      {R"({"capability": {"paperSource": 2, "scanSizeMax": [1, 1]}})",
       "the optical resolution of the bed, x, has to be at least minResolution"},
  };
  for (const auto& row : rows) {
    const std::string words = failureOf([&] { parseProfile(row.json, "file.json"); });
    EXPECT_NE(words.find("profile file.json: "), std::string::npos) << row.json << ": " << words;
    EXPECT_NE(words.find(row.words), std::string::npos) << row.json << ": " << words;
  }
}

TEST(Profile, AnOverrideSetsOneValueOrAWholeField) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  overrideProfile(profile, "compressType[2]=3");
  EXPECT_EQ(profile.capability.at("compressType", 2), 3);
  EXPECT_EQ(profile.capability.at("compressType", 4), 7);
}

TEST(Profile, OverridesTakeTheFormsOfTheFile) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  overrideProfile(profile, "compressType=[1,2]");
  EXPECT_EQ(profile.capability.at("compressType", 0), 1);
  EXPECT_EQ(profile.capability.at("compressType", 1), 2);
  overrideProfile(profile, "colorType=0x04");
  EXPECT_EQ(profile.capability.at("colorType"), 4);
  overrideProfile(profile, "modelName=42");
  EXPECT_EQ(profile.capability.modelName(), "42");
  overrideProfile(profile, "threshold=99");
  EXPECT_EQ(profile.threshold, 99);
}

TEST(Profile, AWrongOverrideIsSaidWithItsText) {
  Profile profile = loadProfile(QS_PROFILES "/office.json");
  for (const char* text :
       {"compressType", "compressType[9]=1", "compressType[x]=1", "compressType[]=1", "compressType[1=1", "nosuch=1",
        "paperSource=0", "duplex=256", "duplex=", "name=x", "compressType=[1,0x2]", "duplex=\xFF"}) {
    const std::string words = failureOf([&] { overrideProfile(profile, text); });
    EXPECT_NE(words.find(text), std::string::npos) << text << ": " << words;
  }
}

TEST(Profile, AFileIsToldFromAShippedName) {
  EXPECT_EQ(findProfile("own.json"), "own.json");
  EXPECT_EQ(findProfile("./own"), "./own");
  EXPECT_EQ(findProfile("office").filename(), "office.json");
  EXPECT_NE(failureOf([] { findProfile("nosuch"); }).find("there is no profile \"nosuch\""), std::string::npos);
  EXPECT_NE(failureOf([] { loadProfile("/nonexistent/own.json"); }).find("cannot read"), std::string::npos);
}

}  // namespace
}  // namespace vscan
