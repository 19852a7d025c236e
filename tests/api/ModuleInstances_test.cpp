// The loader over real shared objects. This program lies in a folder of its own, into which each test puts the modules
// that it wants to be found.
#include "api/ModuleInstances.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "api/DynLib_base.h"
#include "api/ScanProtocol.h"
#include "foundation/qvtcl/TModulePath.h"
#include "image/DecodeManage.h"

namespace {
std::vector<std::string> notes;
bool folderIsFound = true;
}  // namespace

// The modules tell their life to this.
extern "C" __attribute__((visibility("default"))) void qsTestNote(const char* note) { notes.emplace_back(note); }

// The linker leads the search for a module's path here.
extern "C" qvtcl::CTString __real__ZN5qvtcl12CTModulePath22GenerateModuleFileNameEPKvPKc(qvtcl::CTModulePath*,
                                                                                         const void*, const char*);
extern "C" qvtcl::CTString __wrap__ZN5qvtcl12CTModulePath22GenerateModuleFileNameEPKvPKc(qvtcl::CTModulePath* self,
                                                                                         const void* identifier,
                                                                                         const char* fileName) {
  if (!folderIsFound) return {};
  return __real__ZN5qvtcl12CTModulePath22GenerateModuleFileNameEPKvPKc(self, identifier, fileName);
}

namespace orvalle_scan_api {
namespace {

using Notes = std::vector<std::string>;
namespace fs = std::filesystem;

fs::path ownFolder() { return fs::read_symlink("/proc/self/exe").parent_path(); }

Notes takeNotes() { return std::exchange(notes, {}); }

constexpr const char* kStems[] = {"QsJpegDecode", "QsScanDecode", "QsDeviceAccs", "QsImageEnhance", "QvScnImgProc"};

// A copy each, so that the loader takes them for different modules.
void put(const std::string& stem, const std::string& variant) {
  fs::copy_file(fs::path(QS_MODULE_VARIANTS) / (variant + ".so"), ownFolder() / (stem + ".so"),
                fs::copy_options::overwrite_existing);
}

class ModuleInstances : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* stem : kStems) fs::remove(ownFolder() / (std::string(stem) + ".so"));
    takeNotes();
  }
  void TearDown() override { SetUp(); }
};

// The five of them by one form.
struct Getter {
  const char* stem;
  void* (*get)(CModuleInstances&);
  void (*free)(CModuleInstances&);
};
constexpr Getter kGetters[] = {
    {"QsJpegDecode", [](CModuleInstances& m) -> void* { return m.GetJpegDecodeInstance(); },
     [](CModuleInstances& m) { m.FreeJpegDecodeInstance(); }},
    {"QsScanDecode", [](CModuleInstances& m) -> void* { return m.GetScanDecInstance(); },
     [](CModuleInstances& m) { m.FreeScanDecInstance(); }},
    {"QsDeviceAccs", [](CModuleInstances& m) -> void* { return m.GetDeviceAccessInstance(); },
     [](CModuleInstances& m) { m.FreeDeviceAccessInstance(); }},
    {"QsImageEnhance", [](CModuleInstances& m) -> void* { return m.GetImageEnhanceInstance(); },
     [](CModuleInstances& m) { m.FreeImageEnhanceInstance(); }},
    {"QvScnImgProc", [](CModuleInstances& m) -> void* { return m.GetImageProcessInstance(); },
     [](CModuleInstances& m) { m.FreeImageProcessInstance(); }},
};

std::string note(const std::string& stem, const std::string& event) { return stem + ".so " + event; }

TEST_F(ModuleInstances, LoadEachModuleOnItsFirstDemandAndOnce) {
  for (const Getter& getter : kGetters) {
    put(getter.stem, "working");
    takeNotes();
    CModuleInstances modules;
    EXPECT_TRUE(takeNotes().empty()) << "nothing is loaded before it is wanted";
    void* const first = getter.get(modules);
    EXPECT_NE(first, nullptr) << getter.stem;
    EXPECT_EQ(takeNotes(), (Notes{note(getter.stem, "load"), note(getter.stem, "create")}));
    EXPECT_EQ(getter.get(modules), first);
    EXPECT_EQ(getter.get(modules), first);
    EXPECT_TRUE(takeNotes().empty()) << getter.stem;
    getter.free(modules);
    EXPECT_EQ(takeNotes(), (Notes{note(getter.stem, "delete"), note(getter.stem, "unload")}));
    getter.free(modules);
    EXPECT_TRUE(takeNotes().empty()) << "nothing is left to free";
    EXPECT_NE(getter.get(modules), nullptr) << "and it can be had again";
    EXPECT_EQ(takeNotes(), (Notes{note(getter.stem, "load"), note(getter.stem, "create")}));
  }
}

TEST_F(ModuleInstances, UnloadAModuleWithoutAFactory) {
  for (const Getter& getter : kGetters) {
    put(getter.stem, "without_factory");
    CModuleInstances modules;
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(getter.get(modules), nullptr) << getter.stem;
      EXPECT_EQ(takeNotes(), (Notes{note(getter.stem, "load"), note(getter.stem, "unload")}));
    }
    getter.free(modules);
    EXPECT_TRUE(takeNotes().empty());
  }
}

TEST_F(ModuleInstances, UnloadAModuleWhoseFactoryMakesNothing) {
  for (const Getter& getter : kGetters) {
    put(getter.stem, "null_factory");
    CModuleInstances modules;
    EXPECT_EQ(getter.get(modules), nullptr) << getter.stem;
    EXPECT_EQ(takeNotes(),
              (Notes{note(getter.stem, "load"), note(getter.stem, "create"), note(getter.stem, "unload")}));
  }
}

TEST_F(ModuleInstances, AreNullForAFileThatIsMissingOrNoModuleAndComeOnceItIsThere) {
  for (const Getter& getter : kGetters) {
    CModuleInstances modules;
    EXPECT_EQ(getter.get(modules), nullptr) << getter.stem;
    fs::copy_file("/proc/self/status", ownFolder() / (std::string(getter.stem) + ".so"));
    EXPECT_EQ(getter.get(modules), nullptr) << getter.stem;
    put(getter.stem, "working");
    EXPECT_NE(getter.get(modules), nullptr) << getter.stem;
  }
}

TEST_F(ModuleInstances, WithoutAFolderAreWhatWasLoadedBefore) {
  for (const Getter& getter : kGetters) {
    put(getter.stem, "working");
    CModuleInstances modules;
    folderIsFound = false;
    EXPECT_EQ(getter.get(modules), nullptr) << getter.stem;
    folderIsFound = true;
    void* const loaded = getter.get(modules);
    EXPECT_NE(loaded, nullptr) << getter.stem;
    folderIsFound = false;
    EXPECT_EQ(getter.get(modules), loaded) << getter.stem;
    folderIsFound = true;
  }
}

TEST_F(ModuleInstances, AreReleasedInTheirOrder) {
  for (const char* stem : kStems) put(stem, "working");
  {
    CModuleInstances modules;
    for (const Getter& getter : kGetters) ASSERT_NE(getter.get(modules), nullptr);
    takeNotes();
  }
  EXPECT_EQ(takeNotes(), (Notes{"QsJpegDecode.so delete", "QsJpegDecode.so unload", "QsScanDecode.so delete",
                                "QsScanDecode.so unload", "QsImageEnhance.so delete", "QsImageEnhance.so unload",
                                "QsDeviceAccs.so delete", "QsDeviceAccs.so unload", "QvScnImgProc.so delete",
                                "QvScnImgProc.so unload"}))
      << "the last has no releaser of its own in this order";
}

TEST_F(ModuleInstances, OfTwoLoadersHoldAModuleApart) {
  put("QsScanDecode", "working");
  CModuleInstances one;
  CModuleInstances other;
  ASSERT_NE(one.GetScanDecInstance(), nullptr);
  ASSERT_NE(other.GetScanDecInstance(), nullptr);
  EXPECT_NE(one.GetScanDecInstance(), other.GetScanDecInstance());
  takeNotes();
  one.FreeScanDecInstance();
  EXPECT_EQ(takeNotes(), Notes{"QsScanDecode.so delete"}) << "the other still has it loaded";
  other.FreeScanDecInstance();
  EXPECT_EQ(takeNotes(), (Notes{"QsScanDecode.so delete", "QsScanDecode.so unload"}));
}

TEST_F(ModuleInstances, KeepTheirNamesToThemselves) {
  put("QsDeviceAccs", "working");
  CModuleInstances modules;
  ASSERT_NE(modules.GetDeviceAccessInstance(), nullptr);
  EXPECT_EQ(dlsym(RTLD_DEFAULT, "CreateInstance"), nullptr) << "modules are opened locally";
}

TEST(DynLibBase, HoldsAHandleAndNothingElse) {
  int module = 0;
  EXPECT_EQ(CDynLib_base().GetMyModuleHandle(), nullptr);
  EXPECT_EQ(CDynLib_base(&module).GetMyModuleHandle(), &module);
}

// --- What the facade makes of it -----------------------------------------------------------------------------------

TEST_F(ModuleInstances, TellTheDeviceModuleWhoWeAreStraightAfterLoading) {
  put("QsDeviceAccs", "working");
  CScanProtocol core;
  EXPECT_TRUE(takeNotes().empty()) << "making the object loads nothing";
  EXPECT_EQ(core.Initialize(), 0u);
  EXPECT_EQ(takeNotes(), (Notes{"QsDeviceAccs.so load", "QsDeviceAccs.so create",
                                "QsDeviceAccs.so SetClientId com.orvalle.twainds"}));
  EXPECT_EQ(core.Initialize(), 0u);
  EXPECT_TRUE(takeNotes().empty());
  core.UnInitialize();
  EXPECT_EQ(takeNotes(), (Notes{"QsDeviceAccs.so Close", "QsDeviceAccs.so delete", "QsDeviceAccs.so unload"}));
  core.UnInitialize();
  EXPECT_TRUE(takeNotes().empty());
}

TEST_F(ModuleInstances, WithoutTheDeviceModuleInitialisingFailsAndCanBeRepeated) {
  CScanProtocol core;
  EXPECT_EQ(core.Initialize(), 0x20100006u);
  EXPECT_FALSE(core.IsInitialized());
  _QS_SELECT_DEVICE_INFO info{1, "usb", ""};
  EXPECT_EQ(core.SelectDevice(info), 0u);
  EXPECT_FALSE(core.CheckConnection());
  EXPECT_FALSE(core.IsAdfInserted());
  QS_SCANNER_PARAMETERS parameters{};
  EXPECT_EQ(core.StartScanning(&parameters), 0x10100001u);
  put("QsDeviceAccs", "null_factory");
  EXPECT_EQ(core.Initialize(), 0x20100006u);
  put("QsDeviceAccs", "working");
  EXPECT_EQ(core.Initialize(), 0u);
}

TEST_F(ModuleInstances, TheConnectionTestLoadsTheDeviceModuleByItself) {
  put("QsDeviceAccs", "working");
  CScanProtocol core;
  _QS_SELECT_DEVICE_INFO info{1, "usb", ""};
  core.SelectDevice(info);
  EXPECT_FALSE(core.CheckConnection()) << "the device does not open";
  EXPECT_EQ(takeNotes().front(), "QsDeviceAccs.so load");
  EXPECT_FALSE(core.IsInitialized());
}

// An image module that is missing fails the scan before a read thread starts.
TEST_F(ModuleInstances, AMissingImageModuleIsToldByItsCode) {
  const struct {
    const char* missing;
    QSRSLT result;
  } rows[] = {{"QsJpegDecode", 0x20403001}, {"QsScanDecode", 0x30406007}, {"QsImageEnhance", 0x20405004}};
  for (const auto& row : rows) {
    for (const char* stem : kStems) put(stem, "working");
    fs::remove(ownFolder() / (std::string(row.missing) + ".so"));
    CDecodeManage manage;
    EXPECT_EQ(manage.Initialize(), row.result) << row.missing;
    put(row.missing, "working");
    EXPECT_EQ(manage.Initialize(), 0u) << row.missing;
  }
}

}  // namespace
}  // namespace orvalle_scan_api
