// Why the answers are those of hit_Tri and hit_Box; docs/performance.md has each step at length.
//
// All is measured in the coordinates of TAcross, with the mesh within 1 and rays within 1.1 of 0;
// u = 2^-24. Of a triangle, m is the largest part of the edges ab and ca in x and y, M the same
// with z, n the normal ca x ab, S = n.z twice its area across the direction. A ray starts at
// P = a + q, no farther than g from a in x and in y. e is the side of P of an edge: twice the area
// of the two across the direction. In exact arithmetic hit_Tri takes the signs of n q and of three
// e: it misses if some e has the sign of n q. Against the direction n q changes its sign.
//
// - Rounding to single precision moves a vertex by u / 2, a ray by u. So edges err by u (1 + M) in
//   each part, q by u (1.5 + g), the sides of ab and ca by u (2 g + 3 m + 8 m g), that of bc, which
//   is S less the two, by u (10 m + 12 m^2 + 4 g + 22 m g); 8 u (2 m + g) (1 + 4 m) is more, also
//   where scaled numbers are rounded once more.
// - A component of n errs by c = 4 u M (1 + 2 M), and by S / 2 at most if the triangle isn't thin.
//   n q errs by c (|q.x| + |q.y| + |q.z|) + 1.5 u |n| + 7 u g A + 4 u |n q| with A = |n.x| + |n.y|.
//   For thin ones that is the bound. For others |q.z| is (|n q| + g A) / |S| at most, and solving
//   for n q gives the bound g (A + 2 |S|) c / (|S| - c) + 3 u |n| + 11 u g A.
// - hit_Tri itself errs by 2^-45 and 2^-33 of the longest edge for e, since (org + dir) - org isn't
//   dir, and by 2^-47 M^2 for n q. Added to the above that makes `edge` and `side`: beyond them the
//   signs are those that hit_Tri finds.
//
// A ray is called missed where n q and some e are beyond `side` and `edge` with one sign; or,
// whatever n q is, where two e are beyond `clear`, twice `edge` and more, with both signs. Then
// hit_Tri misses unless it finds P in the plane of the triangle. It turns to hit_TriFlat in that
// case, whose turns are taken of whole coordinates: they err by 2^-49 K^2, with K how far from 0
// those are. P lies outside by more than 2^-25 M + 2^-49 K^2 in that projection too, so hit_TriFlat
// finds it outside, and it finds org + dir off the plane, since n dir is S: a miss.
//
// It is called hit where n q is beyond `side`, and all e are beyond `clear`, on the side that hits.
// So does hit_Tri. hit_Box of the triangle's own box passes as well: the ray crosses the triangle
// inside, 2^-22 of the way from each edge to the corner across. At least two extents of the box
// are 2^-24 and more, so the ray leaves each slab at least 2^-46 after it enters any other, while
// the quotients of hit_Box err by 2^-51 of themselves.
//
// The e add up to S. Where S is four times `clear`, some e is beyond it with the sign of S: such a
// sure triangle is missed where any other e or n q is beyond its bound with the sign that misses,
// and hit where none is but all are beyond with the other: the greatest of four numbers tells.
//
// A ray isn't held against a triangle, or misses it whatever is computed,
// - where P lies outside of its rectangle, widened by m / 8 and by 2^-19 at least. Then some e is
//   -S / 29 at most and another S / 3 at least, for positive S: clear of the errors of hit_Tri, and
//   in the projection of hit_TriFlat by more than 2^-49 K^2. So it misses. Bounds are those for
//   rays within, g = 1.25 m + 2^-18; beyond, errors grow no faster than the e that is negative, so
//   no hit is found where there is none.
// - where it runs away from the heights of the corners, widened by an eighth of their range and by
//   2^-19. Then n q has the sign that misses, or P lies outside as above.
// - where P lies outside of the shadow of its own box, if it is thin, or the ray runs away from
//   that box, which reaches no farther from a than 2.5 M. Then hit_Box fails.
// Thin triangles are those with S below 2^-19 M + `least`; `least`, 2^-30 or 2^-42 K^2, is what
// hit_TriFlat needs. The coordinates of a mesh may not be so large that most triangles would be.
#include "mesh/sweep.h"

#include <omp.h>

#include <algorithm>
#include <bit>
#include <cmath>

#include "foundation/parallel.h"
#include "mesh/point_range.h"
#include "mesh/sweep_bounds.h"

namespace undercut {

namespace {

constexpr double kPerTile = 96.0;      // triangles, on average
constexpr double kPerRow = 16.0;       // triangles in a tile of a row, at least
constexpr uint32_t kMostParts = 16;    // binned beside one another
constexpr uint32_t kPerPart = 4096;    // triangles and rays, at least
constexpr uint32_t kMostEntries = 32;  // tiles of a triangle, on average
constexpr uint32_t kSamples = 1024;    // triangles that are measured
constexpr double kTileBySide = 2.0;    // a tile's side, in those of rectangles of triangles

// Axes across a direction, to the right-hand side of one another, and as long as told.
void set_Axes(const T3DVEC& direction, double length, TAcross& across) {
  const T3DVEC z = unit(direction);
  const T3DVEC size = {std::fabs(z.x), std::fabs(z.y), std::fabs(z.z)};
  const bool x_least = size.x <= size.y && size.x <= size.z;
  const T3DVEC least = x_least            ? T3DVEC{1, 0, 0}
                       : size.y <= size.z ? T3DVEC{0, 1, 0}
                                          : T3DVEC{0, 0, 1};
  const T3DVEC x = unit(cross(least, z));
  across.x = length * x;
  across.y = length * cross(z, x);
  across.z = length * z;
}

T3DVEC lesser(const T3DVEC& a, const T3DVEC& b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}
T3DVEC greater(const T3DVEC& a, const T3DVEC& b) {
  return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

const TSweepLanes* fastest_Lanes() {
  if (avx512_Lanes()) return avx512_Lanes();
  return avx2_Lanes() ? avx2_Lanes() : &kPortableLanes;
}

}  // namespace

bool CSweep::ini_Msh(const C3DTriAABBTree& tree, const TSweepLanes* lanes) {
  tree_ = &tree;
  lanes_ = lanes ? lanes : fastest_Lanes();
  msh_ = tree.mesh();
  if (tree.has_Excluded() || std::max(msh_.n_tri, msh_.n_vtx) > kMostIndex) return false;
  const TPointRange range = range_Blocks(msh_.n_vtx, [&](uint32_t first, uint32_t end) {
    TPointRange part;
    for (uint32_t v = first; v < end; ++v) part.add(msh_.vtx[v]);
    return part;
  });
  box_ = range.box;
  return msh_.n_tri != 0 && range.is_finite && 0.5 * len(box_.size()) >= 0x1p-60;
}

bool CSweep::clear_Hit(const T3DVEC& direction, const TSweepRays& rays) {
  if (rays.count > kMostIndex || !set_Across(direction, rays.box)) return false;
  // Small meshes would wait for threads longer than they work.
  const uint32_t worth = 1 + (msh_.n_tri + rays.count) / kPerPart;
  parts_ = std::min({kMostParts, worth, static_cast<uint32_t>(omp_get_max_threads())});
  lay_Tiles(place_Mesh());
  if (!bin_Triangles()) return false;
  bin_Rays(rays);
  answer_Tiles(rays);
  return true;
}

// The bounds of the errors need rays that start close to the mesh, and a direction that org + dir
// keeps (see above); ranges keep all clear of overflow.
bool CSweep::set_Across(const T3DVEC& direction, const C3DAABB& starts) {
  const double length = len(direction), reach = 0.5 * len(box_.size());
  const double most = std::max(max_Abs(box_.min), max_Abs(box_.max));
  const double beyond = std::max(max_Abs(box_.min - lesser(box_.min, starts.min)),
                                 max_Abs(greater(box_.max, starts.max) - box_.max));
  if (!(length >= 0x1p-40 && length <= 0x1p40)) return false;
  if (!(most + beyond <= 0x1p17 * length && beyond <= 0.05 * reach)) return false;
  const double away = (most + beyond) / reach;
  if (!(away <= 0x1p12)) return false;
  least_ = static_cast<float>(std::max(kThinLeast, kThinFar * away * away));
  direction_ = direction;
  const double scale = 0.999 / reach;
  set_Axes(direction, scale, across_);
  across_.centre = box_.centre();
  return true;
}

// body(part, first, end) for parts of the entries beside one another.
template <typename Body>
void CSweep::each_Part(uint32_t count, Body body) const {
  const auto first = [&](uint32_t part) {
    return static_cast<uint32_t>(uint64_t{count} * part / parts_);
  };
  each_Index(
      parts_, [&](uint32_t part) { body(part, first(part), first(part + 1)); }, kFewParts);
}

// The rectangle of a triangle's own box.
CSweep::TFlatBox CSweep::shadow(uint32_t t) const {
  C3DAABB own;
  own.from_Tri(get_Fac(msh_, t));
  const T3DVEC centre = across_(own.centre()), half = 0.5 * own.size();
  const auto reach = [&](const T3DVEC& axis) {
    return half.x * std::fabs(axis.x) + half.y * std::fabs(axis.y) + half.z * std::fabs(axis.z) +
           kPad;
  };
  const double x = reach(across_.x), y = reach(across_.y);
  return {static_cast<float>(centre.x - x), static_cast<float>(centre.x + x),
          static_cast<float>(centre.y - y), static_cast<float>(centre.y + y)};
}

CSweep::TFlatBox CSweep::place_Mesh() {
  points_.resize(msh_.n_vtx);
  TFlatBox boxes[kMostParts];
  each_Part(msh_.n_vtx, [&](uint32_t part, uint32_t first, uint32_t end) {
    TFlatBox box = {2.0f, -2.0f, 2.0f, -2.0f};
    for (uint32_t v = first; v < end; ++v) {
      const T3DVEC p = across_(msh_.vtx[v]);
      const auto x = static_cast<float>(p.x), y = static_cast<float>(p.y);
      points_[v] = {x, y, static_cast<float>(p.z), 0.0f};
      box = {std::min(box.low_x, x), std::max(box.high_x, x), std::min(box.low_y, y),
             std::max(box.high_y, y)};
    }
    boxes[part] = box;
  });
  for (uint32_t part = 1; part < parts_; ++part)
    boxes[0] = {
        std::min(boxes[0].low_x, boxes[part].low_x), std::max(boxes[0].high_x, boxes[part].high_x),
        std::min(boxes[0].low_y, boxes[part].low_y), std::max(boxes[0].high_y, boxes[part].high_y)};
  return boxes[0];
}

// The mean side of the rectangles of some triangles, evenly spread in their list.
double CSweep::find_Side() const {
  const uint32_t step = 1 + msh_.n_tri / kSamples;
  uint32_t count = 0;
  double sum = 0;
  for (uint32_t t = 0; t < msh_.n_tri; t += step, ++count) {
    const TFlatVec &a = points_[msh_.tri[t].a], &b = points_[msh_.tri[t].b];
    const TFlatVec& c = points_[msh_.tri[t].c];
    const auto [low_x, high_x] = std::minmax({a.x, b.x, c.x});
    const auto [low_y, high_y] = std::minmax({a.y, b.y, c.y});
    sum += 0.5 * ((high_x - low_x) + (high_y - low_y));
  }
  return sum / count;
}

// As many triangles in a tile as pay best, if they were spread evenly, but tiles larger than these.
// A mesh that lies nearly edge-on gets a row of tiles.
void CSweep::lay_Tiles(const TFlatBox& box) {
  const double width = box.high_x - box.low_x, height = box.high_y - box.low_y;
  const double n = msh_.n_tri;
  tile_ = std::max(std::sqrt(width * height * kPerTile / n), 0x1p-14);
  tile_ = std::max({tile_, (width + height) * kPerRow / n, kTileBySide * find_Side()});
  tiles_.low_x = box.low_x;
  tiles_.low_y = box.low_y;
  tiles_.per_unit = static_cast<float>(1.0 / tile_);
  tiles_.columns = static_cast<uint32_t>(width / tile_) + 1;
  tiles_.rows = static_cast<uint32_t>(height / tile_) + 1;
}

// body(first, count, row) for each group of entries, to count them.
template <typename Body>
void CSweep::count_Groups(uint32_t count, uint32_t bins, CBins& out, Body body) {
  out.start(bins, parts_);
  each_Part(find_Groups(count), [&](uint32_t part, uint32_t first, uint32_t end) {
    CBins::CRow row = out.clear_Row(part);
    for (uint32_t k = first; k < end; ++k)
      body(k * kGroup, std::min(kGroup, count - k * kGroup), row);
  });
}

// body(entry, row) for each of them, to put it.
template <typename Body>
void CSweep::put_Groups(uint32_t count, CBins& out, Body body) {
  each_Part(find_Groups(count), [&](uint32_t part, uint32_t first, uint32_t end) {
    CBins::CRow row = out.row(part);
    for (uint32_t i = first * kGroup; i < std::min(end * kGroup, count); ++i) body(i, row);
  });
}

TFlatMesh CSweep::flat_Mesh() const { return {points_.data(), msh_.tri, least_}; }

// The tiles under a triangle's own box.
void CSweep::span_Shadow(uint32_t t) {
  const TFlatBox box = shadow(t);
  columns_[t] = tiles_.column(box.low_x) | tiles_.column(box.high_x) << 16;
  rows_[t] = tiles_.row(box.low_y) | tiles_.row(box.high_y) << 16;
}

bool CSweep::bin_Triangles() {
  const uint32_t tiles = tiles_.count();
  const TFlatMesh mesh = flat_Mesh();
  columns_.resize(size_t{msh_.n_tri} + kGroup);
  rows_.resize(size_t{msh_.n_tri} + kGroup);
  // sure(tile) and perhaps(is, tile, spare), see CBins: most triangles lie over one tile, or two or
  // four, and take no loops.
  const auto each_Tile = [&](uint32_t t, auto sure, auto perhaps) {
    const uint32_t column = columns_[t] & 0xffffu, row = rows_[t] & 0xffffu;
    const uint32_t across = (columns_[t] >> 16) - column, down = (rows_[t] >> 16) - row;
    const uint32_t tile = row * tiles_.columns + column;
    if ((across | down) > 1) {
      for (uint32_t k = 0; k <= down; ++k)
        for (uint32_t i = 0; i <= across; ++i) sure(tile + k * tiles_.columns + i);
      return;
    }
    sure(tile);
    perhaps(across, tile + 1, 0);
    perhaps(down, tile + tiles_.columns, 1);
    perhaps(across & down, tile + tiles_.columns + 1, 2);
  };
  count_Groups(
      msh_.n_tri, tiles, triangles_, [&](uint32_t first, uint32_t count, CBins::CRow& row) {
        uint32_t thin =
            lanes_->find_Spans(mesh, first, count, tiles_, {&columns_[first], &rows_[first]});
        for (; thin != 0; thin &= thin - 1)
          span_Shadow(first + static_cast<uint32_t>(std::countr_zero(thin)));
        for (uint32_t t = first; t < first + count; ++t)
          each_Tile(
              t, [&](uint32_t tile) { row.count(tile); },
              [&](uint32_t is, uint32_t tile, uint32_t spare) { row.count_If(is, tile, spare); });
      });
  if (!triangles_.make_Room(uint64_t{kMostEntries} * msh_.n_tri)) return false;
  put_Groups(msh_.n_tri, triangles_, [&](uint32_t t, CBins::CRow& row) {
    each_Tile(
        t, [&](uint32_t tile) { row.put(tile, t); },
        [&](uint32_t is, uint32_t tile, uint32_t spare) { row.put_If(is, tile, spare, t); });
  });
  return true;
}

// A ray that leaves through its own triangle is hit by that, which is cheap to ask first. Counts
// the rays that are left.
void CSweep::ask_Own(const TSweepRays& rays, uint32_t first, uint32_t count, CBins::CRow& row) {
  uint32_t starts[kGroup], own[kGroup];
  for (uint32_t k = 0; k < kGroup; ++k) {
    starts[k] = rays.id(first + std::min(k, count - 1));
    own[k] = std::min(starts[k], msh_.n_tri - 1);
  }
  const TPlaced out = {&x_[first], &y_[first], &z_[first], &spot_[first]};
  const uint32_t hits =
      lanes_->place_Rays(flat_Mesh(), across_, tiles_, rays.orgs, starts, own, out);
  for (uint32_t k = 0; k < count; ++k) {
    uint8_t& sight = rays.sight[first + k];
    const uint32_t closed =
        (hits >> k & 1u) * kSeesAhead | (hits >> (k + kGroup) & 1u) * kSeesBehind;
    sight &= static_cast<uint8_t>(~closed);
    if (sight & kSeesAhead) row.count(2 * (out.spot[k] >> 8));
    if (sight & kSeesBehind) row.count(2 * (out.spot[k] >> 8) + 1);
  }
}

void CSweep::bin_Rays(const TSweepRays& rays) {
  const uint32_t bins = 2 * tiles_.count();
  for (CScratch<float>* row : {&x_, &y_, &z_}) row->resize(size_t{rays.count} + kGroup);
  spot_.resize(size_t{rays.count} + kGroup);
  count_Groups(rays.count, bins, rays_, [&](uint32_t first, uint32_t count, CBins::CRow& row) {
    ask_Own(rays, first, count, row);
  });
  rays_.make_Room(UINT32_MAX);  // two of each ray at most, which are fewer than 2^27
  put_Groups(rays.count, rays_, [&](uint32_t i, CBins::CRow& row) {
    if (rays.sight[i] & kSeesAhead) row.put(2 * (spot_[i] >> 8), i);
    if (rays.sight[i] & kSeesBehind) row.put(2 * (spot_[i] >> 8) + 1, i);
  });
}

}  // namespace undercut
