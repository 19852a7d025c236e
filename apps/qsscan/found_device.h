// A device that a search found.
#pragma once

#include <string>
#include <vector>

namespace qsscan {

struct FoundDevice {
  std::string address;  // as -d takes it
  std::string about;    // for people: model, place; may be empty
  std::string problem;  // a sentence where it cannot be used as it is
};

struct Search {
  std::vector<FoundDevice> devices;
  std::string problem;  // a sentence where the search itself was not possible
};

}  // namespace qsscan
