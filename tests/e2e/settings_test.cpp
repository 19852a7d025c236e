// Options that reach the device, and what it makes of them.
#include "pdf_file.h"
#include "scan_test.h"
#include "sheets.h"

namespace e2e {
namespace {}  // namespace
}  // namespace e2e
