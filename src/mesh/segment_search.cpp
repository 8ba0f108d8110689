// Nearest segments: the build and the descent.
//
// The margin. Let M bound all coordinates, |p| included, and eps be 2^-53. What dst_Seg2 measures
// against is an end of the segment or a + s along. There the computed length and direction are off
// by a few eps in relation, so the point lies no farther than 8 eps times the length from the
// segment, and rounding of the sum adds 2 eps M in each coordinate: less than 40 eps M in all. The
// subtraction from p, the squares and their sum are off by 4 eps in relation, as is the square for
// a box. Where squares underflow the error is below 1e-150 mm. So with d the distance of a box from
// p and m = 40 eps M + 1e-150, no segment in the box measures less than (d - m) (1 - 4 eps), and
// the box holds nothing nearer than r unless d <= r (1 + 5 eps) + m. Then, as 2 r m <= 1e-12 r^2 +
// 1e12 m^2, its square is not above (1 + 2e-12) r^2 + 2e12 m^2. With twice the m that is needed,
// that is the limit: for parts of 100 mm it tells distances apart that differ by some 1e-6 mm,
// which is nothing beside the size of a segment.
#include "mesh/segment_search.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>

namespace undercut {

namespace {

constexpr double kHuge = 1e150;                          // squares of what is smaller are finite
constexpr double kRelative = 1e-14, kAbsolute = 2e-150;  // twice 40 eps is below 1e-14

// The largest coordinate; not below kHuge also for what is no number.
double find_Extent(const T2DPOL& pol) {
  double extent = 0.0;
  for (uint32_t i = 0; i < pol.n_pnt; ++i) {
    const T2DVEC& p = pol.pnt[i];
    const double larger = std::max(std::fabs(p.x), std::fabs(p.y));
    if (!(std::fabs(p.x) < kHuge && std::fabs(p.y) < kHuge)) return kHuge;
    extent = std::max(extent, larger);
  }
  return extent;
}

bool has_Points(const T2DPOL& pol) {
  if (!pol.pnt || !pol.sgm || pol.n_pnt == 0 || pol.n_sgm == 0) return false;
  return std::all_of(pol.sgm, pol.sgm + pol.n_sgm,
                     [&](const T3DSGM& s) { return s.a < pol.n_pnt && s.b < pol.n_pnt; });
}

C2DAABB box_Of(const T2DPOL& pol, uint32_t id) {
  C2DAABB box;
  box.add(pol.pnt[pol.sgm[id].a]);
  box.add(pol.pnt[pol.sgm[id].b]);
  return box;
}

// The boxes still to be looked at, the nearest on top of those of one node. Each level leaves
// seven at the most behind.
struct TStack {
  struct TEntry {
    uint32_t level, box;
    double square;
  };
  TEntry entries[8 * 12];
  uint32_t count = 0;

  void push(const TEntry& entry, uint32_t floor) {
    uint32_t k = count++;
    for (; k > floor && entries[k - 1].square < entry.square; --k) entries[k] = entries[k - 1];
    entries[k] = entry;
  }
};

}  // namespace

bool C2DSgmSearch::Build(const T2DPOL& pol) {
  Clear();
  if (!has_Points(pol)) return false;
  pol_ = pol;
  extent_ = find_Extent(pol);
  if (!(extent_ < kHuge)) return true;
  try {
    std::vector<uint32_t> ids(pol.n_sgm);
    order(pol, ids);
    lay_Blocks(pol, ids);
    lay_Boxes(pol, ids);
  } catch (const std::bad_alloc&) {
    Clear();
    return false;
  }
  return true;
}

void C2DSgmSearch::Clear() {
  pol_ = {};
  extent_ = 0.0;
  blocks_.clear();
  boxes_.clear();
  levels_.clear();
}

// Parts the segments at a middle along the longer side of their box, again and again, so that eight
// boxes that follow one another lie close together on every level: all parts but the last hold
// eight times a power of two.
void C2DSgmSearch::order(const T2DPOL& pol, std::vector<uint32_t>& ids) const {
  std::iota(ids.begin(), ids.end(), 0u);
  struct TRange {
    uint32_t first, last;
  };
  std::vector<TRange> pending = {{0, pol.n_sgm}};
  while (!pending.empty()) {
    const auto [first, last] = pending.back();
    pending.pop_back();
    if (last - first <= kBlock) continue;
    C2DAABB box;
    for (uint32_t i = first; i < last; ++i) box.merge(box_Of(pol, ids[i]));
    uint32_t part = kBlock;
    while (last - first - part > part) part *= 2;
    const bool along_x = box.longest() == 'x';
    const auto key = [&](uint32_t id) {
      const T2DVEC &a = pol.pnt[pol.sgm[id].a], &b = pol.pnt[pol.sgm[id].b];
      return along_x ? a.x + b.x : a.y + b.y;
    };
    const auto begin = ids.begin();
    std::nth_element(begin + first, begin + first + part, begin + last,
                     [&](uint32_t i, uint32_t k) { return key(i) < key(k); });
    pending.push_back({first, first + part});
    pending.push_back({first + part, last});
  }
}

void C2DSgmSearch::lay_Blocks(const T2DPOL& pol, const std::vector<uint32_t>& ids) {
  blocks_.resize((pol.n_sgm + size_t{kBlock} - 1) / kBlock);
  for (size_t i = 0; i < blocks_.size() * kBlock; ++i) {
    const T3DSGM sgm = pol.sgm[ids[std::min(i, ids.size() - 1)]];
    const T2DVEC a = pol.pnt[sgm.a], b = pol.pnt[sgm.b];
    const double length = len(b - a);
    const T2DVEC along = length == 0.0 ? T2DVEC{0.0, 0.0} : (b - a) / length;
    TSgmBlock& block = blocks_[i / kBlock];
    const size_t k = i % kBlock;
    block.ax[k] = a.x;
    block.ay[k] = a.y;
    block.bx[k] = b.x;
    block.by[k] = b.y;
    block.ux[k] = along.x;
    block.uy[k] = along.y;
    block.length[k] = length;
  }
}

// The boxes of the blocks, those of eight of them, and so on, until one node holds all.
void C2DSgmSearch::lay_Boxes(const T2DPOL& pol, const std::vector<uint32_t>& ids) {
  std::vector<C2DAABB> level(blocks_.size());
  for (size_t i = 0; i < ids.size(); ++i) level[i / kBlock].merge(box_Of(pol, ids[i]));
  constexpr double kEndless = std::numeric_limits<double>::infinity();
  while (level.size() > 1) {
    levels_.push_back(static_cast<uint32_t>(boxes_.size()));
    std::vector<C2DAABB> above((level.size() + kBlock - 1) / kBlock);
    for (size_t i = 0; i < above.size() * kBlock; ++i) {
      if (i % kBlock == 0) boxes_.emplace_back();
      TBoxBlock& node = boxes_.back();
      const size_t k = i % kBlock;
      const bool there = i < level.size();
      node.low_x[k] = there ? level[i].min.x : kEndless;
      node.low_y[k] = there ? level[i].min.y : kEndless;
      node.high_x[k] = there ? level[i].max.x : -kEndless;
      node.high_y[k] = there ? level[i].max.y : -kEndless;
      if (there) above[i / kBlock].merge(level[i]);
    }
    level.swap(above);
  }
}

double C2DSgmSearch::Nearest(const T2DVEC& p, uint32_t& near) const {
  const double extent = extent_ + std::fabs(p.x) + std::fabs(p.y);
  if (blocks_.empty() || !(extent < kHuge)) return dst_Pol2(pol_, p);
  const double margin = kRelative * extent + kAbsolute;
  return search(p, 2e12 * margin * margin, near);
}

// `margin` is what the limit adds to the square of the nearest.
double C2DSgmSearch::search(const T2DVEC& p, double margin, uint32_t& near) const {
  constexpr double kWider = 1.0 + 2e-12;
  const uint32_t start = near < blocks_.size() ? near : 0;
  near = start;
  double best = near_Block(blocks_[start], p), limit = kWider * best + margin;
  TStack stack;
  if (!levels_.empty()) stack.push({static_cast<uint32_t>(levels_.size()), 0, 0.0}, 0);
  while (stack.count > 0) {
    const auto [level, box, square] = stack.entries[--stack.count];
    if (square > limit) continue;
    if (level > 0) {
      double squares[kBlock];
      const uint32_t floor = stack.count;
      uint32_t reached = reach_Boxes(boxes_[levels_[level - 1] + box], p, limit, squares);
      for (; reached != 0; reached &= reached - 1) {
        const auto k = static_cast<uint32_t>(std::countr_zero(reached));
        stack.push({level - 1, kBlock * box + k, squares[k]}, floor);
      }
    } else if (box != start) {
      const double nearest = near_Block(blocks_[box], p);
      if (!(nearest < best)) continue;
      best = nearest;
      limit = kWider * best + margin;
      near = box;
    }
  }
  return std::sqrt(best);
}

}  // namespace undercut
