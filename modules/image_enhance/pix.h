// The bridge to Leptonica: owned pictures, and pages as such pictures. A set bit of a Leptonica picture is ink.
// The library prints what goes wrong to stderr, by a setting that the whole process shares. It is not ours to change,
// so that every call here is made with arguments that the library accepts.
#pragma once

#include <leptonica/allheaders.h>

#include <exception>
#include <memory>
#include <utility>

#include "page.h"

namespace image_enhance {

// Leptonica gave no result; with arguments that it accepts, for want of memory.
class LibraryFailure : public std::exception {
 public:
  const char* what() const noexcept override { return "Leptonica gave no result"; }
};

struct PixDeleter {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<Pix, PixDeleter>;

struct BoxaDeleter {
  void operator()(Boxa* boxes) const { boxaDestroy(&boxes); }
};
using BoxaPtr = std::unique_ptr<Boxa, BoxaDeleter>;

struct PixaDeleter {
  void operator()(Pixa* pixa) const { pixaDestroy(&pixa); }
};
using PixaPtr = std::unique_ptr<Pixa, PixaDeleter>;

// Takes what Leptonica returned; throws LibraryFailure for null.
PixPtr owned(Pix* pix);
BoxaPtr owned(Boxa* boxes);

// An 8-bit picture of the page's brightness. The page is not mono.
PixPtr grayPix(const Page& page);

// The ink of a page: what is darker than level; of a mono page, all that is black.
PixPtr inkBelow(const Page& page, int level);

// Turns a picture of ink into a mono page of the same form.
Page monoPage(const PageForm& form, const Pix& ink);

// Calls visit(piece, box) for each connected piece of a 1-bit picture and where it lies in it.
template <class Visit>
void forEachPiece(Pix& pix, Visit visit) {
  Pixa* found = nullptr;
  const BoxaPtr boxes = owned(pixConnComp(&pix, &found, 8));
  const PixaPtr pieces(found);
  for (int i = 0; i < boxaGetCount(boxes.get()); ++i) {
    Box box{};
    boxaGetBoxGeometry(boxes.get(), i, &box.x, &box.y, &box.w, &box.h);
    visit(*owned(pixaGetPix(pieces.get(), i, L_CLONE)), std::as_const(box));
  }
}

// Bits of one line of a 1-bit picture.
class BitLine {
 public:
  BitLine(const Pix& pix, int y)
      : words_(pixGetData(const_cast<Pix*>(&pix)) +
               static_cast<std::ptrdiff_t>(y) * pixGetWpl(const_cast<Pix*>(&pix))) {}
  bool operator[](int x) const { return (words_[x / 32] >> (31 - x % 32) & 1u) != 0; }
  // Whether any of the 32 bits that x lies among is set.
  bool anyAround(int x) const { return words_[x / 32] != 0; }

 private:
  const l_uint32* words_;
};

}  // namespace image_enhance
