#include "parse/answer_text_v1.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <string>

#include "parse/CmdStrParse.h"

namespace orvalle_scan_api {

using qvtcl::CTString;

CTString answerText(const unsigned char* data, long size) {
  const std::string terminated(data, data + size);
  return CTString(terminated.c_str());
}

CTString lineValue(const CTString& text, const CTString& key) { return CCmdStrParse().GetStrPart(text, key, "\n"); }

bool contains(const CTString& text, const char* part) { return text.Find(part) != CTString::nposi; }

int decimalOf(const CTString& text) {
  return static_cast<int>(std::clamp<long>(std::strtol(text.C_str(), nullptr, 10), INT_MIN, INT_MAX));
}

}  // namespace orvalle_scan_api
