#include "option_values.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "exit_codes.h"
#include "format.h"

namespace qsscan {
namespace {

// They steer the program, not a scan.
constexpr const char* kNotForValues[] = {"help", "preset", "config", "show", "once"};

[[noreturn]] void refuse(const OptionValue& value, const std::string& why) {
  throw CommandError(ExitCode::kConfiguration, value.place + ": " + why);
}

CLI::Option& findOption(CLI::App& command, const OptionValue& value) {
  const bool isMeant =
      std::find(std::begin(kNotForValues), std::end(kNotForValues), value.option) == std::end(kNotForValues);
  const std::string dashes = value.option.size() == 1 ? "-" : "--";
  CLI::Option* option = isMeant ? command.get_option_no_throw(dashes + value.option) : nullptr;
  if (option == nullptr) {
    refuse(value, "\"" + value.option + "\" is no option of a scan. Write the long options that qsscan scan --help " +
                      "lists, without their dashes.");
  }
  return *option;
}

// Whether the command has a name for its files, and whether its ending tells the format.
struct NamedOutput {
  bool isNamed = false;
  bool tellsFormat = false;
};

NamedOutput namedOutput(const CLI::App& command) {
  NamedOutput named;
  for (const char* option : {"--output", "--batch"}) {
    for (const std::string& file : command.get_option(option)->results()) {
      named.isNamed = true;
      const auto dot = file.rfind('.');
      named.tellsFormat = named.tellsFormat || (dot != std::string::npos && findFormat(file.substr(dot + 1)));
    }
  }
  return named;
}

bool isLeftOut(const std::string& option, const NamedOutput& named) {
  if (option == "output" || option == "batch") return named.isNamed;
  return option == "format" && named.tellsFormat;
}

void give(CLI::Option& option, const OptionValue& value) {
  const bool isSwitch = option.get_items_expected_max() == 0;
  const bool takesNothing = option.get_items_expected_min() == 0;
  const bool isFlag = value.value == "true" || value.value == "false";
  if (isSwitch && !isFlag) refuse(value, "\"" + value.option + "\" is true or false.");
  if (isFlag && !takesNothing) refuse(value, "\"" + value.option + "\" needs a value, not true or false.");
  // What may stand without a value is so when it is on. Off is a value: it keeps others from switching it on.
  const bool standsAlone = !isSwitch && value.value == "true";
  try {
    option.add_result(standsAlone ? "" : value.value);
    option.run_callback();
  } catch (const CLI::ParseError& error) {
    refuse(value, std::string(error.what()) + ".");
  }
}

}  // namespace

void checkOptionNames(CLI::App& command, const std::vector<OptionValue>& values) {
  for (const OptionValue& value : values) findOption(command, value);
}

void addOptionValues(CLI::App& command, const std::vector<OptionValue>& values) {
  const NamedOutput named = namedOutput(command);
  for (const OptionValue& value : values) {
    CLI::Option& option = findOption(command, value);
    if (option.count() == 0 && !isLeftOut(value.option, named)) give(option, value);
  }
}

}  // namespace qsscan
