// Memory that runs out while the device is asked: every question ends with a code, nothing is thrown, and the next
// question is answered.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "api/ScanProtocol.h"
#include "command/ScanCmd.h"
#include "tests/fakes/MemoryDevice.h"

namespace {
// While above 0, counts down with each allocation of this thread; the one that brings it to 0 fails.
thread_local int failing = 0;

void* allocate(std::size_t bytes) {
  if (failing > 0 && --failing == 0) return nullptr;
  return std::malloc(bytes == 0 ? 1 : bytes);
}
void* allocateOrThrow(std::size_t bytes) {
  if (void* block = allocate(bytes)) return block;
  throw std::bad_alloc();
}
}  // namespace

// All forms, since a sanitizer brings each of its own. Not inlined: GCC would take free for the wrong partner of new.
#define NOT_INLINED __attribute__((noinline))
NOT_INLINED void* operator new(std::size_t bytes) { return allocateOrThrow(bytes); }
NOT_INLINED void* operator new[](std::size_t bytes) { return allocateOrThrow(bytes); }
NOT_INLINED void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
NOT_INLINED void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
NOT_INLINED void operator delete(void* block) noexcept { std::free(block); }
NOT_INLINED void operator delete[](void* block) noexcept { std::free(block); }
NOT_INLINED void operator delete(void* block, std::size_t) noexcept { std::free(block); }
NOT_INLINED void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
NOT_INLINED void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
NOT_INLINED void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace {

using namespace orvalle_scan_api;
using fakes::endTag;
using fakes::framed;
using fakes::tag;
using fakes::operator+;

// The test's own allocations do not count.
class Uncounted {
 public:
  Uncounted() : before_(std::exchange(failing, 0)) {}
  ~Uncounted() { failing = before_; }

 private:
  int before_;
};

class Device final : public IDeviceAccess {
 public:
  Device() { memory.answer("GKP", framed("GKP", tag(0x1001, {1, 0}) + endTag())); }
  void SetClientId(const char* id) override {
    const Uncounted ours;
    memory.SetClientId(id);
  }
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(_DEV_IDENTIFIER& id) override {
    const Uncounted ours;
    return memory.Open(id);
  }
  void Close() override {
    const Uncounted ours;
    memory.Close();
  }
  bool IsOpen() override { return memory.IsOpen(); }
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override {
    const Uncounted ours;
    return finish(memory.Read(buffer, size, wanted, timeOutMs));
  }
  int Write(const void* data, int size, int flags) override {
    const Uncounted ours;
    return finish(memory.Write(data, size, flags));
  }

  fakes::MemoryDevice memory;

 private:
  int finish(int value) {
    lastResult = memory.lastResult;
    lastDetail = memory.lastDetail;
    return value;
  }
};

// Fails the 1st, 2nd, … allocation of ask until one run meets no failure. ask returns its code. The number of
// allocations.
template <class Ask>
int sweep(Ask ask) {
  for (int n = 1; n < 1000; ++n) {
    failing = n;
    const QSRSLT result = ask();
    const bool met = failing == 0;
    failing = 0;
    if (!met) {
      EXPECT_EQ(result, 0u);
      return n - 1;
    }
  }
  ADD_FAILURE() << "never came to an end";
  return 0;
}

TEST(OutOfMemory, AQuestionEndsWithACodeAndTheNextOneIsAnswered) {
  const int allocations = sweep([] {
    const int armed = std::exchange(failing, 0);
    Device device;
    CScanProtocol core;
    core.SetDeviceAccess(&device);
    EXPECT_EQ(core.Initialize(), 0u);
    _QS_SELECT_DEVICE_INFO info{};
    info.connectionType = 1;
    std::strcpy(info.primaryName, "memory");
    EXPECT_EQ(core.SelectDevice(info), 0u);
    QS_SCANNER_CAPABILITY capability;
    tagQS_PUSHSCAN_PARAMETERS push;

    failing = armed;
    QSRSLT result = core.QueryDeviceCapabilities(&capability);
    if (result == 0) result = core.GetPushScanParameter(1, &push);
    const int left = std::exchange(failing, 0);

    EXPECT_EQ(core.QueryDeviceCapabilities(&capability), 0u);
    EXPECT_EQ(core.GetPushScanParameter(1, &push), 0u);
    EXPECT_TRUE(push.event.valid);
    failing = left;
    return result;
  });
  EXPECT_GE(allocations, 5) << "command, buffer, both answers, capability record";
}

TEST(OutOfMemory, ACommandThatCannotBeBuiltIsNotSent) {
  Device device;
  _DEV_IDENTIFIER identifier{};
  identifier.name = "memory";
  CScanCmd command(&device, identifier);
  ASSERT_TRUE(command.SelectCommandVersion(SCANCMD_GENERATION_2ND));
  _SCANCMD_SCANPARAM param{};
  command.SetScanParam(&param);
  _SCANCMD_RESPONSE_INFO response{};
  ASSERT_EQ(command.QueryDeviceScanParameter(&response), 0u);

  std::vector<QSRSLT> results;
  const int allocations = sweep([&] {
    const QSRSLT result = command.QueryDeviceScanParameter(&response);
    const Uncounted ours;
    results.push_back(result);
    return result;
  });
  EXPECT_GE(allocations, 3) << "the frame alone needs some";
  EXPECT_EQ(std::count(results.begin(), results.end(), 0x10210034u), allocations - 1);
  EXPECT_EQ(results[results.size() - 2], 0x10210032u) << "the body of the answer, which has no room";

  device.memory.forgetCalls();
  failing = 1;
  const QSRSLT started = command.StartScanning();
  failing = 0;
  EXPECT_EQ(started, 0x10210034u);
  EXPECT_TRUE(device.memory.frames().empty());
}

}  // namespace
