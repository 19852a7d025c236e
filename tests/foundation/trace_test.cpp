#include "foundation/trace.h"

#include <gtest/gtest.h>

#include "tests/foundation/log_sandbox.h"

namespace foundation_test {
namespace {

using namespace orvalle_scan_api;
using Messages = std::vector<std::string>;

// What code writes with that set-up level.
template <class Code>
Messages messagesOf(Code code, int level = 2) {
  return runWithLog("LogLevel=" + std::to_string(level) + "\n", code).messages();
}

TEST(Trace, WritesEntryAndExit) {
  EXPECT_EQ(messagesOf([] {
              Trace trace("FreeImageData");
              g_ScanDevApiLog.WriteLog(1, "between");
            }),
            (Messages{">>>>> FreeImageData >>>>>", "between", "<<<<< FreeImageData <<<<<"}));
}

TEST(Trace, TheExitCarriesTheResultInItsOwnForm) {
  const struct {
    unsigned (*run)();
    unsigned result;
    const char* exit;
  } rows[] = {
      {[] { return Trace("Op").ret(0x40210012u); }, 0x40210012, "<<<<< Op <<<<< ret = 0x40210012"},
      {[] { return Trace("Op").ret(0u); }, 0, "<<<<< Op <<<<< ret = 0x0"},
      {[] { return static_cast<unsigned>(Trace("Op").retDecimal(-3)); }, static_cast<unsigned>(-3),
       "<<<<< Op <<<<< ret = -3"},
      {[] { return static_cast<unsigned>(Trace("Op").result(7)); }, 7, "<<<<< Op <<<<< result = 7"},
      {[] { return Trace("Op").qsrslt(0x10701002u); }, 0x10701002, "<<<<< Op <<<<< qsrslt = 0x10701002"},
      {[] { return static_cast<unsigned>(Trace("Op").success(true)); }, 1, "<<<<< Op <<<<< success = 1"},
      {[] { return static_cast<unsigned>(Trace("Op").success(false)); }, 0, "<<<<< Op <<<<< success = 0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(messagesOf([&] { EXPECT_EQ(row.run(), row.result); }), (Messages{">>>>> Op >>>>>", row.exit}));
  }
}

TEST(Trace, AnAddressIsPrintedInThirtyTwoBits) {
  EXPECT_EQ(messagesOf([] {
              int* const address = reinterpret_cast<int*>(0x7FFF12345678);
              EXPECT_EQ(Trace("Get").instance(address), address);
            }),
            (Messages{">>>>> Get >>>>>", "<<<<< Get <<<<< Instance = 0x12345678"}));
}

TEST(Trace, AnEntryLineOfTheCallersOwnIsNotDoubled) {
  EXPECT_EQ(messagesOf([] {
              g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> PageNo = %d", "Read", 4);
              Trace trace(Trace::NoEntryLine{}, "Read");
              trace.ret(0u);
            }),
            (Messages{">>>>> Read >>>>> PageNo = 4", "<<<<< Read <<<<< ret = 0x0"}));
}

TEST(Trace, KeepsToItsLevel) {
  const auto both = [] {
    { Trace one("One"); }
    { Trace two("Two", 2); }
  };
  EXPECT_EQ(messagesOf(both, 2),
            (Messages{">>>>> One >>>>>", "<<<<< One <<<<<", ">>>>> Two >>>>>", "<<<<< Two <<<<<"}));
  EXPECT_EQ(messagesOf(both, 1), (Messages{">>>>> One >>>>>", "<<<<< One <<<<<"}));
  EXPECT_EQ(messagesOf(both, 0), Messages{});
}

}  // namespace
}  // namespace foundation_test
