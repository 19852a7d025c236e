#include "figures.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace e2e {

Figures figuresOf(pid_t pid) {
  const std::string folder = "/proc/" + std::to_string(pid);
  Figures figures;
  std::ifstream status(folder + "/status");
  for (std::string line; std::getline(status, line);) {
    const auto read = [&line](const char* key, auto& value) {
      const std::string start = std::string(key) + ":";
      if (line.starts_with(start))
        value = static_cast<std::decay_t<decltype(value)>>(std::stol(line.substr(start.size())));
    };
    read("VmRSS", figures.residentKib);
    read("VmHWM", figures.peakKib);
    read("Threads", figures.threads);
  }
  std::error_code gone;
  for (std::filesystem::directory_iterator at(folder + "/fd", gone), end; !gone && at != end; at.increment(gone)) {
    ++figures.descriptors;
  }
  return figures;
}

}  // namespace e2e
