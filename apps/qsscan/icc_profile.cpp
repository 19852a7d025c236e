#include "icc_profile.h"

#include <lcms2.h>

#include <limits>

namespace qsscan {

std::optional<IccProfile> readIccProfile(std::span<const std::uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > std::numeric_limits<cmsUInt32Number>::max()) return std::nullopt;
  const cmsHPROFILE profile = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
  if (profile == nullptr) return std::nullopt;
  const cmsColorSpaceSignature space = cmsGetColorSpace(profile);
  cmsCloseProfile(profile);
  const int channels = space == cmsSigRgbData ? 3 : space == cmsSigGrayData ? 1 : 0;
  if (channels == 0) return std::nullopt;
  return IccProfile{{bytes.begin(), bytes.end()}, channels};
}

}  // namespace qsscan
