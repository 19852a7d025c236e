// What a page may go through, one function for each item of the enhancement record. Each changes the page in place and
// tells whether it changed anything. Numbers of the record may have any value; lengths follow the page's resolution.
// Failures: std::bad_alloc and LibraryFailure; the page is then of no use.
// Threads: none of their own.
#pragma once

#include "modules/enhance_param.h"
#include "page.h"

namespace image_enhance {

// What the user ends up with.
enum class Target { Keep, Gray, Mono, Diffused };

struct Request {
  const orvalle_scan_api::_IE_PARAM& param;
  int autoColorMode;  // 2 the device found the page mono, 1 grey, 0 colour or not asked

  Target target() const;
};

bool fillEdges(Page& page, const Request& request);         // edge_fill.cpp
bool removePunchHoles(Page& page, const Request& request);  // holes.cpp
bool dropColor(Page& page, const Request& request);         // color_drop.cpp
bool smooth(Page& page, const Request& request);            // smoothing.cpp
bool adjustTone(Page& page, const Request& request);        // tone.cpp
bool stretchTone(Page& page, const Request& request);       // tone.cpp
bool enhanceEdges(Page& page, const Request& request);      // edge_enhance.cpp
bool reduceToGray(Page& page, const Request& request);      // reduce.cpp
bool reduceToMono(Page& page, const Request& request);      // reduce.cpp
bool removeNoise(Page& page, const Request& request);       // noise.cpp
bool removeLines(Page& page, const Request& request);       // lines.cpp
bool joinDots(Page& page, const Request& request);          // dot_text.cpp
bool thickenText(Page& page, const Request& request);       // thick_text.cpp
bool turnUpright(Page& page, const Request& request);       // rotate.cpp
bool diffuse(Page& page, const Request& request);           // reduce.cpp

// Whether a page of this form goes through anything at all.
bool isAnythingAsked(const PageForm& form, const Request& request);

// Takes the page through everything that is asked of it, in the one order that makes sense. Tells whether it changed.
bool enhance(Page& page, const Request& request);

}  // namespace image_enhance
