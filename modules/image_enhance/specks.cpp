#include "specks.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <numeric>
#include <vector>

namespace image_enhance {
namespace {

// Fewer together are still dust, which lies close by chance more often than in even steps.
constexpr std::uint32_t kLeastClose = 8;
constexpr std::uint32_t kLeastInRow = 5;
constexpr std::size_t kMostCells = std::size_t{1} << 28;
constexpr int kNone = -1;

struct Speck {
  int x, y, width, height;
  int right() const { return x + width; }
  int bottom() const { return y + height; }
};

std::vector<Speck> specksOf(Pix& pix) {
  const BoxaPtr boxes = owned(pixConnCompBB(&pix, 8));
  std::vector<Speck> specks(static_cast<std::size_t>(boxaGetCount(boxes.get())));
  for (std::size_t i = 0; i < specks.size(); ++i) {
    Speck& speck = specks[i];
    boxaGetBoxGeometry(boxes.get(), static_cast<l_int32>(i), &speck.x, &speck.y, &speck.width, &speck.height);
  }
  return specks;
}

// Who is together with whom; a group is known by one of its members.
class Groups {
 public:
  explicit Groups(std::size_t count) : parents_(count), sizes_(count, 1) {
    std::iota(parents_.begin(), parents_.end(), 0);
  }
  int of(int member) {
    while (parent(member) != member) member = parent(member) = parent(parent(member));
    return member;
  }
  std::uint32_t sizeAround(int member) { return size(of(member)); }
  void join(int a, int b) {
    a = of(a);
    b = of(b);
    if (a == b) return;
    if (size(a) < size(b)) std::swap(a, b);
    parent(b) = a;
    size(a) += size(b);
  }

 private:
  std::uint32_t& size(int group) { return sizes_[static_cast<std::size_t>(group)]; }
  int& parent(int member) { return parents_[static_cast<std::size_t>(member)]; }

  std::vector<int> parents_;
  std::vector<std::uint32_t> sizes_;
};

// Specks by where their upper left corners lie. A cell is as large as a gap: those of one cell are together.
class Cells {
 public:
  Cells(const std::vector<Speck>& specks, const Pix& pix, const SpeckReach& reach)
      : cellX_(reach.gapX),
        cellY_(reach.gapY),
        columns_(pixGetWidth(const_cast<Pix*>(&pix)) / cellX_ + 1),
        rows_(pixGetHeight(const_cast<Pix*>(&pix)) / cellY_ + 1),
        next_(specks.size(), kNone) {
    const std::size_t count = static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_);
    if (count > kMostCells) throw std::bad_alloc();
    first_.assign(count, kNone);
    for (std::size_t i = 0; i < specks.size(); ++i) {
      int& first = first_[cellOf(specks[i].x / cellX_, specks[i].y / cellY_)];
      next_[i] = first;
      first = static_cast<int>(i);
    }
  }

  // Calls visit(speck) for those with corners from (left, top) to (right, bottom), and for some around, until it
  // returns true.
  template <class Visit>
  void forEachIn(int left, int top, int right, int bottom, Visit visit) const {
    for (int row = std::max(0, top / cellY_); row <= std::min(bottom / cellY_, rows_ - 1); ++row) {
      for (int column = std::max(0, left / cellX_); column <= std::min(right / cellX_, columns_ - 1); ++column) {
        for (int i = first_[cellOf(column, row)]; i != kNone; i = next_[static_cast<std::size_t>(i)]) {
          if (visit(i)) break;
        }
      }
    }
  }

 private:
  std::size_t cellOf(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) + static_cast<std::size_t>(column);
  }

  int cellX_, cellY_;
  int columns_, rows_;
  std::vector<int> first_;  // of each cell
  std::vector<int> next_;   // of each speck in its cell
};

void joinClose(const std::vector<Speck>& specks, const Cells& cells, const SpeckReach& reach, Groups& groups) {
  for (int i = 0; i < static_cast<int>(specks.size()); ++i) {
    const Speck& speck = specks[static_cast<std::size_t>(i)];
    // Those further up look down at this one.
    cells.forEachIn(speck.x - reach.gapX, speck.y, speck.right() + reach.gapX, speck.bottom() + reach.gapY, [&](int j) {
      if (j == i) return false;
      const Speck& other = specks[static_cast<std::size_t>(j)];
      const bool isClose = other.x - speck.right() <= reach.gapX && speck.x - other.right() <= reach.gapX &&
                           other.y - speck.bottom() <= reach.gapY && speck.y - other.bottom() <= reach.gapY;
      if (isClose) groups.join(i, j);
      return isClose;  // the others of that cell are with this one
    });
  }
}

void joinRows(const std::vector<Speck>& specks, const Cells& cells, const SpeckReach& reach, Groups& groups) {
  std::vector<int> following(specks.size(), kNone);
  const auto isOnLine = [&](const Speck& a, const Speck& b) {
    return std::abs(a.bottom() - b.bottom()) <= reach.rowTolerance;
  };
  for (std::size_t i = 0; i < specks.size(); ++i) {
    const Speck& speck = specks[i];
    int nearest = reach.rowStep + 1;
    cells.forEachIn(speck.right(), speck.y - 2 * reach.rowTolerance, speck.x + reach.rowStep,
                    speck.bottom() + reach.rowTolerance, [&](int j) {
                      const Speck& other = specks[static_cast<std::size_t>(j)];
                      const int step = other.x - speck.x;
                      if (step > 0 && step < nearest && isOnLine(speck, other)) {
                        nearest = step;
                        following[i] = j;
                      }
                      return false;
                    });
  }
  for (std::size_t i = 0; i < specks.size(); ++i) {
    const int second = following[i];
    const int third = second == kNone ? kNone : following[static_cast<std::size_t>(second)];
    if (third == kNone) continue;
    const int secondX = specks[static_cast<std::size_t>(second)].x;
    const int unevenness = (secondX - specks[i].x) - (specks[static_cast<std::size_t>(third)].x - secondX);
    if (std::abs(unevenness) > reach.rowTolerance) continue;
    groups.join(static_cast<int>(i), second);
    groups.join(second, third);
  }
}

}  // namespace

PixPtr specksInCompany(Pix& pix, const SpeckReach& reach) {
  const std::vector<Speck> specks = specksOf(pix);
  const Cells cells(specks, pix, reach);
  Groups close(specks.size());
  joinClose(specks, cells, reach, close);
  Groups rows(specks.size());
  joinRows(specks, cells, reach, rows);
  // A box may hold a part of another speck as well, which is together with this one then.
  const PixPtr seeds = owned(pixCreate(pixGetWidth(&pix), pixGetHeight(&pix), 1));
  for (std::size_t i = 0; i < specks.size(); ++i) {
    const int member = static_cast<int>(i);
    if (close.sizeAround(member) < kLeastClose && rows.sizeAround(member) < kLeastInRow) continue;
    const Speck& speck = specks[i];
    pixRasterop(seeds.get(), speck.x, speck.y, speck.width, speck.height, PIX_SET, nullptr, 0, 0);
  }
  pixAnd(seeds.get(), seeds.get(), &pix);
  return owned(pixSeedfillBinary(nullptr, seeds.get(), &pix, 8));
}

}  // namespace image_enhance
