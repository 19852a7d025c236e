// The commands of the first generation that carry lines, read strictly.
// Each call fills its settings, or gives the reason why the command is refused.
// Threads: reentrant.
#pragma once
#include <optional>

#include "protocol/key_table.h"
#include "protocol/scan_settings.h"

namespace vscan::gen1 {

// What I asks about and what X starts. I has no area and none of the picture's settings.
struct ScanRequest {
  ScanSettings settings;
  StartSettings start;
};

struct DocumentQuestion {
  Resolution resolution;
  ColorMode color = ColorMode::Color;
};

std::optional<Refusal> readSource(const Frame& frame, PaperSource& source);                   // D, S
std::optional<Refusal> readQuestion(const Frame& frame, ScanRequest& request);                // I
std::optional<Refusal> readStart(const Frame& frame, ScanRequest& request);                   // X
std::optional<Refusal> readDocumentQuestion(const Frame& frame, DocumentQuestion& question);  // E
std::optional<Refusal> readNoLines(const Frame& frame);                                       // Q, K, P, R

}  // namespace vscan::gen1
