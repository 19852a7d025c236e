// A configuration file is taken, or refused with a sentence.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "apps/qsscan/configuration.h"
#include "apps/qsscan/device_name.h"
#include "apps/qsscan/exit_codes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace qsscan;
  constexpr std::size_t kMostBytes = 4096;
  if (size > kMostBytes) return 0;
  try {
    const Configuration configuration = parseConfiguration({data, data + size}, "file");
    for (const ConfiguredDevice& device : configuration.devices) parseDeviceName(device.address);
  } catch (const CommandError& error) {
    if (error.code() != ExitCode::kConfiguration) std::abort();
  }
  return 0;
}
