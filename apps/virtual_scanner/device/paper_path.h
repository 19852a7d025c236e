// Where sheets lie: a stack in the feeder and one on the bed. A sheet leaves the feeder when its scan has begun.
// Threads: one.
#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "sheets/sheet_file.h"

namespace vscan {

// One page of a file; the pages of a feeder lie in it as front, back, front, back.
struct Face {
  std::shared_ptr<const SheetFile> file;
  int page = 0;
};

// One sheet as a scan sees it. A face without a file is white paper of the size of the other side.
struct FedSheet {
  Face front;
  Face back;
  std::size_t facesTaken = 0;  // what leaves the stack with this sheet
};

class Feeder {
 public:
  // With blank backs each face is a sheet of its own with a white back.
  Feeder(std::vector<Face> faces, bool blankBacks, bool reloads);

  bool isEmpty() const { return next_ == faces_.size(); }

  // The face on top of the stack; without a file when it is empty.
  Face top() const { return isEmpty() ? Face{} : faces_[next_]; }

  // The sheets that a scan would meet from here on, at most maxSheets where that is not 0. Of a stack without blank
  // backs a scan of both sides takes two faces as one sheet, a scan of one side a face for each sheet.
  std::vector<FedSheet> upcoming(bool bothSides, std::int64_t maxSheets) const;

  void eject(const FedSheet& sheet) { next_ += sheet.facesTaken; }
  void ejectAll() { next_ = faces_.size(); }

  // The end of a scan: a feeder that reloads has its first stack again.
  void scanEnded() {
    if (reloads_) next_ = 0;
  }

 private:
  const std::vector<Face> faces_;
  const bool blankBacks_;
  const bool reloads_;
  std::size_t next_ = 0;
};

}  // namespace vscan
