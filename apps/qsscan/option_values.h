// Options from elsewhere than the command line: presets, and what a device's panel asks for.
#pragma once

#include <vector>

#include "configuration.h"

namespace CLI {
class App;
}

namespace qsscan {

// Throws CommandError (configuration) for an option that a scan does not have.
void checkOptionNames(CLI::App& command, const std::vector<OptionValue>& values);

// Gives the values to those options of a parsed command that have none yet. Where a file has been named already, the
// values name no other one, nor a format where the ending of that name tells it. Throws CommandError (configuration)
// for a value that its option does not take.
void addOptionValues(CLI::App& command, const std::vector<OptionValue>& values);

}  // namespace qsscan
