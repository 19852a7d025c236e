#include "device/paper_path.h"

#include <algorithm>

namespace vscan {

Feeder::Feeder(std::vector<Face> faces, bool blankBacks, bool reloads)
    : faces_(std::move(faces)), blankBacks_(blankBacks), reloads_(reloads) {}

std::vector<FedSheet> Feeder::upcoming(bool bothSides, std::int64_t maxSheets) const {
  const std::size_t facesPerSheet = bothSides && !blankBacks_ ? 2 : 1;
  std::vector<FedSheet> sheets;
  for (std::size_t i = next_; i < faces_.size(); i += facesPerSheet) {
    if (maxSheets != 0 && static_cast<std::int64_t>(sheets.size()) == maxSheets) break;
    FedSheet sheet;
    sheet.front = faces_[i];
    sheet.facesTaken = std::min(facesPerSheet, faces_.size() - i);
    if (sheet.facesTaken == 2) sheet.back = faces_[i + 1];
    sheets.push_back(std::move(sheet));
  }
  return sheets;
}

}  // namespace vscan
