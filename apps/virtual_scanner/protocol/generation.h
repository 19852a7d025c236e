// The two command generations. A device speaks one of them; the answer to Q tells which.
#pragma once

namespace vscan {

enum class Generation { First = 1, Second = 2 };

}  // namespace vscan
