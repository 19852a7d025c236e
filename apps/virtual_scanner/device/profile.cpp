#include "device/profile.h"

#include <charconv>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <utility>

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
    {"blockBytes", &Profile::blockBytes, 1, 254},
    {"minResolution", &Profile::minResolution, 1, 65535},
    {"threshold", &Profile::threshold, 0, 255},
};

std::int64_t numberFrom(const Json& value, const std::string& key) {
  const bool isTooLarge = value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>());
  if (value.is_number_integer() && !isTooLarge) return value.get<std::int64_t>();
  if (value.is_string()) {
    const auto& text = value.get_ref<const std::string&>();
    const bool isHex = text.starts_with("0x");
    const char* const end = text.data() + text.size();
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data() + (isHex ? 2 : 0), end, number, isHex ? 16 : 10);
    if (error == std::errc() && stop == end && (!isHex || text[2] != '-')) return number;
  }
  throw Failure(key + " needs a whole number, such as 258 or \"0x0102\", not " +
                value.dump(-1, ' ', false, Json::error_handler_t::replace));
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
  if (!profile.capability.hasField(key)) throw Failure("there is no key \"" + key + "\"");
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
  const Abilities can = profile.abilities();
  if (!can.hasFlatbed && !can.hasFeeder) {
    throw Failure(profile.generation() == Generation::First ? "flatbedMaxX and adfMaxX are 0: neither bed nor feeder"
                                                            : "paperSource names neither a feeder (1) nor a bed (2)");
  }
  const std::int64_t version = profile.generation() == Generation::First ? profile.capability.at("version") : 0;
  if (version >= 0x10 && version <= 0x7F) {
    throw Failure("version " + std::to_string(version) + " tells hosts that this is a second-generation device");
  }
  const struct {
    const char* name;
    bool isUsed;
  } paths[] = {{"the bed", can.hasFlatbed},
               {"one side in the feeder", can.hasFeeder},
               {"both sides in the feeder", can.hasDuplex}};
  for (std::size_t path = 0; path < can.paths.size(); ++path) {
    if (!paths[path].isUsed) continue;
    for (std::size_t axis = 0; axis < 2; ++axis) {
      const std::string what = std::string(paths[path].name) + (axis == 0 ? ", x" : ", y");
      if (can.paths[path].dpi[axis] < profile.minResolution) {
        throw Failure("the optical resolution of " + what + ", has to be at least minResolution");
      }
      if (can.paths[path].size[axis] < 1) throw Failure("the largest area of " + what + ", has to be at least 1");
    }
  }
}

Generation generationOf(const Json& root) {
  if (!root.contains("generation")) return Generation::Second;
  const std::int64_t number = numberFrom(root["generation"], "generation");
  if (number != 1 && number != 2) throw Failure("generation is 1 or 2");
  return static_cast<Generation>(number);
}

}  // namespace

Profile parseProfile(std::string_view json, const std::string& fileName) {
  try {
    const Json root = Json::parse(json);
    if (!root.is_object()) throw Failure("a profile is a JSON object");
    Profile profile;
    profile.capability = Capability(generationOf(root));
    for (const auto& [key, value] : root.items()) {
      if (key == "name") {
        if (!value.is_string()) throw Failure("name needs a text");
        profile.name = value.get<std::string>();
      } else if (key == "capability") {
        if (!value.is_object()) throw Failure("capability needs an object of fields");
        for (const auto& [field, fieldValue] : value.items()) setValue(profile, field, fieldValue);
      } else if (key != "generation") {
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
