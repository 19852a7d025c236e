// Sleeping.
#pragma once

namespace qvtcl {

class CTTime {
 public:
  virtual ~CTTime() = default;
  // One sleep; an interrupted one is not resumed.
  void Sleep_ms(unsigned long milliseconds);
};

}  // namespace qvtcl
