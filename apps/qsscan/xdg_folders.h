// Where the files of a user lie.
#pragma once

#include <string>

namespace qsscan {

// "$XDG_CONFIG_HOME/qsscan" or "$HOME/.config/qsscan"; empty where neither variable is set. A relative path in the XDG
// variable does not count.
std::string userConfigFolder();

// "$XDG_STATE_HOME/qsscan" or "$HOME/.local/state/qsscan", by the same rules.
std::string userStateFolder();

}  // namespace qsscan
