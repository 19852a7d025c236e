#include "device/profile.h"

#include <charconv>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "support/failure.h"

namespace vscan {
namespace {

using Json = nlohmann::json;

struct OwnKey {
  std::string_view key;
  std::int64_t Profile::*member;
  std::int64_t minimum;
  std::int64_t maximum;
};

constexpr OwnKey kOwnKeys[] = {
    {"firstBodyByte", &Profile::firstBodyByte, 0x10, 0x7F},
    {"minResolution", &Profile::minResolution, 1, 65535},
    {"threshold", &Profile::threshold, 0, 255},
};

std::int64_t numberFrom(const Json& value, const std::string& key) {
  if (value.is_number_integer()) return value.get<std::int64_t>();
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    const bool isHex = text.starts_with("0x");
    const char* const end = text.data() + text.size();
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data() + (isHex ? 2 : 0), end, number, isHex ? 16 : 10);
    if (error == std::errc() && stop == end) return number;
  }
  throw Failure(key + " needs a whole number, such as 258 or \"0x0102\", not " + value.dump());
}

void setValue(Profile& profile, const std::string& key, const Json& value) {
  if (key == "modelName") {
    if (!value.is_string()) throw Failure("modelName needs a text");
    profile.capability.setModelName(value.get<std::string>());
    return;
  }
  for (const OwnKey& own : kOwnKeys) {
    if (own.key != key) continue;
    const std::int64_t number = numberFrom(value, key);
    if (number < own.minimum || number > own.maximum) {
      throw Failure(key + " lies between " + std::to_string(own.minimum) + " and " + std::to_string(own.maximum));
    }
    profile.*own.member = number;
    return;
  }
  if (!Capability::hasField(key)) throw Failure("there is no key \"" + key + "\"");
  if (!value.is_array()) {
    profile.capability.set(key, 0, numberFrom(value, key));
    return;
  }
  for (std::size_t place = 0; place < value.size(); ++place) {
    profile.capability.set(key, place, numberFrom(value[place], key));
  }
}

// The device works with these; a profile that contradicts itself is refused before a host meets it.
void checkProfile(const Profile& profile) {
  if (!profile.hasFlatbed() && !profile.hasFeeder())
    throw Failure("paperSource names neither a feeder (1) nor a bed (2)");
  const auto needed = [&](const char* key, std::size_t place, std::int64_t minimum) {
    if (profile.capability.at(key, place) < minimum) {
      throw Failure(std::string(key) + "[" + std::to_string(place) + "] has to be at least " + std::to_string(minimum));
    }
  };
  for (const std::size_t axis : {0u, 1u}) {
    for (const std::size_t source : {0u, 2u, 4u}) {
      const bool isUsed = source == 0 ? profile.hasFlatbed() : source == 2 ? profile.hasFeeder() : profile.hasDuplex();
      if (!isUsed) continue;
      needed("opticalResolution", source + axis, profile.minResolution);
      needed("scanSizeMax", source + axis, 1);
    }
  }
}

}  // namespace

Profile parseProfile(std::string_view json, const std::string& fileName) {
  try {
    const Json root = Json::parse(json);
    if (!root.is_object()) throw Failure("a profile is a JSON object");
    Profile profile;
    for (const auto& [key, value] : root.items()) {
      if (key == "name") {
        if (!value.is_string()) throw Failure("name needs a text");
        profile.name = value.get<std::string>();
      } else if (key == "generation") {
        if (numberFrom(value, key) != 2) throw Failure("generation: this scanner speaks generation 2");
      } else if (key == "capability") {
        if (!value.is_object()) throw Failure("capability needs an object of fields");
        for (const auto& [field, fieldValue] : value.items()) setValue(profile, field, fieldValue);
      } else {
        setValue(profile, key, value);
      }
    }
    checkProfile(profile);
    return profile;
  } catch (const Json::exception& error) {
    throw Failure("profile " + fileName + ": " + error.what());
  } catch (const Failure& failure) {
    throw Failure("profile " + fileName + ": " + failure.what());
  }
}

Profile loadProfile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  if (!in || !(text << in.rdbuf())) throw Failure("cannot read the profile " + file.string());
  return parseProfile(text.str(), file.string());
}

void overrideProfile(Profile& profile, const std::string& assignment) {
  const auto equals = assignment.find('=');
  if (equals == std::string::npos) throw Failure("--set needs KEY=VALUE, not \"" + assignment + "\"");
  std::string key = assignment.substr(0, equals);
  const std::string text = assignment.substr(equals + 1);
  try {
    Json value = Json::parse(text, nullptr, false);
    if (value.is_discarded() || key == "modelName") value = text;  // 0x17 and names are no JSON
    const auto bracket = key.find('[');
    if (bracket == std::string::npos) {
      setValue(profile, key, value);
    } else {
      const std::string place = key.substr(bracket + 1);
      key.resize(bracket);
      std::size_t number = 0;
      const auto [stop, error] = std::from_chars(place.data(), place.data() + place.size(), number);
      if (error != std::errc() || stop == place.data() || std::string_view(stop) != "]") {
        throw Failure("a place is written as in compressType[2]");
      }
      profile.capability.set(key, number, numberFrom(value, key));
    }
    checkProfile(profile);
  } catch (const Failure& failure) {
    throw Failure("--set " + assignment + ": " + failure.what());
  }
}

std::filesystem::path findProfile(const std::string& nameOrFile) {
  if (nameOrFile.find('/') != std::string::npos || nameOrFile.ends_with(".json")) return nameOrFile;
  std::error_code error;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) throw Failure("cannot find the folder of this program: " + error.message());
  const auto folder = program.parent_path().parent_path() / "share" / "qs-virtual-scanner" / "profiles";
  const auto file = folder / (nameOrFile + ".json");
  if (!std::filesystem::exists(file, error)) {
    throw Failure("there is no profile \"" + nameOrFile + "\" in " + folder.string() +
                  "; give a name from there or a file ending in .json");
  }
  return file;
}

}  // namespace vscan
