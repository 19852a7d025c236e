#include "steps.h"

namespace image_enhance {
namespace {

using orvalle_scan_api::_IE_PARAM;

struct Step {
  bool (*isAsked)(const PageForm& page, const Request& request);
  bool (*run)(Page& page, const Request& request);
};

// A step of shades, which a mono page has none of.
template <bool _IE_PARAM::*flag>
bool shades(const PageForm& page, const Request& request) {
  return request.param.*flag && !page.isMono();
}

template <bool _IE_PARAM::*flag>
bool any(const PageForm&, const Request& request) {
  return request.param.*flag;
}

// Row order is the order of the work.
constexpr Step kSteps[] = {
    // The dark border of a feeder lies where the sheet was scanned, and must not be taken for ink or a hole.
    {any<&_IE_PARAM::doEdgeFill>, fillEdges},
    // Holes and inks are known by their colours, so they go before anything changes these.
    {any<&_IE_PARAM::doPunchHole>, removePunchHoles},
    {[](const PageForm& page, const Request& request) { return request.param.doColorDrop && page.isColor(); },
     dropColor},
    // Grain goes before a curve or an edge filter makes more of it.
    {shades<&_IE_PARAM::doSmoothing>, smooth},
    {shades<&_IE_PARAM::doToneAdjust>, adjustTone},
    {shades<&_IE_PARAM::doAutoTone>, stretchTone},
    {shades<&_IE_PARAM::doEdgeEnhance>, enhanceEdges},
    // All that needs colours and shades is done; what follows works on shapes, and faster on fewer bits.
    {[](const PageForm& page, const Request& request) { return request.target() != Target::Keep && page.isColor(); },
     reduceToGray},
    {[](const PageForm& page, const Request& request) { return request.target() == Target::Mono && !page.isMono(); },
     reduceToMono},
    // Specks would be joined and lines thickened by what follows them.
    {any<&_IE_PARAM::doNoiseRemoval>, removeNoise},
    {any<&_IE_PARAM::doLineRemoval>, removeLines},
    {any<&_IE_PARAM::doDotTextCombine>, joinDots},
    {any<&_IE_PARAM::doThickText>, thickenText},
    // Text is as clean as it gets, and not yet dissolved into dots.
    {any<&_IE_PARAM::doAutoRotate>, turnUpright},
    {[](const PageForm& page, const Request& request) {
       return request.target() == Target::Diffused && !page.isMono();
     },
     diffuse},
};

}  // namespace

Target Request::target() const {
  switch (param.colorClass) {
    case 1:
      return Target::Mono;
    case 2:
      return Target::Diffused;
    case 3:
      return Target::Gray;
    case 4:
      return Target::Keep;
    default:  // automatic colour
      return autoColorMode == 2 ? Target::Mono : autoColorMode == 1 ? Target::Gray : Target::Keep;
  }
}

bool isAnythingAsked(const PageForm& form, const Request& request) {
  for (const Step& step : kSteps) {
    if (step.isAsked(form, request)) return true;
  }
  return false;
}

bool enhance(Page& page, const Request& request) {
  bool hasChanged = false;
  for (const Step& step : kSteps) {
    if (step.isAsked(page, request) && step.run(page, request)) hasChanged = true;
  }
  return hasChanged;
}

}  // namespace image_enhance
