// What a line of a log costs that is off: beside an empty function call, and at a level that is not written.
//
// A level needs a set-up file at its fixed place, which this program makes in a /tmp of its own.
#include <benchmark/benchmark.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>

#include "foundation/trace.h"

namespace {

constexpr char kSetupFile[] = "/tmp/QvSetupLog.txt";

__attribute__((noinline)) void emptyCall(const char* text, int value) {
  benchmark::DoNotOptimize(text);
  benchmark::DoNotOptimize(value);
}

// Hides /tmp, and with it a set-up that somebody else left there. False where that is not allowed.
bool hideTmp() {
  static const bool hidden = [] {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/tmp", "tmpfs", 0, nullptr) == 0;
  }();
  return hidden;
}

// A log with that set-up, or with none. Null when the /tmp at hand cannot give it.
bool setUp(COutputLog& log, const char* setup) {
  if (!hideTmp() && (setup != nullptr || access(kSetupFile, F_OK) == 0)) return false;
  if (setup != nullptr) {
    std::FILE* file = std::fopen(kSetupFile, "w");
    if (file == nullptr || std::fputs(setup, file) < 0 || std::fclose(file) != 0) return false;
  }
  log.WriteLog(2, "%s", "the first line sets up");
  unlink(kSetupFile);
  return true;
}

void anEmptyCall(benchmark::State& state) {
  for (auto _ : state) emptyCall("GetScanStatus", 1);
}

void aLineWithoutSetup(benchmark::State& state) {
  COutputLog log("bench");
  if (!setUp(log, nullptr)) return state.SkipWithError("/tmp holds a set-up file");
  for (auto _ : state) log.WriteLog(2, ">>>>> %s >>>>> PageNo = %d", "GetScanStatus", 1);
}

void aLineAboveTheLevel(benchmark::State& state) {
  COutputLog log("bench");
  if (!setUp(log, "LogLevel=1\n")) return state.SkipWithError("no /tmp of its own");
  for (auto _ : state) log.WriteLog(2, ">>>>> %s >>>>> PageNo = %d", "GetScanStatus", 1);
}

void aLineThatIsWritten(benchmark::State& state) {
  COutputLog log("bench");
  if (!setUp(log, "LogLevel=2\n")) return state.SkipWithError("no /tmp of its own");
  for (auto _ : state) log.WriteLog(2, ">>>>> %s >>>>> PageNo = %d", "GetScanStatus", 1);
}

// Entry and exit of a polled operation, by the library's own log.
void aTraceWithoutSetup(benchmark::State& state) {
  if (!setUp(g_ScanDevApiLog, nullptr)) return state.SkipWithError("/tmp holds a set-up file");
  for (auto _ : state) {
    orvalle_scan_api::Trace trace("GetScanStatus", 2);
    benchmark::DoNotOptimize(trace.ret(0u));
  }
}

BENCHMARK(anEmptyCall);
BENCHMARK(aLineWithoutSetup);
BENCHMARK(aLineAboveTheLevel);
BENCHMARK(aTraceWithoutSetup);
BENCHMARK(aLineThatIsWritten);

}  // namespace
