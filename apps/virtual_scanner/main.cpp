// qs-virtual-scanner: a scanner made of files.
#include <sys/signalfd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <map>

#include "net/server.h"
#include "support/failure.h"

namespace {

using namespace vscan;

constexpr int kExitBadRequest = 2;

struct Options {
  std::string listen = "127.0.0.1:9480";
  std::string unixPath;
  std::string profile = "office";
  std::vector<std::string> overrides;
  std::vector<std::string> sheets;
  std::vector<std::string> moreSheets;
  std::string bed;
  bool blankBacks = false;
  bool reloads = false;
  std::string lines = "packbits";
  std::string whiteLines = "mono";
  ColorLines colorLines = ColorLines::Rgb;
  std::vector<std::string> faults;
  std::size_t dripBytes = 0;
  unsigned dripMs = 0;
  double pagesPerMinute = 0;
  bool verbose = false;
};

void declareOptions(CLI::App& app, Options& options) {
  app.add_option("sheets", options.sheets, "Files for the feeder, in order: PNG, JPEG, TIFF (all pages), PDF")
      ->type_name("FILE");
  app.add_option("--feeder", options.moreSheets, "More files for the feeder")->type_name("FILE");
  app.add_option("--bed", options.bed, "The sheet on the bed")->type_name("FILE");
  app.add_flag("--blank-backs", options.blankBacks, "Each page is a sheet with a white back");
  app.add_flag("--reload", options.reloads, "Fill the feeder again after each scan");

  app.add_option("--listen", options.listen, "TCP address to listen on; port 0 takes a free one")
      ->type_name("HOST:PORT")
      ->capture_default_str();
  app.add_option("--unix", options.unixPath, "Unix socket to listen on (TCP then only with --listen)")
      ->type_name("PATH");

  app.add_option("--profile", options.profile, "What scanner to be: a shipped profile or a JSON file")
      ->type_name("NAME|FILE")
      ->capture_default_str();
  app.add_option("--set", options.overrides, "Override a value of the profile, e.g. compressType[2]=3")
      ->type_name("KEY=VALUE")
      ->allow_extra_args(false);  // what follows is a sheet
  app.add_option("--lines", options.lines, "How lines go out where run-length coding is asked for")
      ->check(CLI::IsMember({"packbits", "raw"}))
      ->capture_default_str();
  app.add_option("--color-lines", options.colorLines, "The order of uncompressed colour in the first generation")
      ->transform(CLI::CheckedTransformer(std::map<std::string, ColorLines>{
          {"rgb", ColorLines::Rgb}, {"bgr", ColorLines::Bgr}, {"planes", ColorLines::Planes}}))
      ->default_str("rgb");
  app.add_option("--white-lines", options.whiteLines, "Which pages send white lines as records without data")
      ->check(CLI::IsMember({"none", "mono", "all"}))
      ->capture_default_str();

  app.add_option("--fault", options.faults,
                 "Something that goes wrong: disconnect, reset, silence or device=0xNN, then @page=N[,line=N|,byte=N]")
      ->type_name("FAULT")
      ->allow_extra_args(false);
  app.add_option("--drip", options.dripBytes, "Send in pieces of that many bytes")->type_name("BYTES");
  app.add_option("--drip-ms", options.dripMs, "Wait that long after each piece")->check(CLI::Range(0, 60000));
  app.add_option("--ppm", options.pagesPerMinute, "Pages per minute; 0 is as fast as the line allows")
      ->check(CLI::Range(0.0, 1e6));
  app.add_flag("-v,--verbose", options.verbose, "Tell each command and each answer on stderr");
}

void addFaces(const std::string& path, Log& log, std::vector<Face>& faces) {
  const auto file = openSheetFile(path);
  if (!file->hasResolution()) log.detail(path + " does not tell its resolution; taken as 300 dpi");
  for (int page = 0; page < file->pages(); ++page) faces.push_back({file, page});
}

Device makeDevice(const Options& options, Log& log) {
  Profile profile = loadProfile(findProfile(options.profile));
  for (const std::string& assignment : options.overrides) overrideProfile(profile, assignment);
  std::vector<Face> stack;
  for (const auto& path : options.sheets) addFaces(path, log, stack);
  for (const auto& path : options.moreSheets) addFaces(path, log, stack);
  std::vector<Face> bed;
  if (!options.bed.empty()) addFaces(options.bed, log, bed);
  if (!stack.empty() && !profile.abilities().hasFeeder)
    throw Failure("profile " + profile.name + " has no feeder for sheets; use --bed");
  if (!bed.empty() && !profile.abilities().hasFlatbed)
    throw Failure("profile " + profile.name + " has no bed for a sheet");

  DeviceOptions device;
  device.page.rawLines = options.lines == "raw";
  device.page.colorLines = options.colorLines;
  device.whiteLinesInMono = options.whiteLines != "none";
  device.whiteLinesInGrey = options.whiteLines == "all";
  for (const std::string& fault : options.faults) device.faults.push_back(parseFault(fault));
  device.drip = {options.dripBytes, std::chrono::milliseconds(options.dripMs)};
  device.pagesPerMinute = options.pagesPerMinute;
  return {std::move(profile), Feeder(std::move(stack), options.blankBacks, options.reloads),
          bed.empty() ? Face{} : bed.front(), std::move(device)};
}

// Makes SIGINT and SIGTERM readable instead of deadly, before any thread is started.
UniqueFd stopOnSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);  // who reads our messages may go before we do
  UniqueFd fd(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!fd) throw Failure("cannot listen to signals");
  return fd;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"A scanner made of files: serves sheets to programs that drive scanners"};
  Options options;
  declareOptions(app, options);
  CLI11_PARSE(app, argc, argv);

  Log log(options.verbose);
  try {
    const UniqueFd stop = stopOnSignals();
    Device device = makeDevice(options, log);
    std::vector<Listener> listeners;
    if (options.unixPath.empty() || app.count("--listen") != 0) listeners.push_back(Listener::onTcp(options.listen));
    if (!options.unixPath.empty()) listeners.push_back(Listener::onUnix(options.unixPath));
    std::string addresses;
    for (const Listener& listener : listeners) addresses += (addresses.empty() ? "" : " and ") + listener.address();
    std::cout << "listening on " << addresses << std::endl;
    Server(device, std::move(listeners), log, stop.get()).run();
  } catch (const Failure& failure) {
    log.note(failure.what());
    return kExitBadRequest;
  }
  return 0;
}
