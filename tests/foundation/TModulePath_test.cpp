#include "foundation/qvtcl/TModulePath.h"

#include <gtest/gtest.h>

using qvtcl::CTModulePath;
using qvtcl::CTString;

TEST(ModulePath, AnEmptyIdentifierOrFileNameGivesNothing) {
  EXPECT_EQ(CTModulePath().GenerateModuleFileName("", "a.so"), "");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(nullptr, ""), "");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(nullptr, nullptr), "");
}

TEST(ModulePath, NullAndTheDriverIdentifierNameTheFolderOfTheProgramThatHoldsTheCore) {
  const CTString path = CTModulePath().GenerateModuleFileName(nullptr, "a.so");
  EXPECT_EQ(path.GetAt(0), '/');
  EXPECT_EQ(path.Right(5), "/a.so");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName(qvtcl::kDriverIdentifier, "a.so"), path);
}

TEST(ModulePath, ALoadedObjectIsFoundByItsStemAndAnUnknownOneIsNot) {
  const CTString path = CTModulePath().GenerateModuleFileName("libc.so", "a.so");
  EXPECT_EQ(path.Right(5), "/a.so");
  EXPECT_EQ(CTModulePath().GenerateModuleFileName("libnothing", "a.so"), "");
}
