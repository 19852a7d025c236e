// Colour profiles as a device gives them.
#pragma once

#include <lcms2.h>

#include <cstdint>
#include <vector>

namespace qsscan_test {

inline std::vector<std::uint8_t> savedProfile(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile, nullptr, &size);
  std::vector<std::uint8_t> bytes(size);
  cmsSaveProfileToMem(profile, bytes.data(), &size);
  cmsCloseProfile(profile);
  return bytes;
}

inline std::vector<std::uint8_t> colorProfile() { return savedProfile(cmsCreate_sRGBProfile()); }

inline std::vector<std::uint8_t> greyProfile() {
  cmsToneCurve* curve = cmsBuildGamma(nullptr, 2.2);
  const cmsHPROFILE profile = cmsCreateGrayProfile(cmsD50_xyY(), curve);
  cmsFreeToneCurve(curve);
  return savedProfile(profile);
}

}  // namespace qsscan_test
