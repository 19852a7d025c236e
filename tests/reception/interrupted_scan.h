// What tests of scans that do not run to their end share: small pages of either generation, and the proof that the
// next scan runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "tests/fakes/moved_clock.h"
#include "tests/reception/dialect.h"
#include "tests/reception/scan_harness.h"

namespace reception_test {

using fakes::clockAdvance;
using fakes::kAbortLimitPassed;
using fakes::MemoryDevice;

inline const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);
inline const ByteString kOneLine(18, 1);

inline ByteString page(const Dialect& dialect, unsigned pageNo) {
  return dialect.rawLines(drawPicture(6, 3, 24, pageNo), pageNo) + dialect.pageEnd(pageNo);
}
inline ByteString pageBytes(unsigned pageNo) { return expectedBmp(drawPicture(6, 3, 24, pageNo)); }
inline std::vector<ByteString> twoPages() { return {pageBytes(1), pageBytes(2)}; }
// A page that has begun.
inline ByteString startOf(const Dialect& dialect, unsigned pageNo) { return dialect.rawLine(24, pageNo, kOneLine); }

// Whether the harness can run a scan of two pages from start to end.
inline void expectNextScanRuns(ScanHarness& harness, const Dialect& dialect, const std::string& after) {
  const Outcome outcome = harness.scan(kSettings, page(dialect, 1) + page(dialect, 2) + dialect.allPagesEnd());
  EXPECT_EQ(outcome.started, 0u) << after;
  EXPECT_EQ(outcome.last, ALLEND) << after;
  EXPECT_EQ(outcome.pages(), twoPages()) << after;
}

inline long count(const std::vector<std::string>& names, const std::string& name) {
  return std::count(names.begin(), names.end(), name);
}

template <class Act>
std::chrono::milliseconds timeOf(Act act) {
  const auto start = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

}  // namespace reception_test
