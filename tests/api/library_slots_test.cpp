// A host that was compiled long ago calls by slot number. Each slot of the built library is called here by its number,
// and the log tells which operation it reached.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

#include "ScanCoreApi.h"
#include "tests/foundation/own_tmp.h"

namespace {

using namespace orvalle_scan_api;
using foundation_test::kApiLog;
using foundation_test::readFile;
using foundation_test::runWithOwnTmp;

class Library {
 public:
  // Loaded before /tmp is hidden, in which it may lie. It logs nothing until it is called.
  Library() : handle_(dlopen(QS_CORE_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(handle_, nullptr) << dlerror();
    create_ = reinterpret_cast<IScanCoreApi* (*)()>(dlsym(handle_, "CreateInstance"));
  }
  ~Library() { dlclose(handle_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  IScanCoreApi* create() const { return create_(); }

 private:
  void* handle_;
  IScanCoreApi* (*create_)() = nullptr;
};

// An object whose operations are called by number.
class Slots {
 public:
  explicit Slots(IScanCoreApi* core) : core_(core), slots_(*reinterpret_cast<void***>(core)) {}

  template <class Result = QSRSLT, class... Arguments>
  Result call(std::size_t slot, Arguments... arguments) const {
    return reinterpret_cast<Result (*)(void*, Arguments...)>(slots_[slot])(core_, arguments...);
  }

 private:
  void* core_;
  void** slots_;
};

// The first message that was logged since the last call.
std::string nextMessage() {
  static std::size_t seen = 0;
  const std::string text = readFile(kApiLog);
  const std::size_t start = text.find(") ", seen) + 2;
  seen = text.size();
  return text.substr(start, text.find("\r\n", start) - start);
}

TEST(LibrarySlots, HoldTheOperationsInTheirOrder) {
  const Library library;
  runWithOwnTmp("LogLevel=2\n", [&] {
    const Slots core(library.create());
    _QS_SELECT_DEVICE_INFO info{};
    tagQS_SCAN_IMAGEDATA image{};
    tagQS_SCANNER_CAPABILITY_VER1 capability{};
    tagQS_PUSHSCAN_PARAMETERS push{};
    QS_SCANNER_PARAMETERS parameters{};
    void* data = nullptr;
    void* const none = nullptr;
    int number = 0;
    const auto expectReached = [](const char* operation) {
      const std::string message = nextMessage();
      EXPECT_EQ(message.rfind(std::string(">>>>> ") + operation + " >>>>>", 0), 0u) << operation << ": " << message;
    };

    core.call(2);
    expectReached("Initialize");
    core.call<void>(3);
    expectReached("UnInitialize");
    core.call(4, none, &number);
    expectReached("EnumerateDevice");
    core.call<void>(5);
    EXPECT_EQ(nextMessage(), "ReleaseDeviceList");
    core.call(6, &info);
    expectReached("SelectDevice");
    core.call(7, &info);
    expectReached("GetSelectedDevInfo");
    core.call<bool>(8);
    expectReached("CheckConnection");
    core.call(9, 1u, &capability);
    expectReached("QueryDeviceCapabilities");
    core.call(10, &data, &number);
    expectReached("GetIccProfile");
    core.call(11, 1u, &push);
    expectReached("GetPushScanParameter");
    core.call<bool>(12);
    expectReached("IsAdfInserted");
    core.call(13, &parameters);
    expectReached("StartScanning");
    core.call(14, &image, &number);
    expectReached("ReadImageData");
    core.call<bool>(15);
    expectReached("AbortScanning");
    core.call<void>(16, 1);
    expectReached("FreeImageData");
    core.call<SCANAPISTATUS>(17);
    expectReached("GetScanStatus");
    core.call<int>(18, 1);
    expectReached("GetCurrentReceivedLines");
    core.call<QS_BITMAP_IMAGE_INFO>(19);
    expectReached("GetScanBitmapImageInfo");
    core.call<void>(1);
    expectReached("UnInitialize");  // the deleting destructor
  });
}

TEST(LibrarySlots, BeginWithTheTwoDestructors) {
  const Library library;
  runWithOwnTmp("LogLevel=1\n", [&] {
    IScanCoreApi* const kept = library.create();
    Slots(kept).call<void>(0);
    EXPECT_EQ(nextMessage(), ">>>>> UnInitialize >>>>>");
    ::operator delete(kept);  // the first destructor leaves the memory
    Slots(library.create()).call<void>(1);
    EXPECT_EQ(nextMessage(), ">>>>> UnInitialize >>>>>");
  });
}

}  // namespace
