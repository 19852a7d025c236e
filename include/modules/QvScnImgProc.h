// QvScnImgProc.so, a module that the loader can provide and the core itself does not use.
//
// The module exports `extern "C" IQvScnImgProc* CreateInstance()`.
#pragma once

namespace orvalle_scan_api {

class IQvScnImgProc {
 public:
  virtual ~IQvScnImgProc() = default;
};

}  // namespace orvalle_scan_api
