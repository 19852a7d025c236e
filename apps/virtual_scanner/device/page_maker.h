// Makes a page out of a sheet: drawn at the granted resolution, cut to the area, toned, encoded.
// Threads: reentrant.
#pragma once
#include "device/grant.h"
#include "device/paper_path.h"
#include "image/raster.h"
#include "protocol/page.h"

namespace vscan {

struct PageOptions {
  bool rawLines = false;  // send lines as they are where the host asked for run-length coding
  ColorLines colorLines = ColorLines::Rgb;
  double skewDegrees = 0;  // how far off the sheets lie; a scan with deskew sees them straight
};

// The sheet's own face, or white of the size of the other side when it has no file.
struct PageSource {
  Face face;
  Face sizeFrom;  // of a back: the front
};

// Throws Failure when the file cannot be read or the page cannot be made.
Page makePage(const Profile& profile, const GrantedScan& scan, const StartSettings& start, const PageSource& source,
              const PageOptions& options);

// Where the face would lie. Throws Failure when its file cannot be read.
Rect placeFace(const Profile& profile, const GrantedScan& scan, const Face& face);

// The pixels that the device sees in that area: the sheet where it lies, the backing elsewhere.
Raster drawArea(const Raster& sheet, const Rect& sheetRect, const Rect& area, std::uint8_t backing = 255);

}  // namespace vscan
