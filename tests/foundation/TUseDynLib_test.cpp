// The dynamic loader is replaced at link time, so that it can be watched and can fail.
#include "foundation/qvtcl/TUseDynLib.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/qvtcl/TDynLib.h"

namespace {

std::vector<std::string> calls;
bool loads = true;
bool unloads = true;
bool hasFactory = true;
bool factoryMakes = true;
char module;  // its address is the handle

// What the factory makes.
class Thing {
 public:
  Thing() { calls.emplace_back("make"); }
  virtual ~Thing() { calls.emplace_back("delete"); }
};

Thing* factory() { return factoryMakes ? new Thing : nullptr; }

}  // namespace

extern "C" {
void* __wrap_dlopen(const char* path, int flags) {
  calls.push_back(std::string("open ") + path + (flags == (RTLD_LAZY | RTLD_LOCAL) ? " lazy local" : " otherwise"));
  return loads ? &module : nullptr;
}
void* __wrap_dlsym(void* handle, const char* name) {
  calls.push_back(std::string("find ") + name + (handle == &module ? "" : " elsewhere"));
  return hasFactory ? reinterpret_cast<void*>(&factory) : nullptr;
}
int __wrap_dlclose(void* handle) {
  calls.emplace_back(handle == &module ? "close" : "close another");
  return unloads ? 0 : -1;
}
}

namespace {

using qvtcl::CTDynLib;
using qvtcl::CTUseDynLib;
using Calls = std::vector<std::string>;

Calls takeCalls() { return std::exchange(calls, {}); }

class DynLib : public testing::Test {
 protected:
  DynLib() {
    calls.clear();
    loads = unloads = hasFactory = factoryMakes = true;
  }
};

TEST_F(DynLib, LoadsLazilyAndLocallyAndOnce) {
  CTUseDynLib library;
  EXPECT_EQ(library.GetPtrExportSymbol("CreateInstance"), nullptr) << "nothing is loaded";
  EXPECT_TRUE(library.LoadDynamicLibrary("/a.so"));
  EXPECT_TRUE(library.LoadDynamicLibrary("/a.so"));
  EXPECT_TRUE(library.LoadDynamicLibrary("/b.so")) << "the one that is loaded is kept";
  EXPECT_EQ(takeCalls(), Calls{"open /a.so lazy local"});
  EXPECT_EQ(library.GetPtrExportSymbol("CreateInstance"), reinterpret_cast<void*>(&factory));
  EXPECT_EQ(library.GetPtrExportSymbol(nullptr), nullptr);
  EXPECT_EQ(takeCalls(), Calls{"find CreateInstance"});
}

TEST_F(DynLib, WithoutAPathLoadsNothing) {
  CTUseDynLib library;
  EXPECT_FALSE(library.LoadDynamicLibrary(nullptr));
  EXPECT_FALSE(library.LoadDynamicLibrary(""));
  EXPECT_TRUE(takeCalls().empty());
  EXPECT_TRUE(library.LoadDynamicLibrary("/a.so"));
  EXPECT_FALSE(library.LoadDynamicLibrary("")) << "also with a module loaded";
}

TEST_F(DynLib, ALoadThatFailedCanBeTriedAgain) {
  CTUseDynLib library;
  loads = false;
  EXPECT_FALSE(library.LoadDynamicLibrary("/a.so"));
  EXPECT_TRUE(library.ReleaseDynamicLibrary()) << "nothing is loaded";
  loads = true;
  EXPECT_TRUE(library.LoadDynamicLibrary("/a.so"));
  EXPECT_EQ(takeCalls(), (Calls{"open /a.so lazy local", "open /a.so lazy local"}));
}

TEST_F(DynLib, ForgetsItsHandleOnlyWhenTheUnloadSucceeded) {
  {
    CTUseDynLib library;
    library.LoadDynamicLibrary("/a.so");
    takeCalls();
    unloads = false;
    EXPECT_FALSE(library.ReleaseDynamicLibrary());
    EXPECT_NE(library.GetPtrExportSymbol("CreateInstance"), nullptr) << "still loaded";
    EXPECT_TRUE(library.LoadDynamicLibrary("/a.so"));
    EXPECT_EQ(takeCalls(), (Calls{"close", "find CreateInstance"}));
    unloads = true;
    EXPECT_TRUE(library.ReleaseDynamicLibrary());
    EXPECT_TRUE(library.ReleaseDynamicLibrary());
    EXPECT_EQ(takeCalls(), Calls{"close"});
    library.LoadDynamicLibrary("/a.so");
  }
  EXPECT_EQ(takeCalls(), (Calls{"open /a.so lazy local", "close"})) << "the destructor unloads";
}

TEST_F(DynLib, MakesOneObjectAndKeepsIt) {
  {
    CTDynLib<Thing> library;
    Thing* const thing = library.GetInterface("/a.so");
    EXPECT_NE(thing, nullptr);
    EXPECT_EQ(library.GetInterface("/a.so"), thing);
    EXPECT_EQ(library.GetInterface(nullptr), nullptr) << "without a path there is none";
    EXPECT_EQ(takeCalls(), (Calls{"open /a.so lazy local", "find CreateInstance", "make"}));
    library.Release();
    EXPECT_EQ(takeCalls(), (Calls{"delete", "close"}));
    library.Release();
    EXPECT_TRUE(takeCalls().empty());
    library.GetInterface("/a.so");
    takeCalls();
  }
  EXPECT_EQ(takeCalls(), (Calls{"delete", "close"})) << "what was not released before";
}

TEST_F(DynLib, UnloadsAModuleThatMakesNothing) {
  CTDynLib<Thing> library;
  hasFactory = false;
  EXPECT_EQ(library.GetInterface("/a.so"), nullptr);
  EXPECT_EQ(takeCalls(), (Calls{"open /a.so lazy local", "find CreateInstance", "close"}));
  hasFactory = true;
  factoryMakes = false;
  EXPECT_EQ(library.GetInterface("/a.so"), nullptr);
  EXPECT_EQ(takeCalls(), (Calls{"open /a.so lazy local", "find CreateInstance", "close"}));
  factoryMakes = true;
  EXPECT_NE(library.GetInterface("/a.so"), nullptr);
}

}  // namespace
