// The resampler on a strip of an A4 sheet, with every kernel set that this processor has. MPixels is the output of a
// second; x_plain is how often the plain form would fit into the same time, both on this processor in this run.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/image/resampler_page.h"
#include "tests/image/reso_reference.h"

namespace {

using namespace bench_reso;

constexpr Conversion kConversions[] = {
    {"color 300 to 600", kColor, 300, 600, 300, 600},
    {"color 150 to 600", kColor, 150, 600, 150, 600},
    {"color 200 to 300", kColor, 200, 300, 200, 300},
    {"color 600 to 300 across, 300 to 600 down", kColor, 600, 300, 300, 600},
    {"color 600 to 300", kColor, 600, 300, 600, 300},
    {"color 300 to 200", kColor, 300, 200, 300, 200},
    {"color 400 to 300", kColor, 400, 300, 400, 300},
    {"grey 300 to 600", kGrey, 300, 600, 300, 600},
    {"grey 150 to 600", kGrey, 150, 600, 150, 600},
    {"grey 200 to 300", kGrey, 200, 300, 200, 300},
    {"grey 600 to 300 across, 300 to 600 down", kGrey, 600, 300, 300, 600},
    {"grey 600 to 300", kGrey, 600, 300, 600, 300},
    {"grey 300 to 200", kGrey, 300, 200, 300, 200},
    {"grey 400 to 300", kGrey, 400, 300, 400, 300},
    {"one bit 300 to 600", kBits, 300, 600, 300, 600},
    {"one bit 200 to 300", kBits, 200, 300, 200, 300},
    {"one bit 300 to 200", kBits, 300, 200, 300, 200},
};

// A strip, what the plain form makes of it, and its time.
struct Plain {
  std::vector<Bytes> lines;
  Output output;
  double seconds = 0;
};

const Plain& plainOf(const Conversion& job) {
  static std::vector<std::unique_ptr<Plain>> known(std::size(kConversions));
  std::unique_ptr<Plain>& plain = known[static_cast<std::size_t>(&job - kConversions)];
  if (plain) return *plain;
  plain = std::make_unique<Plain>();
  plain->lines = strip(job);
  reso_reference::ChangeReso resampler;
  for (int round = 0; round < 3; ++round) {
    const double seconds = secondsOf([&] { convert(resampler, job, plain->lines, plain->output); });
    if (round == 0 || seconds < plain->seconds) plain->seconds = seconds;
  }
  return *plain;
}

void resample(benchmark::State& state, const Conversion& job, const ResoKernels& kernels) {
  const Plain& plain = plainOf(job);
  CQvChangeReso resampler(kernels);
  Output output;
  if (!convert(resampler, job, plain.lines, output)) return state.SkipWithError("refused");
  if (output.lines != plain.output.lines || output.bytes != plain.output.bytes)
    return state.SkipWithError("wrong bytes");
  double seconds = 0;
  for (auto _ : state) {
    const double took = secondsOf([&] { convert(resampler, job, plain.lines, output); });
    if (seconds == 0 || took < seconds) seconds = took;
  }
  // The best of several runs on both sides: other programs may share the processor.
  state.counters["MPixels"] = static_cast<double>(output.pixels) / seconds / 1e6;
  state.counters["x_plain"] = plain.seconds / seconds;
}

const bool kRegistered = [] {
  for (const Conversion& job : kConversions) {
    for (const ResoKernels& kernels : resoKernels()) {
      benchmark::RegisterBenchmark((std::string(job.name) + "/" + kernels.name).c_str(), [&](benchmark::State& state) {
        resample(state, job, kernels);
      })->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
