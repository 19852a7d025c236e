#include "parse/CmdStrParse.h"

namespace orvalle_scan_api {

using qvtcl::CTString;

CTString CCmdStrParse::GetStrPart(CTString source, CTString begin, CTString end) const {
  const unsigned long hit = source.Find(begin);
  if (hit == CTString::nposi) return {};
  const CTString behind = source.Mid(hit + begin.Length());
  const unsigned long cut = behind.Find(end);
  return cut == CTString::nposi ? behind : behind.Left(cut);
}

CTString CCmdStrParse::GetStrPart(CTString source, CTString delimiter, int index) const {
  if (delimiter.IsEmpty()) return {};
  unsigned long token = 0;
  unsigned long searchFrom = delimiter.Length() - 1;
  for (int step = 1; step < index; ++step) {
    const unsigned long hit = source.Find(delimiter, searchFrom);
    if (hit == CTString::nposi) return {};
    token = searchFrom = hit + delimiter.Length();
  }
  const unsigned long end = source.Find(delimiter, searchFrom);
  return source.Mid(token, end == CTString::nposi ? CTString::nolen : end - token);
}

int CCmdStrParse::GetTokenCount(CTString source, CTString delimiter) const {
  int count = 0;
  for (unsigned long hit = source.Find(delimiter); hit != CTString::nposi; hit = source.Find(delimiter, hit + 1)) {
    ++count;
  }
  return count;
}

}  // namespace orvalle_scan_api
