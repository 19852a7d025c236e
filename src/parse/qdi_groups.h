// What the groups of the capability record share when a QDI body is converted: tenths of a millimetre become driver
// millimetres, bit masks become flags, missing values become defaults.
// Threads: reentrant.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "parse/qdi_response.h"
#include "scanner_capability.h"

namespace orvalle_scan_api::qdi {

using Response = _QDICMDRESPONSE;

// The two large groups, each in a file of its own.
DEVINFO_BASEFUNC baseFunc(const Response& r);
DEVINFO_ADVANCEDFUNC advancedFunc(const Response& r);

inline constexpr CAP kMissing = 1;
inline constexpr CAP kPresent = 2;

// The sources.
inline bool hasFlatbed(const Response& r) { return (r.paperSource & 2) != 0; }
inline bool hasFeeder(const Response& r) { return (r.paperSource & 1) != 0; }
inline bool hasCardSlot(const Response& r) { return (r.paperSource & 4) != 0; }
// Kept: two sides count whether or not the feeder bit is set. It looks like a missing test; with it a bed that scans
// both sides would lose its sizes. Pinned by qdi_capability_test "TwoSidesCountWithoutAFeeder".
inline bool hasDuplex(const Response& r) { return r.duplex != 0; }

// True when all bits of the mask are set.
inline bool IsAvailableBit(int value, int mask) { return (value & mask) == mask; }
inline FLAG bit(int value, int number) { return IsAvailableBit(value, 1 << number) ? FLAG{1} : FLAG{0}; }
inline CAP capIf(bool present) { return present ? kPresent : kMissing; }

// Device millimetre (1/10 mm) to driver millimetre (1/100 mm).
inline std::int32_t conv(std::int32_t deviceMillimeter) { return deviceMillimeter * 10; }

inline SUPPORTCOLORTYPES GetColorTypeSupport(int mask) {
  return {bit(mask, 0), bit(mask, 1), bit(mask, 2), bit(mask, 3), bit(mask, 4), 0, 0};
}

inline FUNCEXCLUSION GetFuncExclusionSupport(int mask) {
  FUNCEXCLUSION exclusion{};
  exclusion.detectDocSize = bit(mask, 0);
  exclusion.detectMultifeed = bit(mask, 1);
  exclusion.blankRemovalByDevice = bit(mask, 2);  // the wire's order is not the record's
  exclusion.deskewByDevice = bit(mask, 3);
  exclusion.autoColorByDevice = bit(mask, 4);
  exclusion.removeBackgroundByDevice = bit(mask, 5);
  exclusion.detectDocSizeByDevice = bit(mask, 6);
  exclusion.autoResolutionByDevice = bit(mask, 7);
  exclusion.autoRotateByDevice = bit(mask, 8);
  return exclusion;
}

// The words of a group by value: a packed record lends no references.
template <class Word, std::size_t N>
std::array<Word, N> words(const Response& r, std::size_t offset) {
  std::array<Word, N> copy;
  std::memcpy(copy.data(), reinterpret_cast<const char*>(&r) + offset, sizeof copy);
  return copy;
}

}  // namespace orvalle_scan_api::qdi
