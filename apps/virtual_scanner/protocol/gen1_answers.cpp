#include "protocol/gen1_answers.h"

namespace vscan::gen1 {
namespace {

std::string line(const std::string& key, int x, int y) {
  return key + "=" + std::to_string(x) + "," + std::to_string(y) + "\n";
}

}  // namespace

std::string grantedText(const GrantedValues& granted) {
  // The third number is the paper source: 1 feeder, 3 not decided, anything else the bed.
  return std::to_string(granted.resolutionX) + "," + std::to_string(granted.resolutionY) + "," +
         (granted.fromFeeder ? "1" : "2") + "," + std::to_string(granted.maxWidthTenths) + "," +
         std::to_string(granted.maxWidthPx) + "," + std::to_string(granted.maxHeightTenths) + "," +
         std::to_string(granted.maxHeightPx);
}

std::string documentText(const DocumentCorners& corners) {
  return line("R", corners.resolutionX, corners.resolutionY) + line("V1", corners.left, corners.top) +
         line("V2", corners.right, corners.bottom);
}

}  // namespace vscan::gen1
