#include "image/icc_profiles.h"

#include <lcms2.h>

#include <memory>
#include <new>

namespace vscan {
namespace {

struct ProfileCloser {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

struct CurveFree {
  void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};

// A profile of a few kilobytes can only fail for want of memory.
Bytes saved(const Profile& profile) {
  cmsUInt32Number size = 0;
  if (!profile || cmsSaveProfileToMem(profile.get(), nullptr, &size) == 0) throw std::bad_alloc();
  Bytes bytes(size);
  if (cmsSaveProfileToMem(profile.get(), bytes.data(), &size) == 0) throw std::bad_alloc();
  return bytes;
}

}  // namespace

Bytes colorProfile() { return saved(Profile(cmsCreate_sRGBProfile())); }

Bytes greyProfile() {
  constexpr double kGamma = 2.2;
  const std::unique_ptr<cmsToneCurve, CurveFree> curve(cmsBuildGamma(nullptr, kGamma));
  if (!curve) throw std::bad_alloc();
  return saved(Profile(cmsCreateGrayProfile(cmsD50_xyY(), curve.get())));
}

}  // namespace vscan
