#include "results.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>

namespace qsscan {
namespace {

using orvalle_scan_api::QSRSLT;

constexpr QSRSLT kKindMask = 0xF0000000;
constexpr QSRSLT kDeviceErrorKind = 0x50000000;
constexpr QSRSLT kLowByte = 0xFF;

struct Text {
  ExitCode exit;
  const char* whatHappened;
  const char* whatToDo;
};

struct FaultRow {
  QSRSLT result;           // what a running scan reports
  std::uint8_t firstGen;   // the same fault as the result byte of a refused command,
  std::uint8_t secondGen;  // by command generation; the two ranges do not overlap
  Text text;
};

constexpr FaultRow kFaults[] = {
    {0x50000001, 0xC2, 0x90, {ExitCode::kFeederEmpty, "There is no paper in the feeder.", "Load paper and try again."}},
    {0x50000002,
     0xC3,
     0x91,
     {ExitCode::kJam, "Paper jam: a sheet is stuck in the device.",
      "Take it out, put the sheets that were not scanned back and scan them again."}},
    {0x50000003, 0xC4, 0xA0, {ExitCode::kCoverOpen, "A cover of the device is open.", "Close it and try again."}},
    {0x50000004,
     0xC5,
     0xB0,
     {ExitCode::kBusy, "The device is busy with another computer.", "Wait until it is free and try again."}},
    {0x50000005,
     0xC6,
     0xB1,
     {ExitCode::kDeviceError, "The device is out of memory.", "Scan at a lower resolution or a smaller area."}},
    {0x50000006,
     0xC8,
     0x92,
     {ExitCode::kJam, "Double feed: the device took more than one sheet at once.",
      "Separate the sheets, put those that were not scanned back and scan them again."}},
    {0x50000007,
     0xC9,
     0x84,
     {ExitCode::kDeviceError, "The device has an internal fault.", "Switch it off and on again."}},
    {0x50000008,
     0xCA,
     0xA1,
     {ExitCode::kDeviceError, "The lamp or the sensor of the device has a fault.",
      "Switch it off and on again; if that does not help, it needs service."}},
    {0x50000009,
     0xCB,
     0xA4,
     {ExitCode::kDeviceError, "The device cannot scan with these settings.",
      "Try another resolution, mode or page size."}},
    {0x5000000A,
     0xCC,
     0xA5,
     {ExitCode::kBusy, "The device was locked by its owner.", "Unlock it at its panel, or ask its owner."}},
};

struct CodeRow {
  QSRSLT code;
  Text text;
};

constexpr Text kCompanionMissing = {ExitCode::kNoLibrary, "A module of the scanning library could not be loaded.",
                                    "Install the modules beside the library."};

constexpr CodeRow kCodes[] = {
    {0x00000000, {ExitCode::kDone, "Done.", ""}},
    {0x01000000,
     {ExitCode::kStoppedAtDevice, "The scan was stopped at the device.", "Start it again for the remaining sheets."}},
    {0x10100009,
     {ExitCode::kNotReachable, "The scan could not be prepared.",
      "Check that the device is switched on and that its name is right."}},
    {0x10100010,
     {ExitCode::kNotReachable, "No usable device was named.", "Name one with -d, such as -d scanner.local."}},
    {0x70100013, {ExitCode::kUsage, "The device name is empty.", "Name a device with -d, such as -d scanner.local."}},
    {0x20100006,
     {ExitCode::kNoLibrary, "The module that talks to devices (QsDeviceAccs.so) could not be loaded.",
      "Install it beside the library."}},
    {0x20403001,
     {ExitCode::kNoLibrary, "The module that decodes JPEG pages (QsJpegDecode.so) could not be loaded.",
      "Install it beside the library."}},
    {0x20405004,
     {ExitCode::kNoLibrary, "The module that enhances pages (QsImageEnhance.so) could not be loaded.",
      "Install it beside the library."}},
    {0x20406001,
     {ExitCode::kInternal, "The line decoder refused a page.", "Try another mode, and report this with the number."}},
    {0x30406007,
     {ExitCode::kNoLibrary, "The module that decodes lines (QsScanDecode.so) could not be loaded.",
      "Install it beside the library."}},
    {0x10703001,
     {ExitCode::kNotServed, "The device cannot scan at this resolution.",
      "Ask for no more than the optical resolution that qsscan info tells."}},
    {0x40401005,
     {ExitCode::kConnectionLost, "The device fell silent in the middle of the scan.",
      "Check the device and the network, then scan the remaining sheets."}},
    {0x1030000A, {ExitCode::kDeviceError, "The device did not say what it can do.", "Switch it off and on again."}},
    {0x10210041,
     {ExitCode::kDeviceError, "An answer of the device was too short.",
      "Check that the name is that of a scanner, and switch it off and on again."}},
    {0x10210043,
     {ExitCode::kDeviceError, "The device gave an answer that is not understood.",
      "Check that the name is that of a scanner, and switch it off and on again."}},
    {0x10210032,
     {ExitCode::kDeviceError, "An answer of the device was too long.",
      "Check that the name is that of a scanner, and switch it off and on again."}},
    // Also what the library makes of a record that it cannot read.
    {0x500000FF,
     {ExitCode::kDeviceError, "The device reported an unknown error, or sent data that is not understood.",
      "Look at its panel, then switch it off and on again."}},
    // Only the first generation ends so: by a record without a status.
    {0x1040100B,
     {ExitCode::kDeviceError, "The device sent data that is not understood.",
      "Switch it off and on again and repeat the scan."}},
};

constexpr Text kNotReachable = {ExitCode::kNotReachable, "The device cannot be reached.",
                                "Check that it is switched on and connected, and that its name is right."};
constexpr Text kConnectionLost = {ExitCode::kConnectionLost, "The connection to the device was lost.",
                                  "Check the cable or the network, then scan the remaining sheets."};

constexpr Text kNoAnswer = {ExitCode::kNotReachable, "The device does not answer.",
                            "Check that its name is that of a scanner, and switch it off and on again."};
constexpr Text kNoAnswerInScan = {ExitCode::kConnectionLost, "The device does not answer any more.",
                                  "Switch it off and on again, then repeat the scan."};

// The text for the kind of a code, which its top digit tells.
Text textOfKind(QSRSLT code, Phase phase) {
  switch (code & kKindMask) {
    case 0x20000000:
      return kCompanionMissing;
    case 0x30000000:
      return {ExitCode::kInternal, "There is not enough memory.",
              "Scan at a lower resolution or close other programs."};
    case 0x40000000:
      return phase == Phase::kConnecting ? kNotReachable : kConnectionLost;
    case kDeviceErrorKind:
      return {ExitCode::kDeviceError, "The device reported an error.",
              "Look at its panel, then switch it off and on again."};
    case 0x60000000:
      return {ExitCode::kDeviceError, "The device sent data that is not understood.",
              "Switch it off and on again and repeat the scan."};
    default:
      return {ExitCode::kInternal, "The scanning library failed.", "Report this with the number."};
  }
}

std::optional<Text> textOfCommandRefusal(QSRSLT code) {
  if ((code & ~kLowByte) != orvalle_scan_api::QSRSLT_DEVICE_STATUS &&
      (code & ~kLowByte) != orvalle_scan_api::QSRSLT_DOCUMENT_STATUS) {
    return std::nullopt;
  }
  const auto fault = static_cast<std::uint8_t>(code & kLowByte);
  for (const FaultRow& row : kFaults) {
    if (row.firstGen == fault || row.secondGen == fault) return row.text;
  }
  return Text{ExitCode::kDeviceError, "The device refused a command.",
              "Look at its panel, then switch it off and on again."};
}

Text textOf(QSRSLT code, Phase phase) {
  for (const FaultRow& row : kFaults) {
    if (row.result == code) return row.text;
  }
  for (const CodeRow& row : kCodes) {
    if (row.code == code) return row.text;
  }
  if (code == orvalle_scan_api::QSRSLT_CMD_NOT_OPENED) return kNotReachable;
  if (code == orvalle_scan_api::QSRSLT_DEVICE_READ_TIME_OUT)
    return phase == Phase::kConnecting ? kNoAnswer : kNoAnswerInScan;
  if (const auto refusal = textOfCommandRefusal(code)) return *refusal;
  return textOfKind(code, phase);
}

}  // namespace

std::string hexCode(QSRSLT code) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08X", code);
  return text.data();
}

ResultText describeResult(QSRSLT code, Phase phase) {
  const Text text = textOf(code, phase);
  std::string sentence = text.whatHappened;
  if (*text.whatToDo != '\0') sentence += std::string(" ") + text.whatToDo;
  return {text.exit, sentence + " (" + hexCode(code) + ")"};
}

}  // namespace qsscan
