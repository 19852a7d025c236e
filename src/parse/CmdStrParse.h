// Cuts values out of the texts that a first-generation device answers.
// Threads: reentrant; it has no state.
#pragma once

#include "foundation/qvtcl/TString.h"

namespace orvalle_scan_api {

class CCmdStrParse {
 public:
  // What stands behind the first begin, up to the next end or to the end of the source; empty where begin is not found.
  //
  // Kept: begin is found wherever it stands first, also inside a longer key or another key's value ("F=" in "DF=1"). It
  // looks like a missing test for the start of a line; devices' texts are read this way. Pinned by CmdStrParse_test
  // "TheFirstHitWinsAlsoInsideAnotherKey".
  qvtcl::CTString GetStrPart(qvtcl::CTString source, qvtcl::CTString begin, qvtcl::CTString end) const;

  // The token of a list by its number, counted from 1; below that the first. Empty where there are not so many, which
  // cannot be told from an empty token, and for an empty delimiter.
  //
  // Kept: the search for the first delimiter starts at the delimiter's length less one, so that a longer delimiter at
  // the very start of the source is not seen there. Pinned by CmdStrParse_test
  // "ALongDelimiterAtTheVeryStartIsNotSeen".
  qvtcl::CTString GetStrPart(qvtcl::CTString source, qvtcl::CTString delimiter, int index) const;

  // Kept: the number of delimiters, overlapping ones included: one less than the number of tokens. Pinned by
  // CmdStrParse_test "DelimitersAreCountedNotTokens".
  int GetTokenCount(qvtcl::CTString source, qvtcl::CTString delimiter) const;
};

}  // namespace orvalle_scan_api
