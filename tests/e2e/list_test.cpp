// qsscan list, and the names it shows.
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "scan_test.h"

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using Json = nlohmann::json;

class ListTest : public ScanTest {
 protected:
  ListTest() {
    ::setenv("XDG_CONFIG_HOME", home_.file("config").c_str(), 1);
    ::setenv("XDG_STATE_HOME", home_.file("state").c_str(), 1);
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/dev/null/none", 1);
  }
  ~ListTest() override { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

  VirtualScanner& startWithSheet(Arguments arguments = {}) {
    arguments.insert(arguments.end(), {"--reload", sheet("sheet.png", Picture(595, 842, 1, 72, 255))});
    return startScanner(arguments);
  }
  Json devices(const Arguments& more = {}) const {
    Arguments arguments = {"list", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Finished run = qsscan(arguments);
    EXPECT_TRUE(endedWith(0, run));
    return Json::parse(run.out)["devices"];
  }

  const TemporaryFolder home_;
};

TEST_F(ListTest, WithoutADeviceItSaysWhatToDoAndComesAtOnce) {
  const Finished run = qsscan({"list"});
  EXPECT_TRUE(endedWith(0, run));
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err.find("No device is known"), std::string::npos) << run.err;
  EXPECT_LT(run.exit.seconds, 1) << "no daemon runs that could be asked";
}

TEST_F(ListTest, ADeviceThatAnsweredIsRememberedUnderANameThatCanBeUsed) {
  const std::string first = startWithSheet().address();
  const std::string second = startWithSheet({"--unix", file("socket")}).address();
  EXPECT_TRUE(endedWith(0, qsscan({"info", "-d", first})));
  EXPECT_TRUE(endedWith(0, scan(second, {"-o", file("a.pdf")})));
  const Json list = devices();
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0]["name"], second);
  EXPECT_EQ(list[1]["name"], first);
  EXPECT_EQ(list[1]["origin"], "remembered");
  for (const Json& device : list) EXPECT_TRUE(endedWith(0, qsscan({"info", "-d", device["name"]})));
}

TEST_F(ListTest, ADeviceThatNeverAnsweredIsNotRemembered) {
  EXPECT_TRUE(endedWith(2, qsscan({"info", "-d", "unix:" + file("nobody")})));
  EXPECT_TRUE(devices().empty());
}

TEST_F(ListTest, NoScanFailsForWhatIsRemembered) {
  const std::string address = startWithSheet().address();
  const std::string state = home_.file("state/qsscan/devices.json");
  std::filesystem::create_directories(state);  // a directory where the file should be
  EXPECT_TRUE(endedWith(0, scan(address, {"-o", file("a.pdf")})));
  const Finished run = qsscan({"list"});
  EXPECT_NE(run.err.find("it is a directory"), std::string::npos) << run.err;
  ::setenv("XDG_STATE_HOME", "/proc/none", 1);
  EXPECT_TRUE(endedWith(0, scan(address, {"-o", file("b.pdf")})));
}

TEST_F(ListTest, AConfiguredNameStandsForItsDevice) {
  const std::string address = startWithSheet().address();
  std::filesystem::create_directories(home_.file("config/qsscan"));
  writeBytes(home_.file("config/qsscan/qsscan.conf"), [&] {
    const std::string text = "default-device = \"desk\"\n[device.desk]\nname = \"" + address +
                             "\"\nnote = \"by the window\"\n[preset.small]\nmode = \"gray\"\nresolution = 100\n";
    return std::vector<std::uint8_t>(text.begin(), text.end());
  }());
  const Finished table = qsscan({"list"});
  EXPECT_EQ(table.out, "NAME  KNOWN FROM  ABOUT\ndesk  configured  " + address + ", by the window\n");
  EXPECT_TRUE(endedWith(0, scan("desk", {"--preset", "small", "-o", file("a.png")})));
  EXPECT_EQ(readPng(file("a.png")).channels, 1);
  EXPECT_NEAR(readPng(file("a.png")).dpi, 100, 0.1);
  EXPECT_TRUE(endedWith(0, qsscan({"info"}))) << "the default device";
  EXPECT_EQ(devices().size(), 1u) << "the address is remembered, and listed under its name";
  EXPECT_EQ(qsscan({"list", "--presets"}).out, "small: mode=gray resolution=100\n");
}

TEST_F(ListTest, AWrongConfigurationIsToldByEachCommand) {
  writeText("conf", "[device.desk]\nnane = \"h\"\n");
  for (const char* command : {"list", "info", "scan", "panel"}) {
    const Finished run = qsscan({command, "--config", file("conf")});
    EXPECT_TRUE(endedWith(15, run));
    EXPECT_NE(run.err.find("conf, line 2: \"nane\" is unknown"), std::string::npos) << run.err;
  }
}

// The Avahi daemon on a message bus of its own and on loopback alone.
class AnnouncedTest : public ListTest {
 protected:
  static constexpr char kBus[] = "/usr/bin/dbus-daemon";
  static constexpr char kAvahi[] = "/usr/sbin/avahi-daemon";

  void SetUp() override {
    const bool isPossible = std::filesystem::exists(kBus) && std::filesystem::exists(kAvahi) && ::geteuid() == 0 &&
                            !std::filesystem::exists("/run/avahi-daemon/pid");
    if (!isPossible) GTEST_SKIP() << "needs root, and an Avahi daemon that does not run yet";
    const std::string address = "unix:path=" + home_.file("bus");
    writeText("bus.conf",
              "<busconfig><type>system</type><listen>" + address +
                  "</listen><auth>EXTERNAL</auth><policy context='default'><allow user='*'/><allow own='*'/>"
                  "<allow send_destination='*'/><allow receive_sender='*'/></policy></busconfig>");
    writeText("avahi.conf", "[server]\nhost-name=qstest\nallow-interfaces=lo\nuse-iff-running=no\n");
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    startDaemon(bus_, {kBus, "--nofork", "--config-file=" + file("bus.conf")}, "bus");
    ASSERT_TRUE(waitFor([&] { return std::filesystem::exists(home_.file("bus")); }));
    startDaemon(avahi_, {kAvahi, "--no-drop-root", "--no-chroot", "--no-rlimits", "-f", file("avahi.conf")}, "avahi");
    ASSERT_TRUE(avahi_->waitForText(avahi_->errPath(), "Server startup complete", kPatience))
        << contentOf(avahi_->errPath());
  }
  void TearDown() override {
    for (auto* daemon : {&avahi_, &bus_}) {
      if (!*daemon) continue;
      (*daemon)->send(SIGTERM);
      (*daemon)->wait(kPatience);
    }
  }
  void startDaemon(std::unique_ptr<Process>& daemon, const Arguments& arguments, const std::string& name) {
    daemon = std::make_unique<Process>(arguments, file(name + ".out"), file(name + ".err"));
  }
  template <typename Condition>
  static bool waitFor(Condition condition) {
    for (const auto end = Process::Clock::now() + kPatience; Process::Clock::now() < end; ::usleep(20000)) {
      if (condition()) return true;
    }
    return false;
  }

  std::unique_ptr<Process> bus_, avahi_;
};

TEST_F(AnnouncedTest, ADeviceOnTheNetworkIsListedUnderANameThatCanBeUsed) {
  VirtualScanner& scanner = startWithSheet({"--place", "second\x1B floor"});
  ASSERT_TRUE(waitFor([&] { return scanner.log().find("announced over mDNS") != std::string::npos; })) << scanner.log();
  const Json list = devices();
  ASSERT_EQ(list.size(), 1u) << list;
  EXPECT_EQ(list[0]["origin"], "network");
  EXPECT_EQ(list[0]["name"], scanner.address());
  const std::string about = list[0]["about"];
  EXPECT_NE(about.find(", second? floor"), std::string::npos) << about;
  EXPECT_TRUE(endedWith(0, qsscan({"info", "-d", list[0]["name"]})));
  EXPECT_EQ(devices({"--no-search"})[0]["origin"], "remembered");
}

TEST_F(AnnouncedTest, WhereNobodyAnnouncesTheSearchEndsByItself) {
  const Finished run = qsscan({"list"});
  EXPECT_TRUE(endedWith(0, run));
  EXPECT_LT(run.exit.seconds, 4);
}

}  // namespace
