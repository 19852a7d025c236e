// The man page and the bash completion say what the program says of itself.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "apps/qsscan/exit_codes.h"
#include "temporary_folder.h"

namespace {

using Names = std::set<std::string>;

std::string contentOf(const char* path) {
  std::ifstream in(path);
  EXPECT_TRUE(in) << path;
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string outputOf(const std::string& command) {
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  std::string text;
  std::array<char, 4096> block;
  for (std::size_t got; (got = std::fread(block.data(), 1, block.size(), pipe)) > 0;) text.append(block.data(), got);
  EXPECT_EQ(::pclose(pipe), 0) << command << "\n" << text;
  return text;
}

// The options that the help text of a program begins lines with.
Names optionsOfHelp(const std::string& help) {
  Names names;
  std::istringstream lines(help);
  const std::regex option("--?[a-z][a-z-]*");
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  -", 0) != 0) continue;
    const std::string head = line.substr(2, line.find(' ', 2) - 2);
    for (std::sregex_iterator i(head.begin(), head.end(), option), end; i != end; ++i) names.insert(i->str());
  }
  return names;
}

std::string withoutRoff(const std::string& page) {
  return std::regex_replace(std::regex_replace(page, std::regex(R"(\\f[BIRP])"), ""), std::regex(R"(\\-)"), "-");
}

// From the heading of a section or subsection to the next one.
std::string section(const std::string& page, const std::string& heading) {
  const auto start = page.find(heading + "\n");
  if (start == std::string::npos) return "";
  return page.substr(start, page.find("\n.S", start) - start);
}

// The options in the heads of its items.
Names optionsOfPage(const std::string& section) {
  Names names;
  const std::regex option("(^|[ ,|])(--?[a-z][a-z-]*)");
  std::istringstream lines(section);
  for (std::string line, before; std::getline(lines, line); before = line) {
    if (before != ".TP") continue;
    for (std::sregex_iterator i(line.begin(), line.end(), option), end; i != end; ++i) names.insert((*i)[2]);
  }
  return names;
}

Names minus(Names names, const Names& others) {
  for (const std::string& other : others) names.erase(other);
  return names;
}

class Pages : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ::setenv("XDG_CONFIG_HOME", "/dev/null/none", 1);
    ::setenv("XDG_STATE_HOME", "/dev/null/none", 1);
  }
  static Names helpOf(const std::string& command) {
    return optionsOfHelp(outputOf(std::string(QSSCAN_PROGRAM) + " " + command + " --help"));
  }
};

TEST_F(Pages, TheManPageHasTheOptionsOfEachCommand) {
  const std::string page = withoutRoff(contentOf(QSSCAN_MAN_PAGE));
  for (const char* command : {"list", "info", "scan"}) {
    const Names help = helpOf(command);
    EXPECT_GT(help.size(), 5u);
    EXPECT_EQ(optionsOfPage(section(page, std::string(".SS qsscan ") + command)), help) << command;
  }
  EXPECT_EQ(optionsOfPage(section(page, ".SS qsscan panel")), minus(helpOf("panel"), helpOf("scan")));
  EXPECT_EQ(page.find('@'), std::string::npos) << "a place that was not filled";
}

TEST_F(Pages, TheManPageHasTheExitCodes) {
  std::string expected = ".SH EXIT STATUS\nThese numbers keep their meaning.";
  for (const qsscan::ExitCodeRow& row : qsscan::exitCodeTable()) {
    expected += "\n.TP\n.B " + std::to_string(static_cast<int>(row.code)) + "\n" + row.meaning;
  }
  EXPECT_EQ(section(withoutRoff(contentOf(QSSCAN_MAN_PAGE)), ".SH EXIT STATUS"), expected);
}

TEST_F(Pages, TheScannersManPageHasItsOptions) {
  const std::string page = withoutRoff(contentOf(QS_VIRTUAL_SCANNER_MAN_PAGE));
  EXPECT_EQ(optionsOfPage(page), optionsOfHelp(outputOf(QS_VIRTUAL_SCANNER " --help")));
}

// What the completion offers for a line that ends where the cursor stands.
Names offered(const std::string& line) {
  const qsscan_test::TemporaryFolder folder;
  std::ofstream(folder.file("script")) <<
      // What bash-completion would bring along.
      "_init_completion() { words=(\"${COMP_WORDS[@]}\"); cword=$COMP_CWORD; cur=${words[cword]}; "
      "prev=${words[cword-1]}; }\n"
      "_filedir() { COMPREPLY=(a file); }\n"
      "__ltrim_colon_completions() { :; }\n"
      "set -u\n"
      "source " QSSCAN_COMPLETION
      "\n"
      "COMP_WORDS=(" +
          line +
          ")\n"
          "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
          "_qsscan \"${COMP_WORDS[0]}\"\n"
          "((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"\n";
  std::istringstream lines(outputOf("bash " + folder.file("script")));
  Names names;
  for (std::string name; std::getline(lines, name);) names.insert(name);
  return names;
}

TEST_F(Pages, CompletionOffersTheOptionsOfEachCommand) {
  EXPECT_EQ(offered(QSSCAN_PROGRAM " ''"), (Names{"list", "info", "scan", "panel", "--help", "--version"}));
  for (const std::string command : {"list", "info", "scan", "panel"}) {
    EXPECT_EQ(offered(QSSCAN_PROGRAM " " + command + " ''"), helpOf(command)) << command;
  }
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan -d host --de"),
            (Names{"--descreen", "--deskew", "--despeckle", "--detect-multifeed", "--device"}));
}

TEST_F(Pages, CompletionOffersTheValuesOfOptions) {
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan --mode ''"), (Names{"color", "gray", "mono", "dither", "auto"}));
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan --format p"), (Names{"pdf", "png", "pnm"}));
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan --page-size le"), (Names{"legal", "letter", "ledger"}));
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan -o ''"), (Names{"a", "file"}));
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan --resolution ''"), Names{});
}

TEST_F(Pages, CompletionOffersDevicesAndPresetsAndRunsNoneOfThem) {
  const qsscan_test::TemporaryFolder folder;
  std::filesystem::create_directories(folder.file("qsscan"));
  std::ofstream(folder.file("qsscan/qsscan.conf"))
      << "[device.office]\nname = \"h\"\n[preset.contract]\nmode = \"gray\"\n";
  std::ofstream(folder.file("qsscan/devices.json"))
      << R"({"devices":[{"device":"host:1"},{"device":"unix:/$(touch )" << folder.file("run") << ")\"}]}";
  ::setenv("XDG_CONFIG_HOME", folder.file("").c_str(), 1);
  ::setenv("XDG_STATE_HOME", folder.file("").c_str(), 1);
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan -d ''"),
            (Names{"office", "host:1", "unix:/$(touch " + folder.file("run") + ")"}));
  EXPECT_EQ(offered(QSSCAN_PROGRAM " info --device of"), Names{"office"});
  EXPECT_EQ(offered(QSSCAN_PROGRAM " scan --preset ''"), Names{"contract"});
  EXPECT_FALSE(std::filesystem::exists(folder.file("run")));
  SetUpTestSuite();
}

}  // namespace
