// How many frames of the second generation are built in a second.
#include <benchmark/benchmark.h>

#include "command/CmdString_v2.h"

namespace {

using namespace orvalle_scan_api;

// A plain colour scan of a letter page at 300 dpi.
_SCANCMD_SCANPARAM plainScan() {
  _SCANCMD_SCANPARAM param{};
  param.osInfo = SCANCMD_OS_MAC;
  param.resolution = {300, 300, false};
  param.colorType = SCANCMD_COLOR_C24BIT;
  param.scanArea = {SCANCMD_SCAN_AREA_NORMAL, 0, 0, 2550, 3300};
  param.compressionType = SCANCMD_COMPRESSION_JPEG;
  param.jpegCompressionRate = 50;
  param.jpegSamplingFactor = SCANCMD_JPEG_SAMPLING_420;
  param.toneAdjust = true;
  return param;
}

constexpr char kSettings[] =
    "\x1BSSP\nOS=MAC\nPSRC=AUTO\nRESO=300,300\nCLR=C24BIT\nAREA=NORMAL\nMRGN=0,0,0,0\nDPLX=OFF\nBRIT=50\nCONT=50\n"
    "COMP=JPEG\nRATE=50\nJSF=420\nIPRC=NORMAL\nPTYPE=NORMAL\nPAGE=0\nLONG=OFF\nCARR=OFF\nRMGC=OFF\nDTDF=OFF\nDT4V=OFF\n"
    "DSKW=OFF\nLSMD=OFF\nRMBP=OFF\nRMMR=OFF\nGMMA=OFF\nTONE=ON\nQTFD=OFF\nUSER=\n\x80";
constexpr char kStart[] = "\x1BXSC\nRESO=300,300\nAREA=0,0,2550,3300\nMODE=NORMAL\n\x80";

using Make = std::string (CCmdString_v2::*)(const _SCANCMD_SCANPARAM*) const;

void frames(benchmark::State& state, Make make, const char* expected) {
  const _SCANCMD_SCANPARAM param = plainScan();
  const CCmdString_v2 strings;
  if ((strings.*make)(&param) != expected) return state.SkipWithError("wrong bytes");
  for (auto _ : state) benchmark::DoNotOptimize((strings.*make)(&param));
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(frames, settings, &CCmdString_v2::MakeSSPcmdString, kSettings);
BENCHMARK_CAPTURE(frames, start, &CCmdString_v2::MakeXSCcmdString, kStart);

}  // namespace
