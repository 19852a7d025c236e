// Fills the man page and the bash completion from the options and tables of the program, so that neither can tell
// something else than the program does.
//
//   qsscan-pages MAN-TEMPLATE MAN-PAGE COMPLETION-TEMPLATE COMPLETION
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "command_line.h"
#include "exit_codes.h"
#include "format.h"
#include "paper.h"
#include "scan_wish.h"

namespace {

using namespace qsscan;

std::string joined(const std::vector<std::string>& words, const char* between) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
  return text;
}

// "-d", "--device"
std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

bool hasOption(const CLI::App& command, const CLI::Option& option) {
  return command.get_option_no_throw(option.get_name()) != nullptr;
}

std::string roff(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '-') out += '\\';
    out += c;
    if (c == '\\') out += 'e';
  }
  const bool looksLikeARequest = !out.empty() && (out[0] == '.' || out[0] == '\'');
  return looksLikeARequest ? "\\&" + out : out;
}

// "INT" of "INT in [1 - 100]": help tells the range in its own words.
std::string valueName(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  return type.substr(0, type.find_first_of(": "));
}

std::string manOption(const CLI::Option& option) {
  std::string head;
  for (const std::string& name : namesOf(option)) head += (head.empty() ? "\\fB" : ", \\fB") + roff(name) + "\\fR";
  if (option.get_items_expected_max() > 0) head += " \\fI" + roff(valueName(option)) + "\\fR";
  std::string help = option.get_description();
  if (!option.get_default_str().empty()) help += "; without it " + option.get_default_str();
  return "\n.TP\n" + head + "\n" + roff(help);
}

// The options of the command but for those of the other one.
std::string manOptions(const CLI::App& command, const CLI::App* other = nullptr) {
  std::string text;
  for (const CLI::Option* option : optionsOf(command)) {
    if (other == nullptr || !hasOption(*other, *option)) text += manOption(*option);
  }
  return text.substr(1);
}

std::string manExitCodes() {
  std::string text;
  for (const ExitCodeRow& row : exitCodeTable()) {
    text += "\n.TP\n.B " + std::to_string(static_cast<int>(row.code)) + "\n" + roff(row.meaning);
  }
  return text.substr(1);
}

std::string optionWords(const CLI::App& command) {
  std::vector<std::string> words;
  for (const CLI::Option* option : optionsOf(command)) {
    for (const std::string& name : namesOf(*option)) words.push_back(name);
  }
  return joined(words, " ");
}

// Behind these a word stands that nothing can be guessed of.
std::string optionsWithValues(const CLI::App& command) {
  std::vector<std::string> words;
  for (const CLI::Option* option : optionsOf(command)) {
    if (option->get_items_expected_min() == 0) continue;
    for (const std::string& name : namesOf(*option)) words.push_back(name);
  }
  return joined(words, " | ");
}

std::vector<std::string> commands(const CommandLine& line) {
  std::vector<std::string> names;
  for (const CLI::App* command : line.app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::string modes() {
  using namespace orvalle_scan_api;
  std::vector<std::string> names;
  for (const COLORTYPE mode :
       {COLORTYPE_COLOR24BIT, COLORTYPE_TRUEGRAY, COLORTYPE_BLACKANDWHITE, COLORTYPE_ERRORDIFFUSION, COLORTYPE_AUTO}) {
    names.emplace_back(modeName(mode));
  }
  return joined(names, " ");
}

std::string papers() {
  std::vector<std::string> names = {"auto"};
  for (const PaperRow& row : paperTable()) names.emplace_back(row.name);
  return joined(names, " ");
}

std::string formats() {
  std::vector<std::string> names;
  for (const Format format : {Format::kPdf, Format::kTiff, Format::kPng, Format::kJpeg, Format::kPnm}) {
    names.emplace_back(rowOf(format).name);
  }
  return joined(names, " ");
}

using Fillings = std::vector<std::pair<std::string, std::string>>;

std::string readFile(const char* path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(std::string(path) + " cannot be read.");
  return {std::istreambuf_iterator<char>(in), {}};
}

// Each "@NAME@" is replaced; a name that is not in the template is a mistake.
void fill(const char* from, const char* to, const Fillings& fillings) {
  std::string text = readFile(from);
  for (const auto& [name, filling] : fillings) {
    const std::string marker = "@" + name + "@";
    auto at = text.find(marker);
    if (at == std::string::npos) throw std::runtime_error(std::string(from) + " has no place for " + marker + ".");
    for (; at != std::string::npos; at = text.find(marker, at + filling.size())) {
      text.replace(at, marker.size(), filling);
    }
  }
  std::ofstream out(to, std::ios::binary);
  out << text;
  if (!out.flush()) throw std::runtime_error(std::string(to) + " cannot be written.");
}

void makePages(char** paths) {
  const CommandLine line;
  fill(paths[0], paths[1],
       {{"version", QSSCAN_VERSION},
        {"options list", manOptions(*line.list)},
        {"options info", manOptions(*line.info)},
        {"options scan", manOptions(*line.scan)},
        {"options panel but scan", manOptions(*line.panel, line.scan)},
        {"exit codes", manExitCodes()}});
  fill(paths[2], paths[3],
       {{"commands|", joined(commands(line), " | ")},
        {"commands", joined(commands(line), " ")},
        {"modes", modes()},
        {"sources", "auto flatbed adf adf-duplex"},
        {"papers", papers()},
        {"formats", formats()},
        {"options with values|", optionsWithValues(*line.panel)},
        {"options list", optionWords(*line.list)},
        {"options info", optionWords(*line.info)},
        {"options scan", optionWords(*line.scan)},
        {"options panel", optionWords(*line.panel)}});
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc != 5) throw std::runtime_error("usage: qsscan-pages MAN-TEMPLATE MAN-PAGE COMPLETION-TEMPLATE COMPLETION");
    makePages(argv + 1);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
