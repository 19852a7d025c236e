#include "fault_rows.h"

#include <sstream>

namespace e2e {
namespace {

constexpr int kSheets = 3;

struct Place {
  const char* at;
  int pagesBefore;
};

// "Behind the last line" is just before the end of the page.
constexpr Place kPlaces[] = {
    {"page=1", 0}, {"page=1,line=300", 0}, {"page=2,line=300", 1}, {"page=2,line=9999", 1}, {"page=3", 2}};

// So that the pages before have gone through the library when the connection breaks: what has not is lost with it.
std::vector<std::string> afterAPause(const std::string& fault, const Place& place) {
  const std::string where = std::string("@") + place.at;
  if (place.pagesBefore == 0) return {fault + where};
  return {"pause=2000" + where, fault + where};
}

struct DeviceError {
  const char* name;
  int exit;
  const char* sentence;
  const char* result;
};

constexpr DeviceError kDeviceErrors[] = {
    {"feeder-empty", 3, "There is no paper in the feeder. Load paper and try again.", "0x50000001"},
    {"jam", 4,
     "Paper jam: a sheet is stuck in the device. Take it out, put the sheets that were not scanned back and scan them "
     "again.",
     "0x50000002"},
    {"cover-open", 5, "A cover of the device is open. Close it and try again.", "0x50000003"},
    {"busy", 6, "The device is busy with another computer. Wait until it is free and try again.", "0x50000004"},
    {"out-of-memory", 7, "The device is out of memory. Scan at a lower resolution or a smaller area.", "0x50000005"},
    {"internal-fault", 7, "The device has an internal fault. Switch it off and on again.", "0x50000007"},
    {"lamp-fault", 7,
     "The lamp or the sensor of the device has a fault. Switch it off and on again; if that does not help, it needs "
     "service.",
     "0x50000008"},
    {"settings-not-possible", 7,
     "The device cannot scan with these settings. Try another resolution, mode or page size.", "0x50000009"},
    {"locked", 6, "The device was locked by its owner. Unlock it at its panel, or ask its owner.", "0x5000000A"},
};
// On a page its name is that of a fault that only some settings meet, so it is asked for by number.
constexpr DeviceError kDoubleFeed = {
    "", 4,
    "Double feed: the device took more than one sheet at once. Separate the sheets, put those that were not scanned "
    "back and scan them again.",
    "0x50000006"};

constexpr char kLost[] = "The connection to the device was lost.";
constexpr char kUnreachable[] = "The device cannot be reached.";
constexpr char kFellSilent[] = "The device fell silent in the middle of the scan.";
constexpr char kDoesNotAnswer[] = "The device does not answer.";
constexpr char kAnswersNoMore[] = "The device does not answer any more.";
constexpr char kBadAnswer[] = "The device gave an answer that is not understood.";

const char* settingsCommand(int generation) { return generation == 1 ? "I" : "SSP"; }
const char* startCommand(int generation) { return generation == 1 ? "X" : "XSC"; }
std::string at(const char* command) { return std::string("@command=") + command; }

// With the number of the result, as an error in the stream is told.
std::string sentenceOf(const DeviceError& error) {
  std::ostringstream text;
  text << error.sentence << " (" << error.result << ")";
  return text.str();
}

void addDeviceError(std::vector<FaultRow>& rows, int generation, const std::string& fault, const DeviceError& error) {
  const std::string sentence = sentenceOf(error);
  for (const Place& place : kPlaces) {
    rows.push_back({generation, {fault + "@" + place.at}, error.exit, sentence, place.pagesBefore});
  }
  rows.push_back({generation, {fault + at(startCommand(generation))}, error.exit, sentence, 0});
  // A refused command has a number of its own.
  rows.push_back({generation, {fault + at(settingsCommand(generation))}, error.exit, error.sentence, 0});
}

void addDeviceErrors(std::vector<FaultRow>& rows, int generation) {
  for (const DeviceError& error : kDeviceErrors) addDeviceError(rows, generation, error.name, error);
  addDeviceError(rows, generation, generation == 1 ? "device=0xC8" : "device=0x92", kDoubleFeed);
  rows.push_back({generation, {"double-feed@page=2"}, 4, sentenceOf(kDoubleFeed), 1, {"--detect-multifeed"}});
  rows.push_back({generation, {"double-feed@page=2"}, 0, "", kSheets});
  rows.push_back({generation, {"device=0xE0@page=2"}, 7, "The device reported an unknown error", 1});
}

void addStops(std::vector<FaultRow>& rows, int generation) {
  for (const Place& place : kPlaces) {
    const std::string fault = std::string("stop-key@") + place.at;
    rows.push_back({generation, {fault}, 13, "The scan was stopped at the device.", place.pagesBefore});
  }
}

void addLostConnections(std::vector<FaultRow>& rows, int generation) {
  for (const std::string fault : {"disconnect", "reset"}) {
    for (const Place& place : kPlaces) {
      rows.push_back({generation, afterAPause(fault, place), 8, kLost, place.pagesBefore});
    }
    rows.push_back({generation, {fault + "@command=Q"}, 2, kUnreachable, 0});
    rows.push_back({generation, {fault + "@command=Q,byte=2"}, 2, kUnreachable, 0});
    rows.push_back({generation, {fault + at(settingsCommand(generation))}, 8, kLost, 0});
    rows.push_back({generation, {fault + at(startCommand(generation))}, 8, kLost, 0});
  }
}

void addSilence(std::vector<FaultRow>& rows, int generation) {
  rows.push_back({generation, {"silence@command=Q"}, 2, kDoesNotAnswer, 0, {}, true});
  rows.push_back({generation, {std::string("silence") + at(settingsCommand(generation))}, 8, kAnswersNoMore, 0});
  rows.push_back({generation, {std::string("silence") + at(startCommand(generation))}, 8, kFellSilent, 0, {}, true});
  rows.push_back({generation, {"silence@page=2,line=300"}, 8, kFellSilent, 1, {}, true});
  if (generation == 1) return;
  // A device of the second generation says how long it may be silent.
  for (const Place& place : kPlaces) {
    const std::string where = std::string("@page=") + place.at[5];
    const std::string silence = std::string("silence@") + place.at;
    rows.push_back({2, {"timer-extend=1" + where, silence}, 8, kFellSilent, place.pagesBefore});
  }
  rows.push_back({2, {"silence@command=QDI"}, 2, kDoesNotAnswer, 0, {}, true});
}

void addPauses(std::vector<FaultRow>& rows, int generation) {
  for (const Place& place : kPlaces) {
    rows.push_back({generation, {std::string("pause=1500@") + place.at}, 0, "", kSheets});
    rows.push_back({generation, {std::string("drip=61:1@") + place.at}, 0, "", kSheets});
  }
  // Asleep, and slow to wake up.
  rows.push_back({generation, {"pause=15000@command=Q"}, 0, "", kSheets, {}, true});
  rows.push_back({generation, {std::string("pause=2000") + at(settingsCommand(generation))}, 0, "", kSheets});
  rows.push_back({generation, {std::string("pause=2000") + at(startCommand(generation))}, 0, "", kSheets});
  // Answers and records cut in two.
  for (const char* byte : {"1", "2", "5", "13", "14", "15", "200"}) {
    rows.push_back({generation, {std::string("pause=300@page=2,byte=") + byte}, 0, "", kSheets});
  }
  rows.push_back({generation, {"drip=1:1@command=Q"}, 0, "", kSheets});
  rows.push_back({generation, {"pause=1@command=Q,byte=1"}, 0, "", kSheets});
}

void addDamage(std::vector<FaultRow>& rows, int generation) {
  const char* sentence = generation == 1 ? "The device sent data that is not understood."
                                         : "The device reported an unknown error, or sent data that is not understood.";
  for (const Place& place : kPlaces) {
    rows.push_back({generation, afterAPause("garbage=00112233445566778899", place), 7, sentence, place.pagesBefore});
  }
  rows.push_back({generation, {"garbage=C2000200@command=Q"}, 7, kBadAnswer, 0});
  rows.push_back({generation, {"wrong-signature@command=Q"}, 7, kBadAnswer, 0});
  rows.push_back({generation, {"short@page=2,line=300"}, 0, "", kSheets, {}, false, true});
  rows.push_back({generation, {"short@command=Q"}, 2, kDoesNotAnswer, 0, {}, true});
  rows.push_back({generation, {"wrong-length=200@command=Q"}, 2, kDoesNotAnswer, 0, {}, true});
  rows.push_back({generation, {"wrong-length=0@command=Q"}, 2, kDoesNotAnswer, 0, {}, true});
  for (const char* fault : {"short", "wrong-length=0", "wrong-length=5000"}) {
    rows.push_back({generation, {fault + at(settingsCommand(generation))}, 8, kAnswersNoMore, 0});
  }
  // A record that says to be longer than all that follows.
  rows.push_back({generation, {"wrong-length=65535@page=3,line=590"}, 8, kFellSilent, 2, {}, true});
  if (generation == 1) {
    rows.push_back({1, {"wrong-signature@command=I"}, 7, "The device refused a command.", 0});
    return;
  }
  rows.push_back({2, {"wrong-signature@command=SSP"}, 7, kBadAnswer, 0});
  rows.push_back({2, {"wrong-signature@command=QDI"}, 7, kBadAnswer, 0});
  rows.push_back({2, {"timer-extend=1@page=2", "wrong-length=99999999@page=2,line=300"}, 8, kFellSilent, 1});
}

// Records that only the second generation has.
void addRecords(std::vector<FaultRow>& rows) {
  for (const char* check : {"size", "color", "blank", "deskew"}) {
    for (const Place& place : kPlaces) {
      rows.push_back({2, {std::string("failed-check=") + check + "@" + place.at}, 0, "", kSheets});
    }
  }
  for (const char* timer : {"timer-restart=5", "timer-extend=5"}) {
    for (const char* place : {"page=1", "page=2", "page=3"}) {
      rows.push_back({2, {std::string(timer) + "@" + place}, 0, "", kSheets});
    }
    // Within a page it ends what has come of the page, which begins anew.
    rows.push_back({2, {std::string(timer) + "@page=2,line=300"}, 0, "", kSheets, {}, false, true});
  }
  const std::string cut = "Page 2 is longer than the device can scan and was cut.";
  rows.push_back({2, {"too-long@page=2,line=300"}, 0, cut, kSheets, {}, false, true});
}

void addDamageAnywhere(std::vector<FaultRow>& rows, int generation) {
  for (const char* fault :
       {"short", "garbage=FF", "garbage=40000000FFFFFFFF", "wrong-length=1", "wrong-length=65535"}) {
    for (const char* place : {"page=1,byte=1", "page=2,byte=3", "page=2,byte=500", "page=3,line=599"}) {
      FaultRow row{generation, {std::string(fault) + "@" + place}, std::nullopt};
      // Where the rest is taken for one long record, the scan ends when the device has been silent for long enough.
      if (generation == 2) row.faults.insert(row.faults.begin(), "timer-extend=1@page=1");
      row.isSlow = generation == 1;
      rows.push_back(row);
    }
  }
}

}  // namespace

std::vector<FaultRow> faultRows() {
  std::vector<FaultRow> rows;
  for (const int generation : {1, 2}) {
    addDeviceErrors(rows, generation);
    addStops(rows, generation);
    addLostConnections(rows, generation);
    addSilence(rows, generation);
    addPauses(rows, generation);
    addDamage(rows, generation);
    addDamageAnywhere(rows, generation);
  }
  addRecords(rows);
  return rows;
}

}  // namespace e2e
