// The commands of the second generation that carry keys, read strictly.
// Each call fills its settings, or gives the reason why the command is refused.
#pragma once
#include <optional>

#include "protocol/key_table.h"
#include "protocol/scan_settings.h"

namespace vscan::gen2 {

std::optional<Refusal> readScanSettings(const Frame& frame, ScanSettings& settings);  // SSP
std::optional<Refusal> readStart(const Frame& frame, StartSettings& settings);        // XSC
std::optional<Refusal> readDocumentCheck(const Frame& frame, DocumentCheck& check);   // CKD
std::optional<Refusal> readAbort(const Frame& frame, Abort& abort);                   // ABT
std::optional<Refusal> readNoKeys(const Frame& frame);                                // Q, QDI and all others

}  // namespace vscan::gen2
