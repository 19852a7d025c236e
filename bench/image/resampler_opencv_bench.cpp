// The resampler beside OpenCV on one core: cubic enlargement against INTER_CUBIC, area means against INTER_AREA, on the
// same strip of a sheet. x_opencv is how often OpenCV would fit into the resampler's time. The pixels are not the same:
// the resampler's weights and windows are its own.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <string>

#include "bench/image/resampler_page.h"

namespace {

using namespace bench_reso;

constexpr Conversion kConversions[] = {
    {"cubic color 300 to 600", kColor, 300, 600, 300, 600}, {"cubic color 150 to 600", kColor, 150, 600, 150, 600},
    {"cubic color 200 to 300", kColor, 200, 300, 200, 300}, {"cubic grey 300 to 600", kGrey, 300, 600, 300, 600},
    {"cubic grey 150 to 600", kGrey, 150, 600, 150, 600},   {"cubic grey 200 to 300", kGrey, 200, 300, 200, 300},
    {"area color 600 to 300", kColor, 600, 300, 600, 300},  {"area color 300 to 200", kColor, 300, 200, 300, 200},
    {"area color 400 to 300", kColor, 400, 300, 400, 300},  {"area grey 600 to 300", kGrey, 600, 300, 600, 300},
    {"area grey 300 to 200", kGrey, 300, 200, 300, 200},    {"area grey 400 to 300", kGrey, 400, 300, 400, 300},
};

// The strip as one matrix, and what cv::resize is asked for.
struct Reference {
  cv::Mat source, target;
  cv::Size size;
  int method;

  Reference(const Conversion& job, const std::vector<Bytes>& lines, std::size_t outLines)
      : source(static_cast<int>(lines.size()), static_cast<int>(widthOf(job)),
               job.format == kColor ? CV_8UC3 : CV_8UC1),
        size(source.cols * job.outX / job.inX, static_cast<int>(outLines)),
        method(job.outX > job.inX ? cv::INTER_CUBIC : cv::INTER_AREA) {
    for (std::size_t y = 0; y < lines.size(); ++y) {
      std::copy(lines[y].begin(), lines[y].end(), source.ptr(static_cast<int>(y)));
    }
  }
  double run() {
    return secondsOf([this] { cv::resize(source, target, size, 0, 0, method); });
  }
};

void compare(benchmark::State& state, const Conversion& job, const ResoKernels& kernels) {
  cv::setNumThreads(1);
  const std::vector<Bytes> lines = strip(job);
  CQvChangeReso resampler(kernels);
  Output output;
  if (!convert(resampler, job, lines, output)) return state.SkipWithError("refused");
  Reference reference(job, lines, output.lines);
  reference.run();
  // Both shrink and enlarge the same picture: their means lie close together.
  const cv::Mat ours(reference.target.rows, reference.target.cols, reference.target.type(), output.bytes.data(),
                     output.strideBytes);
  if (cv::norm(cv::mean(ours) - cv::mean(reference.target)) > 3) return state.SkipWithError("another picture");

  double own = 1e9;
  double theirs = 1e9;
  for (auto _ : state) {
    own = std::min(own, secondsOf([&] { convert(resampler, job, lines, output); }));
    theirs = std::min(theirs, reference.run());
  }
  state.counters["MPixels"] = static_cast<double>(output.pixels) / own / 1e6;
  state.counters["MPixels_opencv"] = static_cast<double>(output.pixels) / theirs / 1e6;
  state.counters["x_opencv"] = theirs / own;
}

const bool kRegistered = [] {
  for (const Conversion& job : kConversions) {
    for (const ResoKernels& kernels : resoKernels()) {
      benchmark::RegisterBenchmark((std::string(job.name) + "/" + kernels.name).c_str(), [&](benchmark::State& state) {
        compare(state, job, kernels);
      })->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
