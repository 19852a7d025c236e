// qsscan list.
#pragma once

#include "options.h"

namespace qsscan {

// Prints to standard output; gives the exit code.
int runList(const Options& options);

}  // namespace qsscan
