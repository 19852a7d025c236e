// What the device says it will do, and the two tokenizers with any markers.
#include "fuzz/parse/body_fuzz.h"
#include "parse/CmdStrParse.h"
#include "parse/ParseCmdRes_v1.h"
#include "parse/answer_text_v1.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedBody body(data, size);
  const auto actual = orvalle_scan_api::CParseCmdRes_v1().ParseActualParameterResponse(body.data(), body.size());
  touchRecord(actual);

  // The first byte parts the rest into the list's delimiter and the list.
  if (size < 2) return 0;
  const long delimiterBytes = std::min<long>(data[0] % 8, body.size() - 1);
  const auto delimiter = orvalle_scan_api::answerText(body.data() + 1, delimiterBytes);
  const auto list = orvalle_scan_api::answerText(body.data() + 1 + delimiterBytes, body.size() - 1 - delimiterBytes);
  const orvalle_scan_api::CCmdStrParse parse;
  for (const int index : {-1, 1, 2, 3, 1000000}) {
    const auto token = parse.GetStrPart(list, delimiter, index);
    touchAll(reinterpret_cast<const std::uint8_t*>(token.C_str()), token.Length());
  }
  const auto part = parse.GetStrPart(list, delimiter, delimiter);
  touchAll(reinterpret_cast<const std::uint8_t*>(part.C_str()), part.Length());
  if (parse.GetTokenCount(list, delimiter) > body.size()) __builtin_trap();
  return 0;
}
