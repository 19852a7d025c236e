// A GKP body as the walk leaves it: the device's values unchanged, in the order of the tags, without gaps. The flag in
// front of a group says that its tag came.
#pragma once

#include <cstdint>

namespace orvalle_scan_api {

struct __attribute__((packed)) _GKPCMDRESPONSE {
  std::uint8_t scanEvent;  // 0x1001
  std::uint8_t kept1001;   //
  bool hasScanSettings;
  std::uint16_t resolutionX;  // 0x1002  dots per inch; 0 automatic
  std::uint16_t resolutionY;  //
  std::uint8_t colorType;     //
  std::uint8_t paperType;     //
  std::uint8_t direction;     //
  std::uint8_t brightness;    //
  std::uint8_t contrast;      //
  std::uint8_t kept1002;      //
  bool hasDuplex;
  std::uint8_t duplex;         // 0x1003
  std::uint8_t duplexBinding;  //
  bool hasImageSettings;
  std::uint8_t autoCrop;         // 0x1004
  std::uint8_t deskew;           //
  std::uint8_t landscape;        //
  std::uint8_t blankPageRemove;  //
  std::uint8_t bleedThrough;     //
  std::uint8_t groundRemoval;    //
  std::uint8_t groundLevel;      //
  std::uint8_t kept1004;         //
  bool hasFileSettings;
  std::uint8_t fileType;    // 0x1005
  std::uint8_t compress;    //
  std::uint8_t quality;     //
  std::uint8_t qualityArg;  //
  bool hasExtra;
  std::uint8_t kept1006[4];  // 0x1006
};
static_assert(sizeof(_GKPCMDRESPONSE) == 35);

}  // namespace orvalle_scan_api
