// The steps that the commands of both generations share: what is tested before a frame is built, sending it, and giving
// the caller what is stored.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include "command/CmdDevAccess.h"
#include "command/scancmd_param.h"

namespace orvalle_scan_api::command_exchange {

using MakeFrame = std::function<std::string()>;
// What the caller handed in: no pointer of it may be null.
using Arguments = std::initializer_list<const void*>;

// Logs that there is no CCmdDevAccess and gives its code.
QSRSLT noAccess();

// Builds the frame and sends it; neither happens without access or with a null argument.
//   0x40210011  access is null    0x70210002  an argument is null    0x10210034  the frame is empty
//   or the transport's code
QSRSLT send(CCmdDevAccess* access, Arguments arguments, const MakeFrame& makeFrame);

// send, then receive, which fills stored; the answer of before is freed once the arguments are known to be there.
// Whatever happens, *response becomes what is stored at the end. A null response is a null argument.
QSRSLT query(CCmdDevAccess* access, Arguments arguments, const MakeFrame& makeFrame,
             const std::function<QSRSLT()>& receive, _SCANCMD_RESPONSE_INFO& stored, _SCANCMD_RESPONSE_INFO* response);

// Logs a result byte that is not the expected one and gives its code, 0x10240000 plus the byte.
QSRSLT errorResult(unsigned char result);

}  // namespace orvalle_scan_api::command_exchange
