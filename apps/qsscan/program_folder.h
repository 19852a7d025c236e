// The folder of this program, from which everything that was installed with it is found.
#pragma once

#include <string>

namespace qsscan {

// "." where the system does not tell.
std::string programFolder();

}  // namespace qsscan
