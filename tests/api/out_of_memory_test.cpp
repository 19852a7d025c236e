// Memory that runs out at any place below an operation: nothing is thrown out of it, it answers a code, and the object
// serves the next call.
//
// The n-th allocation fails, n going up until an operation gets through without one. The allocations of the device that
// stands in are exempt.
#include <gtest/gtest.h>

#include <cstring>
#include <ctime>
#include <functional>
#include <set>

#include "tests/fakes/FakeCompanions.h"
#include "tests/fakes/failing_new.h"
#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

// The linker leads the pauses of the core here.
extern "C" int __wrap_nanosleep(const timespec*, timespec*) { return 0; }

namespace reception_test {
namespace {

using fakes::FailingNew;
using fakes::MemoryDevice;
using fakes::Often;
using fakes::Threads;

// The device of a test, whose own allocations do not fail.
class ExemptDevice final : public IDeviceAccess {
 public:
  explicit ExemptDevice(MemoryDevice& device) : device_(device) {}
  void SetClientId(const char*) override {}
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(_DEV_IDENTIFIER& id) override {
    const fakes::ExemptFromFailingNew exempt;
    return withResults(device_.Open(id));
  }
  void Close() override {
    const fakes::ExemptFromFailingNew exempt;
    device_.Close();
  }
  bool IsOpen() override {
    const fakes::ExemptFromFailingNew exempt;
    return device_.IsOpen();
  }
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override {
    const fakes::ExemptFromFailingNew exempt;
    return withResults(device_.Read(buffer, size, wanted, timeOutMs));
  }
  int Write(const void* data, int size, int flags) override {
    const fakes::ExemptFromFailingNew exempt;
    return withResults(device_.Write(data, size, flags));
  }

 private:
  int withResults(int answer) {
    lastResult = device_.lastResult;
    lastDetail = device_.lastDetail;
    return answer;
  }

  MemoryDevice& device_;
};

const Picture kPicture = drawPicture(6, 3, 24);
const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

struct Bench {
  MemoryDevice device;
  ExemptDevice exempt{device};
  CScanProtocol core;

  Bench() {
    keepModulesLoaded();
    device.answer("CKD", {0, 0});
    device.answer("GKP", fakes::framed("GKP", fakes::endTag()));
    connect();
  }
  void connect() {
    core.SetDeviceAccess(&exempt);
    EXPECT_EQ(core.Initialize(), 0u);
    auto info = memoryDeviceInfo();
    EXPECT_EQ(core.SelectDevice(info), 0u);
  }
  void servePages() {
    device.stream(rawLines(kPicture) + pageEnd(1) + packedLines(kPicture, 2) + pageEnd(2) + allPagesEnd());
  }
  QSRSLT start() {
    QS_SCANNER_PARAMETERS settings = kSettings;
    return core.StartScanning(&settings);
  }
};

// Calls the operation on a fresh object with every allocation failing in turn. It must answer isGood where none failed,
// also when it is repeated after a failure. Returns the other answers.
template <class Answer>
std::set<Answer> failEach(const char* name, const std::function<void(Bench&)>& prepare,
                          const std::function<Answer(Bench&)>& operation, const std::function<bool(Answer)>& isGood) {
  std::set<Answer> answers;
  for (const Often often : {Often::Once, Often::ForEver}) {
    for (int n = 1;; ++n) {
      Bench bench;
      prepare(bench);
      FailingNew failing(Threads::This, n, often);
      const Answer answer = operation(bench);
      if (!failing.stop()) {
        EXPECT_TRUE(isGood(answer)) << name;
        break;
      }
      if (!isGood(answer)) answers.insert(answer);
      EXPECT_TRUE(isGood(operation(bench))) << name << " after allocation " << n << " had failed, with " << answer;
    }
  }
  return answers;
}

void doNothing(Bench&) {}
bool isSuccess(QSRSLT result) { return result == 0; }

TEST(OutOfMemory, AQuestionToTheDeviceGetsACodeAndCanBeRepeated) {
  const auto asked = failEach<QSRSLT>(
      "QueryDeviceCapabilities", doNothing,
      [](Bench& bench) {
        tagQS_SCANNER_CAPABILITY_VER1 capability{};
        return bench.core.QueryDeviceCapabilities(1, &capability);
      },
      isSuccess);
  EXPECT_TRUE(asked.contains(0x10100010)) << "no command object";
  const auto pushed = failEach<QSRSLT>(
      "GetPushScanParameter", doNothing,
      [](Bench& bench) {
        tagQS_PUSHSCAN_PARAMETERS push{};
        return bench.core.GetPushScanParameter(1, &push);
      },
      isSuccess);
  EXPECT_TRUE(pushed.contains(0x10100009)) << "not prepared";
  const auto connected = failEach<bool>(
      "CheckConnection", doNothing, [](Bench& bench) { return bench.core.CheckConnection(); },
      [](bool isConnected) { return isConnected; });
  EXPECT_EQ(connected.size(), 1u);
  const auto inserted = failEach<bool>(
      "IsAdfInserted", doNothing, [](Bench& bench) { return bench.core.IsAdfInserted(); },
      [](bool isInserted) { return !isInserted; });
  EXPECT_TRUE(inserted.empty());
}

TEST(OutOfMemory, WithoutACapabilityObjectNothingIsAsked) {
  fakes::CallList calls;
  fakes::FakeScanCommand command(calls);
  Bench bench;
  bench.core.SetScanCommand(&command);
  QS_SCANNER_CAPABILITY capability{};
  FailingNew failing(Threads::This, 1, Often::ForEver);
  const QSRSLT result = bench.core.QueryDeviceCapabilities(&capability);
  failing.stop();
  EXPECT_EQ(result, 0x30100002u);
}

TEST(OutOfMemory, AStartThatFailsGetsACodeAndCanBeRepeated) {
  const auto started = failEach<QSRSLT>(
      "StartScanning", [](Bench& bench) { bench.servePages(); }, [](Bench& bench) { return bench.start(); }, isSuccess);
  EXPECT_TRUE(started.contains(0x10100009)) << "not prepared";
  EXPECT_TRUE(started.contains(0x1010000E)) << "no read thread object";
  EXPECT_TRUE(started.contains(0x10401001)) << "a read thread that cannot be started";
}

TEST(OutOfMemory, TheOtherOperationsOfAScanNeedNone) {
  for (const bool isAborted : {false, true}) {
    Bench bench;
    bench.servePages();
    ASSERT_EQ(bench.start(), 0u);
    while (bench.core.GetScanStatus() == RECEIVING) std::this_thread::yield();
    tagQS_SCAN_IMAGEDATA image{};
    int pageNo = 0;
    void* data = nullptr;
    int size = 0;
    _QS_SELECT_DEVICE_INFO info{};
    FailingNew failing(Threads::This, 1);
    const QSRSLT read = bench.core.ReadImageData(&image, &pageNo);
    bench.core.GetScanBitmapImageInfo();
    bench.core.GetIccProfile(&data, &size);
    bench.core.GetCurrentReceivedLines(1);
    bench.core.FreeImageData(pageNo);
    if (isAborted) bench.core.AbortScanning();
    while (bench.core.GetScanStatus() == RECEIVING) std::this_thread::yield();
    bench.core.EnumerateDevice(nullptr, &size);
    bench.core.ReleaseDeviceList();
    bench.core.GetSelectedDevInfo(&info);
    bench.core.SelectDevice(info);
    bench.core.UnInitialize();
    EXPECT_FALSE(failing.stop());
    EXPECT_EQ(read, 0u);
    EXPECT_EQ(pageNo, 1);
  }
}

TEST(OutOfMemory, WithoutTheDeviceModuleIsAModuleThatCannotBeLoaded) {
  for (int n = 1; n < 1000; ++n) {
    CScanProtocol core;
    FailingNew failing(Threads::This, n);
    const QSRSLT result = core.Initialize();
    if (!failing.stop()) {
      EXPECT_EQ(result, 0u);
      break;
    }
    if (result != 0) {
      EXPECT_EQ(result, 0x20100006u);
      EXPECT_FALSE(core.IsInitialized());
    }
    EXPECT_EQ(core.Initialize(), 0u) << "after allocation " << n << " had failed";
  }
}

TEST(OutOfMemory, TheFactoryGivesNull) {
  int made = 0;
  for (int n = 1; n < 1000 && made == 0; ++n) {
    FailingNew failing(Threads::This, n);
    IScanCoreApi* const core = CreateInstance();
    const bool failed = failing.stop();
    EXPECT_EQ(core == nullptr, failed) << n;
    if (core != nullptr) ++made;
    delete core;
  }
  EXPECT_EQ(made, 1);
}

// --- On any thread of a scan ---------------------------------------------------------------------------------------

struct Result {
  QSRSLT code = 0;  // of the step that failed
  int goodPages = 0;
  int badPages = 0;
  bool isLate = false;
};

// A caller's loop that allocates nothing.
Result scanAndCompare(Bench& bench, const ByteString& expected) {
  Result result;
  result.code = bench.start();
  if (result.code != 0) return result;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (std::chrono::steady_clock::now() < end) {
    const SCANAPISTATUS status = bench.core.GetScanStatus();
    if (status == RECEIVING) {
      std::this_thread::yield();
      continue;
    }
    if (status != XFERREADY) return result;
    tagQS_SCAN_IMAGEDATA image{};
    int pageNo = 0;
    result.code = bench.core.ReadImageData(&image, &pageNo);
    if (result.code != 0) return result;
    const bool isSame = image.dataSize == expected.size() && image.data != nullptr &&
                        std::memcmp(image.data, expected.data(), expected.size()) == 0;
    ++(isSame ? result.goodPages : result.badPages);
    bench.core.FreeImageData(pageNo);
  }
  result.isLate = true;
  return result;
}

TEST(OutOfMemory, OnAnyThreadOfAScanIsAResultAndTheNextScanRuns) {
  const ByteString expected = expectedBmp(kPicture);
  std::set<QSRSLT> codes;
  Bench bench;
  for (int n = 1; n < 2000; ++n) {
    bench.servePages();
    FailingNew failing(Threads::Every, n);
    const Result result = scanAndCompare(bench, expected);
    const bool failed = failing.stop();
    EXPECT_FALSE(result.isLate) << n;
    EXPECT_EQ(result.badPages, 0) << n;
    EXPECT_TRUE(result.goodPages == 2 || result.code != 0) << n << ": " << result.goodPages << " pages";
    bench.servePages();
    const Result next = scanAndCompare(bench, expected);
    EXPECT_EQ(next.code, 0u) << std::hex << next.code << " after allocation " << n << " had failed";
    EXPECT_EQ(next.goodPages, 2) << n;
    if (!failed) break;
    codes.insert(result.code);
  }
  EXPECT_TRUE(codes.contains(0x30402001)) << "no memory";
  EXPECT_TRUE(codes.contains(0x10404001)) << "a worker that cannot be started";
}

}  // namespace
}  // namespace reception_test
