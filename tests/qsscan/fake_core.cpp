// The fake as a library that qsscan itself can load. QSSCAN_FAKE scripts it: words of NAME=VALUE, separated by blanks.
//   pages=N width=N height=N depth=N dpi=N polls=N   what comes
//   fail=HEX     the failure after the pages         canceled silence gone   other ends
//   start=HEX caps=HEX init=HEX                      the results of the calls before
//   aftercancel=N deaf                               how an abort is answered
#include <cstdlib>
#include <sstream>

#include "fake_scan_core.h"

namespace {

using namespace qsscan_test;

FakeScript readScript() {
  FakeScript script;
  script.capability = officeCapability();
  FakePage page;
  int pages = 1;
  const char* text = std::getenv("QSSCAN_FAKE");
  std::istringstream words(text != nullptr ? text : "");
  for (std::string word; words >> word;) {
    const auto equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const char* value = equals == std::string::npos ? "" : word.c_str() + equals + 1;
    const int number = std::atoi(value);
    const auto code = static_cast<QSRSLT>(std::strtoul(value, nullptr, 16));
    if (name == "pages") pages = number;
    if (name == "width") page.widthPx = number;
    if (name == "height") page.heightPx = number;
    if (name == "depth") page.bitsPerPixel = number;
    if (name == "dpi") page.dpi = number;
    if (name == "blank") page.blank = true;
    if (name == "polls") script.pollsPerPage = number;
    if (name == "fail") script.after = AfterPages::kFailure, script.failure = code;
    if (name == "canceled") script.after = AfterPages::kCanceled;
    if (name == "silence") script.after = AfterPages::kSilence;
    if (name == "gone") script.after = AfterPages::kThreadGone;
    if (name == "start") script.startResult = code;
    if (name == "caps") script.capabilityResult = code;
    if (name == "init") script.initializeResult = code;
    if (name == "aftercancel") script.pagesAfterAbort = number;
    if (name == "deaf") script.deafToAbort = true;
  }
  script.pages.assign(static_cast<std::size_t>(pages), page);
  return script;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IScanCoreApi* CreateInstance() {
  return new FakeScanCore(readScript());
}
