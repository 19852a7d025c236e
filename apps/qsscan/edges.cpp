#include "edges.h"

#include <array>
#include <charconv>
#include <cmath>

#include "exit_codes.h"

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr CAP kPresent = 2;
constexpr double kWidestMm = 100;

std::int32_t hundredths(double mm) { return static_cast<std::int32_t>(std::lround(mm * 100)); }

std::optional<double> findWidth(std::string_view text) {
  double mm = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), mm);
  const bool isNumber = error == std::errc{} && end == text.data() + text.size();
  // Written so that "not a number" is refused too.
  if (!isNumber || !(mm >= 0 && mm <= kWidestMm)) return std::nullopt;
  return mm;
}

void setCut(const EdgeWidths& cut, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (capability.edgeCut != kPresent) {
    throw CommandError(
        ExitCode::kNotServed,
        "The device cannot leave the edges out. Use -l -t -x -y for a part of the page, or --edge-fill.");
  }
  if (settings.paperType == PAPERTYPE_AUTO) {
    throw CommandError(ExitCode::kUsage, "--edge-cut needs a page size that is known: name one with --page-size.");
  }
  settings.edgeCut.enable = 1;
  // The record holds what is added to each side of the page.
  settings.edgeCut.left = -hundredths(cut.leftMm);
  settings.edgeCut.top = -hundredths(cut.topMm);
  settings.edgeCut.right = -hundredths(cut.rightMm);
  settings.edgeCut.bottom = -hundredths(cut.bottomMm);
  settings.edgeCut.unit = UNIT_MILLIMETER;
}

}  // namespace

std::optional<EdgeWidths> findEdgeWidths(std::string_view text) {
  std::array<double, 4> widths{};
  std::size_t count = 0;
  for (;;) {
    const auto comma = text.find(',');
    const auto mm = findWidth(text.substr(0, comma));
    if (!mm || count == widths.size()) return std::nullopt;
    widths[count++] = *mm;
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  if (count == 1) widths.fill(widths[0]);
  if (count != 1 && count != widths.size()) return std::nullopt;
  return EdgeWidths{widths[0], widths[1], widths[2], widths[3]};
}

void setEdges(const EdgeWish& wish, const Capability& capability, QS_SCANNER_PARAMETERS& settings) {
  if (wish.cut) setCut(*wish.cut, capability, settings);
  if (!wish.fill) return;
  if (capability.edgeFill.cap != kPresent) {
    throw CommandError(ExitCode::kNotServed, "Edges cannot be painted over. Leave out --edge-fill.");
  }
  EDGEFILL& fill = settings.edgeFill;
  fill.enable = 1;
  fill.mode = 0;  // hundredths of a millimetre
  fill.first = hundredths(wish.fill->leftMm);
  fill.second = hundredths(wish.fill->topMm);
  fill.third = hundredths(wish.fill->rightMm);
  fill.fourth = hundredths(wish.fill->bottomMm);
  fill.fifth = wish.fillIsBlack ? 1 : 0;
}

}  // namespace qsscan
