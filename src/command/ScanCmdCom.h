// What the command objects share: checking signatures and keeping response bodies.
#pragma once

#include "command/scancmd_param.h"
#include "result_codes.h"

namespace orvalle_scan_api {

class CScanCmdCom {
 public:
  virtual ~CScanCmdCom() = default;

  //   0x70210002  null pointers or size below 1    0x10210043  the bytes differ
  QSRSLT ValidateCmdResSignature(const unsigned char* received, const char* expected, int size) const;
  // Copies the body into an array of the record's own, replacing what it held; 8 bytes of 0 follow the body.
  //   0x70210002  null data or size below 1
  QSRSLT CopyCmdResDataFromRxBuff(const unsigned char* data, int size, _SCANCMD_RESPONSE_INFO& response) const;
  void FreeCmdResponseData(_SCANCMD_RESPONSE_INFO& response) const;
};

// The array behind a response record: size bytes and 8 of 0. Null when out of memory.
std::uint8_t* newResponseBody(const unsigned char* data, int size);

}  // namespace orvalle_scan_api
