// Something that the owner of the scanner asked for and that cannot be done: a file, a profile, an option.
// what() is a sentence for people.
#pragma once
#include <stdexcept>

namespace vscan {

struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace vscan
