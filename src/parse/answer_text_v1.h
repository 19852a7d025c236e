// What the text answers of the first generation have in common: lines of key and value, and decimal numbers.
// Threads: reentrant.
#pragma once

#include "foundation/qvtcl/TString.h"

namespace orvalle_scan_api {

// The text of a body: all of it up to the first zero byte.
qvtcl::CTString answerText(const unsigned char* data, long size);

// The value of a key, up to the end of its line; empty where the key is missing.
qvtcl::CTString lineValue(const qvtcl::CTString& text, const qvtcl::CTString& key);

bool contains(const qvtcl::CTString& text, const char* part);

// The number that the text begins with, sign allowed; 0 without digits, the nearest number where it does not fit.
int decimalOf(const qvtcl::CTString& text);

}  // namespace orvalle_scan_api
