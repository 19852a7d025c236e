#include "command/ScanCmdCom.h"

#include <algorithm>
#include <new>

#include "foundation/OutputLog.h"

namespace orvalle_scan_api {
namespace {
// Parsers may look a few bytes behind a body; those read 0.
constexpr int kSlackBytes = 8;
}  // namespace

std::uint8_t* newResponseBody(const unsigned char* data, int size) {
  auto* body = new (std::nothrow) std::uint8_t[static_cast<std::size_t>(size) + kSlackBytes];
  if (body != nullptr) std::fill_n(std::copy_n(data, size, body), kSlackBytes, std::uint8_t{0});
  return body;
}

QSRSLT CScanCmdCom::ValidateCmdResSignature(const unsigned char* received, const char* expected, int size) const {
  if (received == nullptr || expected == nullptr || size < 1) return QSRSLT_CMD_BAD_ARGUMENT;
  for (int i = 0; i < size; ++i) {
    if (received[i] == static_cast<unsigned char>(expected[i])) continue;
    g_ScanDevApiLog.WriteLog(0, "Invalid signature of response data.");
    return QSRSLT_CMD_WRONG_SIGNATURE;
  }
  return QSRSLT_SUCCESS;
}

QSRSLT CScanCmdCom::CopyCmdResDataFromRxBuff(const unsigned char* data, int size,
                                             _SCANCMD_RESPONSE_INFO& response) const {
  if (data == nullptr || size < 1) return QSRSLT_CMD_BAD_ARGUMENT;
  FreeCmdResponseData(response);
  response.data = newResponseBody(data, size);
  response.size = response.data == nullptr ? 0 : size;
  return response.data == nullptr ? QSRSLT_CMD_TOO_LARGE : QSRSLT_SUCCESS;
}

void CScanCmdCom::FreeCmdResponseData(_SCANCMD_RESPONSE_INFO& response) const {
  delete[] response.data;
  response = {};
}

}  // namespace orvalle_scan_api
