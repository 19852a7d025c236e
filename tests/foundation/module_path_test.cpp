#include <gtest/gtest.h>

#include "foundation/qvtcl/TModulePath.h"

using qvtcl::CTModulePath;

TEST(ModulePath, AnEmptyIdentifierOrFileNameGivesNothing) {
  EXPECT_EQ(CTModulePath().GenerateModuleFileName("", "a.so"), "");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(nullptr, ""), "");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(nullptr, nullptr), "");
}

TEST(ModulePath, NullAndTheDriverIdentifierNameTheFolderOfTheProgramThatHoldsTheCore) {
  const std::string path = CTModulePath().GenerateModuleFileName(nullptr, "a.so");
  EXPECT_EQ(path.front(), '/');
  EXPECT_EQ(path.substr(path.size() - 5), "/a.so");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(qvtcl::kDriverIdentifier, "a.so"), path);
}

TEST(ModulePath, ALoadedObjectIsFoundByItsStemAndAnUnknownOneIsNot) {
  const std::string path = CTModulePath().GenerateModuleFileName("libc.so", "a.so");
  EXPECT_EQ(path.substr(path.size() - 5), "/a.so");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName("libnothing", "a.so"), "");
}
