// A copy for bytes that nobody reads soon.
#pragma once

#include <cstddef>

namespace orvalle_scan_api {

// As memcpy, past the caches where the machine can: memory that is only written need not be read first. Many calls are
// followed by one streamCopyDone before another thread may read what was written.
void streamCopy(unsigned char* to, const unsigned char* from, std::size_t bytes);
void streamCopyDone();

}  // namespace orvalle_scan_api
