#include "command/command_lines.h"

#include "foundation/OutputLog.h"

namespace orvalle_scan_api::command_lines {
namespace {

constexpr char kEscape = '\x1B';
constexpr char kLineEnd = '\x0A';
constexpr char kFrameEnd = '\x80';

std::string logged(const char* mnemonic, std::string command) {
  g_ScanDevApiLog.WriteLog(0, "%s Command:\r\n%s", mnemonic, command.c_str());
  return command;
}

}  // namespace

std::string line(const char* key, std::string_view value) {
  return std::string(key).append("=").append(value).append(1, kLineEnd);
}

std::string lineWithoutKey(const char* value) { return std::string(value).append(1, kLineEnd); }

std::string frame(const char* mnemonic, const std::string& lines) {
  return logged(mnemonic,
                std::string(1, kEscape).append(mnemonic).append(1, kLineEnd).append(lines).append(1, kFrameEnd));
}

std::string noFrame(const char* mnemonic) { return logged(mnemonic, {}); }

}  // namespace orvalle_scan_api::command_lines
