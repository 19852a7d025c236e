#include "apps/qsscan/configuration.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "apps/qsscan/exit_codes.h"
#include "apps/qsscan/options.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using qsscan_test::TemporaryFolder;

TEST(Configuration, HoldsDevicesPresetsAndIds) {
  const Configuration c = parseConfiguration(
      "default-device = \"office\"\n"
      "usb-ids = [\"fff0:00a1\", \"FFF0:0002\"]\n"
      "[device.office]\n"
      "name = \"192.0.2.7:9480\"\n"
      "note = \"second floor\"\n"
      "[preset.contract]\n"
      "mode = \"gray\"\n"
      "duplex = true\n"
      "resolution = 200\n"
      "gamma = 1.5\n",
      "file");
  EXPECT_EQ(c.defaultDevice, "office");
  EXPECT_EQ(c.addressOf("office"), "192.0.2.7:9480");
  EXPECT_EQ(c.addressOf("192.0.2.8"), "192.0.2.8") << "any other name is an address";
  ASSERT_EQ(c.devices.size(), 1u);
  EXPECT_EQ(c.devices[0].note, "second floor");
  EXPECT_EQ(c.usbIds, (std::vector<UsbIds>{{0xfff0, 0xa1}, {0xfff0, 2}}));
  const Preset* preset = c.findPreset("contract");
  ASSERT_NE(preset, nullptr);
  EXPECT_EQ(c.findPreset("contracts"), nullptr);
  std::map<std::string, std::string> values;
  for (const OptionValue& value : preset->values) values[value.option] = value.value;
  EXPECT_EQ(values, (std::map<std::string, std::string>{
                        {"mode", "gray"}, {"duplex", "true"}, {"resolution", "200"}, {"gamma", "1.5"}}));
}

TEST(Configuration, AnEmptyFileSaysNothing) {
  const Configuration c = parseConfiguration("# nothing yet\n", "file");
  EXPECT_TRUE(c.devices.empty());
  EXPECT_TRUE(c.presets.empty());
  EXPECT_EQ(c.defaultDevice, "");
}

struct BadRow {
  const char* name;
  const char* text;
  const char* partOfSentence;
};
void PrintTo(const BadRow& row, std::ostream* out) { *out << row.name; }
class BadConfiguration : public testing::TestWithParam<BadRow> {};

TEST_P(BadConfiguration, IsASentenceWithFileAndLine) {
  try {
    parseConfiguration(GetParam().text, "some.conf");
    FAIL() << "accepted";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::kConfiguration);
    const std::string sentence = error.what();
    EXPECT_EQ(sentence.find("some.conf, line "), 0u) << sentence;
    EXPECT_NE(sentence.find(GetParam().partOfSentence), std::string::npos) << sentence;
    EXPECT_EQ(sentence.back(), '.') << sentence;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Configuration, BadConfiguration,
    testing::Values(BadRow{"UnknownKey", "\n\nspeed = 3", "line 3: \"speed\" is unknown"},
                    BadRow{"UnknownTable", "[devices.office]\nname = \"h\"", "\"devices\" is unknown"},
                    BadRow{"NoValue", "[device.office]\nname =\n", "line 2: It is not understood"},
                    BadRow{"OpenText", "default-device = \"off", "line 1: It is not understood"},
                    BadRow{"TheSameTwice", "[device.a]\nname=\"h\"\n[device.a]\nname=\"h\"", "line 3"},
                    BadRow{"NoAddress", "[device.office]\n", "has no address"},
                    BadRow{"BadAddress", "[device.office]\n\nname = \"usb:1\"", "line 3: \"usb:1\" is no device name"},
                    BadRow{"AddressOfAnotherKind", "[device.office]\nname = 7", "must be text"},
                    BadRow{"UnknownKeyOfADevice", "[device.a]\nname = \"h\"\nport = 3", "line 3: \"port\" is unknown"},
                    BadRow{"NameLikeAnAddress", "[device.\"h:1\"]\nname = \"h\"", "is no name of a device"},
                    BadRow{"NameLikeAnOption", "[preset.-x]\nmode = \"gray\"", "is no name of a preset"},
                    BadRow{"DeviceWithoutATable", "device = \"h\"", "Write [device.NAME]"},
                    BadRow{"DeviceWithoutAName", "[device]\nname = \"h\"", "line 2: \"name\" stands for itself"},
                    BadRow{"ListInAPreset", "[preset.a]\nmode = [\"gray\"]", "line 2: The value of \"mode\""},
                    BadRow{"DateInAPreset", "[preset.a]\nmode = 2026-01-01", "line 2: The value of \"mode\""},
                    BadRow{"UsbIdsAsText", "usb-ids = \"fff0:00a1\"", "usb-ids is a list"},
                    BadRow{"ShortUsbIds", "usb-ids = [\"fff0:a1\"]", "usb-ids is a list"},
                    BadRow{"UsbIdsThatAreNone", "usb-ids = [\"fff0:00g1\"]", "usb-ids is a list"},
                    BadRow{"SignedUsbIds", "usb-ids = [\"-ff0:00a1\"]", "usb-ids is a list"},
                    BadRow{"DefaultThatIsNoDevice", "\ndefault-device = \"a:b:c\"", "line 2: \"a:b:c\""},
                    BadRow{"EmptyDefault", "default-device = \"\"", "has no name"},
                    BadRow{"TerminalCommand", "\"\\u001b[2J\" = 1", "line 1: \"?[2J\" is unknown"},
                    BadRow{"Binary", "\x01\x02\xff\xfe", "line 1: It is not understood"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Configuration, EachBeginningOfAFileIsTakenOrRefusedWithASentence) {
  const std::string whole =
      "default-device=\"office\"\nusb-ids=[\"fff0:00a1\"]\n[device.office]\nname=\"h:1\"\n[preset.a]\nduplex=true\n";
  for (std::size_t size = 0; size < whole.size(); ++size) {
    try {
      parseConfiguration(whole.substr(0, size), "file");
    } catch (const CommandError& error) {
      EXPECT_EQ(error.code(), ExitCode::kConfiguration) << whole.substr(0, size);
    }
  }
}

class ConfigurationFiles : public testing::Test {
 protected:
  void SetUp() override { ::setenv("XDG_CONFIG_HOME", folder_.file("").c_str(), 1); }
  void TearDown() override { ::setenv("XDG_CONFIG_HOME", "/dev/null/none", 1); }
  std::string write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_.file(name), std::ios::binary) << text;
    return folder_.file(name);
  }
  std::string refusalOf(const std::string& named) const {
    try {
      loadConfiguration(named);
    } catch (const CommandError& error) {
      EXPECT_EQ(error.code(), ExitCode::kConfiguration);
      return error.what();
    }
    return "accepted";
  }
  const TemporaryFolder folder_;
};

TEST_F(ConfigurationFiles, TheUsersFileIsReadWhereItIs) {
  EXPECT_TRUE(loadConfiguration("").devices.empty());
  std::filesystem::create_directory(folder_.file("qsscan"));
  write("qsscan/qsscan.conf", "[device.mine]\nname = \"h\"\n");
  EXPECT_EQ(loadConfiguration("").addressOf("mine"), "h");
  EXPECT_EQ(loadConfiguration("/dev/null").addressOf("mine"), "mine") << "a named file is read alone";
}

TEST_F(ConfigurationFiles, WhatIsNoConfigurationIsASentence) {
  const std::string missing = folder_.file("missing.conf");
  EXPECT_EQ(refusalOf(missing), "There is no configuration file " + missing + ".");
  EXPECT_NE(refusalOf(folder_.file("")).find("it is a directory"), std::string::npos);
  EXPECT_NE(refusalOf(write("huge", std::string(1 << 20, '#'))).find("larger than 256 KiB"), std::string::npos);
  EXPECT_NE(refusalOf("/dev/zero").find("larger than 256 KiB"), std::string::npos);
  const std::string pipe = folder_.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_NE(refusalOf(pipe).find("it is no file"), std::string::npos) << "nobody writes to it";
  const std::string link = folder_.file("loop");
  std::filesystem::create_symlink(link, link);
  EXPECT_NE(refusalOf(link).find("cannot be read"), std::string::npos);
}

TEST_F(ConfigurationFiles, AFileThatMayNotBeReadIsASentence) {
  const std::string path = write("secret", "");
  ::chmod(path.c_str(), 0);
  // Root may read everything, and becomes somebody else here.
  constexpr uid_t kNobody = 65534;
  const uid_t user = ::geteuid();
  if (user == 0) {
    ASSERT_EQ(::seteuid(kNobody), 0);
  }
  const std::string sentence = refusalOf(path);
  ASSERT_EQ(::seteuid(user), 0);
  EXPECT_NE(sentence.find("Permission denied"), std::string::npos) << sentence;
}

// Configured options as the command line takes them.
class Presets : public ConfigurationFiles {
 protected:
  Options parse(const std::string& configuration, std::vector<const char*> words,
                const std::vector<OptionValue>& askedByPanel = {}) const {
    ::unsetenv("QSSCAN_DEVICE");
    const std::string path = write("conf", configuration);
    words.insert(words.begin(), "qsscan");
    words.insert(words.end(), {"--config", path.c_str()});
    return parseCommandLine(static_cast<int>(words.size()), words.data(), askedByPanel).value();
  }
  std::string refusal(const std::string& configuration, const std::vector<const char*>& words) const {
    try {
      parse(configuration, words);
    } catch (const CommandError& error) {
      return error.what();
    }
    return "accepted";
  }
};

constexpr char kPresetA[] =
    "[preset.a]\nmode = \"gray\"\nduplex = true\nresolution = 200\nbrightness = -5\ndeskew = true\nskip-blank = true\n"
    "sharpen = 3\nquiet = false\noutput = \"a.tif\"\n";

TEST_F(Presets, GiveTheOptionsThatAreNotGiven) {
  const Options options = parse(kPresetA, {"scan", "-d", "h", "--preset", "a"});
  EXPECT_EQ(options.wish.mode, orvalle_scan_api::COLORTYPE_TRUEGRAY);
  EXPECT_TRUE(options.wish.duplex);
  EXPECT_EQ(options.wish.resolutionDpi, 200u);
  EXPECT_EQ(options.wish.brightness, -5);
  ASSERT_EQ(options.wish.features.size(), 3u) << "what is false is not switched on";
  EXPECT_EQ(options.output.path, "a.tif");
  EXPECT_EQ(options.output.format, Format::kTiff);
}

TEST_F(Presets, GiveWayToTheCommandLine) {
  const Options options = parse(kPresetA, {"scan", "-d", "h", "--preset", "a", "--mode", "color", "--resolution", "600",
                                           "--duplex=false", "--deskew=false", "--sharpen=5", "--skip-blank=false"});
  EXPECT_EQ(options.wish.mode, orvalle_scan_api::COLORTYPE_COLOR24BIT);
  EXPECT_EQ(options.wish.resolutionDpi, 600u);
  EXPECT_FALSE(options.wish.duplex);
  ASSERT_EQ(options.wish.features.size(), 1u);
  EXPECT_STREQ(options.wish.features[0].feature->option, "--sharpen");
  EXPECT_EQ(options.wish.features[0].level, 5);
}

TEST_F(Presets, ANamedOutputReplacesTheOutputOfThePreset) {
  const std::string configuration = "[preset.a]\nbatch = \"p%d.png\"\nformat = \"png\"\n";
  const Options named = parse(configuration, {"scan", "-d", "h", "--preset", "a", "-o", "x.tif"});
  EXPECT_EQ(named.output.path, "x.tif");
  EXPECT_EQ(named.output.batch, "");
  EXPECT_EQ(named.output.format, Format::kTiff);
  const Options stream = parse(configuration, {"scan", "-d", "h", "--preset", "a", "-o", "-"});
  EXPECT_EQ(stream.output.format, Format::kPng) << "its name does not tell";
}

TEST_F(Presets, StandBetweenTheCommandLineAndThePanel) {
  const std::vector<OptionValue> panel = {
      {"mode", "mono", "panel"}, {"resolution", "100", "panel"}, {"format", "jpeg", "panel"}};
  const Options options = parse("[preset.a]\nmode = \"gray\"\n", {"panel", "-d", "h", "--preset", "a"}, panel);
  EXPECT_EQ(options.wish.mode, orvalle_scan_api::COLORTYPE_TRUEGRAY);
  EXPECT_EQ(options.wish.resolutionDpi, 100u);
  EXPECT_EQ(options.output.format, Format::kJpeg);
  EXPECT_EQ(parse("", {"panel", "-d", "h", "-o", "a.pdf"}, panel).output.format, Format::kPdf);
  const Options without =
      parse("[preset.a]\nduplex = false\ndeskew = false\nskip-blank = false\nprogress = false\n",
            {"panel", "-d", "h", "--preset", "a"},
            {{"duplex", "true", "panel"}, {"deskew", "true", "panel"}, {"skip-blank", "true", "panel"}});
  EXPECT_FALSE(without.wish.duplex);
  EXPECT_TRUE(without.wish.features.empty());
  EXPECT_EQ(without.progress, ProgressStyle::kNone);
}

TEST_F(Presets, MistakesInThemAreSentences) {
  const std::vector<const char*> scan = {"scan", "-d", "h", "--preset", "a"};
  EXPECT_NE(refusal("[preset.b]\n", scan).find("no preset a. There are: b."), std::string::npos);
  EXPECT_NE(refusal("", scan).find("None is configured."), std::string::npos);
  EXPECT_NE(refusal("[preset.b]\n\nmodus = \"gray\"", {"info", "-d", "h"}).find("conf, line 3: \"modus\" is no option"),
            std::string::npos)
      << "also in a preset that is not used";
  for (const char* option : {"preset", "config", "help", "show"}) {
    EXPECT_NE(refusal("[preset.a]\n" + std::string(option) + " = \"x\"", scan).find("is no option"), std::string::npos);
  }
  EXPECT_NE(refusal("[preset.a]\nquality = 101", scan).find("conf, line 2: --quality"), std::string::npos);
  EXPECT_NE(refusal("[preset.a]\nduplex = 1", scan).find("line 2: \"duplex\" is true or false"), std::string::npos);
  EXPECT_NE(refusal("[preset.a]\nmode = true", scan).find("line 2: \"mode\" needs a value"), std::string::npos);
  EXPECT_NE(refusal("[preset.a]\nmode = \"gold\"", scan).find("With the preset a of "), std::string::npos);
}

TEST_F(Presets, TheDeviceComesFromOptionEnvironmentPresetAndConfiguration) {
  const std::string configuration =
      "default-device = \"two\"\n[device.one]\nname = \"h1\"\n[device.two]\nname = \"h2\"\n[preset.a]\ndevice = "
      "\"one\"\n";
  EXPECT_EQ(parse(configuration, {"info"}).device, "h2");
  EXPECT_EQ(parse(configuration, {"info", "-d", "one"}).device, "h1");
  EXPECT_EQ(parse(configuration, {"scan", "--preset", "a"}).device, "h1");
  EXPECT_EQ(parse(configuration, {"scan", "--preset", "a", "-d", "two"}).device, "h2");
  const std::string path = write("conf", configuration);
  ::setenv("QSSCAN_DEVICE", "one", 1);
  const char* words[] = {"qsscan", "info", "--config", path.c_str()};
  EXPECT_EQ(parseCommandLine(4, words)->device, "h1");
  ::unsetenv("QSSCAN_DEVICE");
}

}  // namespace
