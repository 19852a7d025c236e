// What kind of scanner this is: its capability answer and the few things that the answer does not tell.
// A profile is a JSON file; its single values can be overridden one by one.
// Threads: read-only once loaded.
#pragma once
#include <filesystem>
#include <string>
#include <string_view>

#include "device/abilities.h"
#include "protocol/capability.h"

namespace vscan {

struct Profile {
  std::string name;
  std::int64_t firstBodyByte = 0x12;  // of the second generation's answer to Q: 0x10 to 0x7F
  std::int64_t blockBytes = 73;       // of the first generation's answer to Q: an older device sends fewer
  std::int64_t minResolution = 50;    // dots per inch
  std::int64_t threshold = 128;       // of a mono scan that names none
  Capability capability{Generation::Second};

  Generation generation() const { return capability.generation(); }
  Abilities abilities() const { return abilitiesOf(capability); }
};

// All three throw Failure with a sentence that names the file, the key and what is wrong.
Profile parseProfile(std::string_view json, const std::string& fileName);
Profile loadProfile(const std::filesystem::path& file);

// One override "key=value": value is a number (decimal or 0x...), a list "[1,2]" or, for modelName, text; key can
// carry a place, as in "compressType[2]=3".
void overrideProfile(Profile& profile, const std::string& assignment);

// A name without slash and without ".json" is looked up among the profiles that lie beside the program, in
// ../share/qs-virtual-scanner/profiles seen from its folder; anything else is a file.
std::filesystem::path findProfile(const std::string& nameOrFile);

}  // namespace vscan
