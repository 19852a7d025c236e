// The texts of set-up files, and dumps of texts.
#pragma once

#include <string>

#include "tests/foundation/log_sandbox.h"

namespace foundation_test {

using Messages = std::vector<std::string>;

inline std::string setupLines(int level, int outDir, int writeForm, int packBits, int jpg, int preScan, int preEnhance,
                              int final) {
  return "LogLevel=" + std::to_string(level) + "\nOutDir=" + std::to_string(outDir) +
         "\nWriteForm=" + std::to_string(writeForm) + "\nDumpPackBits=" + std::to_string(packBits) +
         "\nDumpJpg=" + std::to_string(jpg) + "\nDumpPreScanDec=" + std::to_string(preScan) +
         "\nDumpPreImagEnhance=" + std::to_string(preEnhance) + "\nDumpFinalData=" + std::to_string(final) + "\n";
}

inline void dump(const std::string& bytes, const char* name, int page) {
  g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()), name,
                            page);
}

}  // namespace foundation_test
