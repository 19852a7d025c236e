// The one exported symbol of QsImageEnhance.so.
#include <new>

#include "image_enhance.h"

// The new object, released with delete; null when there is no memory for it.
extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IImageEnhance* CreateInstance() {
  return new (std::nothrow) image_enhance::ImageEnhance;
}
