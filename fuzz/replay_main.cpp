// Runs a fuzzer's function without libFuzzer: on each file named on the command line or, with none, on a few inputs
// made up here, the same in every run.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

// An exact block, so that a sanitizer sees every read beyond the input.
void run(const Bytes& bytes) { LLVMFuzzerTestOneInput(bytes.data(), bytes.size()); }

int runFiles(int count, char** paths) {
  for (int i = 0; i < count; ++i) {
    std::ifstream file(paths[i], std::ios::binary);
    if (!file) {
      std::fprintf(stderr, "%s cannot be read. Name files that hold one input each.\n", paths[i]);
      return 1;
    }
    const Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    run(bytes);
    run({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2)});
  }
  std::printf("%d inputs replayed\n", count);
  return 0;
}

int runMadeUpInputs() {
  constexpr int kRounds = 2000;
  std::mt19937 random(1);
  run({});
  for (int round = 0; round < kRounds; ++round) {
    Bytes bytes(random() % 600);
    for (auto& value : bytes) value = static_cast<std::uint8_t>(random());
    run(bytes);
  }
  std::printf("%d made-up inputs run\n", kRounds + 1);
  return 0;
}

}  // namespace

int main(int count, char** arguments) { return count > 1 ? runFiles(count - 1, arguments + 1) : runMadeUpInputs(); }
