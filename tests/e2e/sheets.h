// Sheets that the tests draw themselves. No two seeds give the same sheet, and none looks the same mirrored or turned.
#pragma once

#include "picture.h"

namespace e2e {

// Grey: rows of words like those of a letter, with soft edges.
Picture drawText(int widthPx, int heightPx, double dpi, unsigned seed);
// Grey: runs of every length up to 300 and stretches without any run, the hard cases of run-length coding.
Picture drawRuns(int widthPx, int heightPx, double dpi, unsigned seed);
// Grey: from black to white across the sheet.
Picture drawGradient(int widthPx, int heightPx, double dpi);
// Colour: flowing hues and dark words, as a page with a photograph has them.
Picture drawColor(int widthPx, int heightPx, double dpi, unsigned seed);

}  // namespace e2e
