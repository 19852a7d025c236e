#include "tests/image/reso_compare.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <sstream>

#include "tests/image/reso_reference.h"

namespace reso_compare {

namespace {

using Reference = reso_reference::ChangeReso;

Bytes pattern(std::size_t size, std::uint32_t seed) {
  Bytes bytes(size);
  std::uint32_t state = seed * 2654435761U + 1;
  for (auto& value : bytes) {
    state = state * 1664525U + 1013904223U;
    value = static_cast<std::uint8_t>(state >> 24);
  }
  return bytes;
}

bool sameResult(const CHRESO_OPEN& a, const CHRESO_OPEN& b) {
  return a.outStrideBytes == b.outStrideBytes && a.outPixels == b.outPixels && a.writeBufferSize == b.writeBufferSize;
}

bool sameRows(const reso_reference::CubicRow* a, const ChangeResoSetup::CubicRow* b) {
  for (int i = 0; i < ChangeResoSetup::kPhases; ++i) {
    if (a[i].frac != b[i].frac || !std::equal(a[i].w, a[i].w + 4, b[i].w)) return false;
  }
  return true;
}

// The first field of the set-up that differs, or null.
const char* setupDifference(const Reference& want, const ChangeResoSetup& got) {
  struct Check {
    const char* name;
    bool same;
  };
  const Check checks[] = {
      {"rateXN", want.rateXN == got.rateXN},
      {"rateXM", want.rateXM == got.rateXM},
      {"rateYN", want.rateYN == got.rateYN},
      {"rateYM", want.rateYM == got.rateYM},
      {"tblRateX", want.tblRateX == got.tblRateX},
      {"tblRateY", want.tblRateY == got.tblRateY},
      {"stepY", want.stepY == got.stepY},
      {"stepX1000", want.stepX1000 == got.stepX1000},
      {"path", want.kind == static_cast<int>(got.path)},
      {"writeKind", want.writeKind == static_cast<int>(got.writeKind)},
      {"writer2Bit", want.writer2Bit == got.writer2Bit},
      {"writer8Bit", want.writer8Bit == got.writer8Bit},
      {"writerNtoM", want.writerNtoM == got.writerNtoM},
      {"outStride", want.outStride == got.outStride},
      {"outStridePixels", want.outStridePixels == got.outStridePixels},
      {"outLineBytes", want.outLineBytes == got.outLineBytes},
      {"outPixels", want.outPixels == got.outPixels},
      {"leftOffsetBytes", want.leftOffsetBytes == got.leftOffsetBytes},
      {"fullBlocksX", want.fullBlocksX == got.fullBlocksX},
      {"restPixelsX", want.restPixelsX == got.restPixelsX},
      {"saveLineCount", want.saveLineCount == got.saveLineCount},
      {"saveLineBytes", want.saveLineBytes == got.saveLineBytes},
      {"tblX", want.kind != 3 || sameRows(want.tblX, got.tblX)},
      {"tblY", want.kind != 3 || sameRows(want.tblY, got.tblY)},
      {"tblElement", want.kind != 3 || std::memcmp(want.tblElement, got.tblElement, sizeof(want.tblElement)) == 0},
  };
  for (const Check& check : checks) {
    if (!check.same) return check.name;
  }
  return nullptr;
}

// A resampler with a buffer of its own.
template <class Resampler>
struct Side {
  Resampler resampler;
  Bytes memory;
  int bytes = 0;
  int lines = 0;

  template <class... Arguments>
  explicit Side(Arguments&... arguments) : resampler(arguments...) {}

  // line: null is the flush.
  void call(const Job& job, const CHRESO_WRITE& given, bool flush) {
    CHRESO_WRITE write = given;
    write.writeBuffer = memory.data() + job.guardBytes + (job.bottomUp ? write.writeBufferBytes : 0);
    lines = -1;
    bytes = flush ? resampler.ChangeResoWriteEnd(&write, &lines) : resampler.ChangeResoWrite(&write, &lines);
  }
};

std::string differenceOf(const Side<Reference>& want, const Side<CQvChangeReso>& got, std::size_t guardBytes) {
  std::ostringstream text;
  if (got.bytes != want.bytes) text << "returns " << got.bytes << ", not " << want.bytes;
  if (got.lines != want.lines) text << " counts " << got.lines << " lines, not " << want.lines;
  const auto [at, other] = std::mismatch(got.memory.begin(), got.memory.end(), want.memory.begin());
  if (at != got.memory.end()) {
    text << " byte " << (at - got.memory.begin()) - static_cast<long>(guardBytes) << " of the buffer is " << int{*at}
         << ", not " << int{*other};
  }
  return text.str();
}

}  // namespace

std::string describe(const Job& job) {
  const CHRESO_OPEN& open = job.open;
  std::ostringstream text;
  text << "x " << open.inResoX << ":" << open.outResoX << " y " << open.inResoY << ":" << open.outResoY << std::hex
       << " format 0x" << open.formatFlags << std::dec << " width " << open.inLinePixels << " lines "
       << job.lines.size() << " order " << open.colorOrder << " align " << open.alignOutLine << " fixed "
       << open.fixedOutLineBytes << " pad " << open.leftPadPixels << " bottomUp " << job.bottomUp << " nullFlush "
       << job.nullFlush << " spare " << job.spareBytes << " lineBytes "
       << (job.lines.empty() ? 0 : job.lines.front().bytes.size());
  return text.str();
}

Outcome compare(const Job& job) {
  Outcome outcome;
  Side<Reference> plain;
  CHRESO_OPEN wanted = job.open;
  outcome.served = plain.resampler.ChangeResoInit(&wanted);

  std::vector<std::unique_ptr<Side<CQvChangeReso>>> products;
  const auto differs = [&](const ResoKernels& kernels, const std::string& what) {
    outcome.difference = std::string(kernels.name) + ": " + what + "\n  " + describe(job);
    return outcome;
  };
  for (const ResoKernels& kernels : resoKernels()) {
    products.push_back(std::make_unique<Side<CQvChangeReso>>(kernels));
    CHRESO_OPEN record = job.open;
    if (products.back()->resampler.ChangeResoInit(&record) != outcome.served) {
      return differs(kernels, outcome.served ? "refuses a ratio that is served" : "serves a ratio that is not");
    }
    if (!outcome.served) continue;
    if (!sameResult(wanted, record)) return differs(kernels, "other result fields");
    const char* field = setupDifference(plain.resampler, products.back()->resampler.setup());
    if (field) return differs(kernels, std::string("other set-up: ") + field);
  }
  if (!outcome.served) return outcome;
  outcome.path = plain.resampler.kind;

  CHRESO_WRITE write{};
  write.bottomUp = job.bottomUp;
  write.writeBufferBytes =
      static_cast<unsigned long>(std::max(0L, static_cast<long>(wanted.writeBufferSize) + job.spareBytes));
  plain.memory = pattern(write.writeBufferBytes + 2 * job.guardBytes, job.fillSeed);
  for (auto& product : products) product->memory = plain.memory;

  // False at the first difference.
  const auto call = [&](bool flush, std::size_t number) {
    plain.call(job, write, flush);
    outcome.lines += plain.lines;
    for (std::size_t i = 0; i < products.size(); ++i) {
      products[i]->call(job, write, flush);
      const std::string what = differenceOf(plain, *products[i], job.guardBytes);
      if (what.empty()) continue;
      differs(resoKernels()[i], (flush ? "flush: " : "line " + std::to_string(number) + ": ") + what);
      return false;
    }
    return true;
  };
  for (int page = 0; page < job.pages; ++page) {
    plain.resampler.ChangeResoWriteStart();
    for (auto& product : products) {
      if (product->resampler.ChangeResoWriteStart() != 1) return differs(resoKernels().front(), "does not start");
    }
    for (std::size_t i = 0; i < job.lines.size(); ++i) {
      const Line& line = job.lines[i];
      write.lineKind = line.kind;
      write.lineData = line.null ? nullptr : line.bytes.data();
      write.lineBytes = line.bytes.size();
      // No bytes are a line, too.
      static constexpr std::uint8_t kNothing = 0;
      if (!line.null && line.bytes.empty()) write.lineData = &kNothing;
      if (!call(false, i)) return outcome;
    }
    if (job.nullFlush) write.lineData = nullptr;
    if (!call(true, 0)) return outcome;
  }
  for (auto& product : products) {
    if (product->resampler.ChangeResoClose() != 1) return differs(resoKernels().front(), "does not close");
  }
  return outcome;
}

}  // namespace reso_compare
