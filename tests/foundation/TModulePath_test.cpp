#include "foundation/qvtcl/TModulePath.h"

#include <dlfcn.h>
#include <gnu/libc-version.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using qvtcl::CTModulePath;
using qvtcl::CTString;

namespace {

const char* const kNull = nullptr;
constexpr char kLibc[] = "libc.so";  // of "libc.so.6"

std::string programPath() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

// Where the loader says that the C library lies.
std::string libcPath() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&gnu_get_libc_version), &info) == 0) return "";
  return std::filesystem::canonical(info.dli_fname).string();
}

std::string folderOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

}  // namespace

TEST(TModulePath, ANullEmptyOrUnknownIdentifierHasNoPath) {
  CTModulePath path;
  for (const char* identifier : {kNull, "", "libnothing", "libc", "libc.so.6", "/", "com.orvalle"}) {
    EXPECT_STREQ(path.GetModuleFullPathName(identifier).C_str(), "") << (identifier == nullptr ? "null" : identifier);
    EXPECT_STREQ(path.GetModuleFullName(identifier).C_str(), "");
    EXPECT_STREQ(path.GetModuleBaseName(identifier).C_str(), "");
    EXPECT_STREQ(path.GetModulePathName(identifier).C_str(), "");
  }
}

TEST(TModulePath, TheDriverIdentifierNamesTheObjectThatHoldsTheCore) {
  CTModulePath path;
  EXPECT_STREQ(qvtcl::kDriverIdentifier, "com.orvalle.twainds");
  EXPECT_EQ(path.GetModuleFullPathName(qvtcl::kDriverIdentifier).C_str(), programPath());
  EXPECT_EQ(path.GetModuleFullName(qvtcl::kDriverIdentifier).C_str(), programPath());
  EXPECT_EQ(path.GetModulePathName(qvtcl::kDriverIdentifier).C_str(), folderOf(programPath()));
}

TEST(TModulePath, ALoadedObjectIsFoundByItsStem) {
  CTModulePath path;
  ASSERT_NE(libcPath(), "");
  EXPECT_EQ(path.GetModuleFullPathName(kLibc).C_str(), libcPath());
  EXPECT_EQ(path.GetModuleFullName(kLibc).C_str(), libcPath());
  EXPECT_EQ(path.GetModulePathName(kLibc).C_str(), folderOf(libcPath()));
}

TEST(TModulePath, TheBaseNameKeepsItsFolders) {
  CTModulePath path;
  EXPECT_EQ(path.GetModuleBaseName(kLibc).C_str(), libcPath().substr(0, libcPath().rfind('.')));
  EXPECT_EQ(programPath().find('.', programPath().rfind('/')), std::string::npos);
  EXPECT_EQ(path.GetModuleBaseName(qvtcl::kDriverIdentifier).C_str(), programPath()) << "no extension to take off";
  EXPECT_EQ(path.GetProcessBaseName().C_str(), programPath());
}

TEST(TModulePath, TheProcessIsTheProgram) {
  CTModulePath path;
  EXPECT_EQ(path.GetCurrentProcessFullPathName().C_str(), programPath());
  EXPECT_EQ(path.GetProcessFullName().C_str(), programPath());
  EXPECT_EQ(path.GetProcessPathName().C_str(), folderOf(programPath()));
}

TEST(TModulePath, AModuleLiesBesideTheObjectThatItServes) {
  CTModulePath path;
  EXPECT_EQ(path.GenerateModuleFileName(nullptr, "a.so").C_str(), folderOf(programPath()) + "/a.so");
  EXPECT_EQ(path.GenerateModuleFileName(qvtcl::kDriverIdentifier, "a.so").C_str(), folderOf(programPath()) + "/a.so");
  EXPECT_EQ(path.GenerateModuleFileName(kLibc, "a.so").C_str(), folderOf(libcPath()) + "/a.so");
  EXPECT_EQ(path.GenerateModuleFileName(kLibc, "b/a").C_str(), folderOf(libcPath()) + "/b/a");
}

TEST(TModulePath, AModuleWithoutAnObjectOrANameHasNoFile) {
  CTModulePath path;
  EXPECT_STREQ(path.GenerateModuleFileName("", "a.so").C_str(), "");
  EXPECT_STREQ(path.GenerateModuleFileName("libnothing", "a.so").C_str(), "");
  for (const char* none : {kNull, ""}) {
    EXPECT_STREQ(path.GenerateModuleFileName(nullptr, none).C_str(), "");
    EXPECT_STREQ(path.GenerateModuleFileName(qvtcl::kDriverIdentifier, none).C_str(), "");
  }
}

TEST(TModulePath, TheExtensionIsTakenOffTheLastNameOnly) {
  struct Row {
    const char* path;
    const char* expected;
  };
  for (const Row& row :
       {Row{"/a/b.so", "/a/b"}, Row{"/a/b.so.6", "/a/b.so"}, Row{"/a.b/c", "/a.b/c"}, Row{"/a.b/c.d", "/a.b/c"},
        Row{"a.b\\c", "a.b\\c"}, Row{"a\\b.c", "a\\b"}, Row{"b.so", "b"}, Row{"b", "b"}, Row{"b.", "b"}, Row{".b", ""},
        Row{"/a/.b", "/a/"}, Row{"/a.b/", "/a.b/"}, Row{"", ""}}) {
    CTString path(row.path);
    CTModulePath().RemoveFileExtensionName(path);
    EXPECT_STREQ(path.C_str(), row.expected) << row.path;
  }
}

TEST(TModulePath, TheLastPartIsTakenOffWithItsSeparator) {
  struct Row {
    const char* path;
    const char* expected;
  };
  for (const Row& row : {Row{"/a/b.so", "/a"}, Row{"/a/b/", "/a/b"}, Row{"a\\b\\c", "a\\b"}, Row{"a/b\\c", "a/b"},
                         Row{"a\\b/c", "a\\b"}, Row{"/a", ""}, Row{"/", ""}, Row{"a.b", "a.b"}, Row{"", ""}}) {
    CTString path(row.path);
    CTModulePath().RemoveLastPathComponent(path);
    EXPECT_STREQ(path.C_str(), row.expected) << row.path;
  }
}
