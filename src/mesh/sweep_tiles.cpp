// The tiles of a sweep: what each of them costs, and which of its rays are hit.
#include <algorithm>
#include <bit>

#include "foundation/parallel.h"
#include "mesh/ray_walk.h"
#include "mesh/sweep.h"
#include "mesh/sweep_bounds.h"

namespace undercut {

namespace {

constexpr uint32_t kChunk = 32;           // triangles sifted at a time
constexpr uint32_t kLayer = 64;           // triangles of a deep tile looked over at a time
constexpr uint32_t kTileSamples = 16;     // triangles of a tile that are measured
constexpr uint32_t kFewFlats = 256;       // of a tile that is never answered by depth
constexpr uint32_t kDeepShare = 8;        // of them one triangle is sifted
constexpr double kManyLayers = 24.0;      // of a tile that is answered by depth
constexpr uint32_t kRunsPerPart = 4;      // of tiles
constexpr uint64_t kWorkByRay = 8;        // what a ray takes besides, in siftings of a triangle
constexpr uint64_t kWorkByTriangle = 8;   // what a triangle takes besides, likewise
constexpr uint32_t kRayByTree = 64;       // what a ray costs in the tree, in siftings of a triangle
constexpr uint32_t kTreeByTriangle = 48;  // what the tree's making costs, likewise

// Even bins hold rays along the direction, odd ones those against it.
uint8_t way_Bit(uint32_t bin) { return bin % 2 == 0 ? kSeesAhead : kSeesBehind; }
float way_Sign(uint32_t bin) { return bin % 2 == 0 ? 1.0f : -1.0f; }
// The least place along their way at which rays of a group start.
float find_Nearest(const TGroup& group) {
  float nearest = group.way * group.z[0];
  for (uint32_t k = 1; k < kGroup; ++k) nearest = std::min(nearest, group.way * group.z[k]);
  return nearest;
}
void close_Way(uint8_t& sight, uint32_t bin) { sight &= static_cast<uint8_t>(~way_Bit(bin)); }

static_assert(kMostFlats % kLayer == 0 && kLayer % kGroup == 0);

}  // namespace

// A tile and some of its triangles.
struct CSweep::TTile {
  explicit TTile(uint32_t tile) : number(tile) {}

  uint32_t number;
  uint32_t from = UINT32_MAX, count = 0;  // in the bin
  TFlats flats;
  float reach[kMostFlats / kLayer];  // of a deep tile, layer by layer: how far along the rays' way
};

void CSweep::answer_Tiles(const TSweepRays& rays) {
  find_Deep();
  asks_tree_ = prefers_Tree();
  if (asks_tree_) tree_->BuildRays();

  // Runs of tiles far from one another, since the work of neighbours is foretold wrongly in the
  // same way. The factor is a prime, so each run is met once.
  const uint32_t runs = share_Tiles();
  each_Index(
      runs,
      [&](uint32_t i) {
        const auto run = static_cast<uint32_t>(uint64_t{i} * 2654435761u % runs);
        const uint32_t end = runs_[run + 1];
        for (uint32_t tile = runs_[run]; tile < end; ++tile) answer_Tile(rays, tile, end);
      },
      kFewParts);
}

// Which tiles are covered many times over, by the areas of some of their triangles.
void CSweep::find_Deep() {
  is_deep_.resize(tiles_.count());
  each_Index(tiles_.count(), [&](uint32_t tile) {
    const uint32_t count = triangles_.count(tile), step = 1 + count / kTileSamples;
    double sum = 0;
    for (uint32_t i = 0; count > kFewFlats && i < count; i += step) {
      const T3DTRI& t = msh_.tri[*triangles_.entries(triangles_.begin(tile) + i)];
      const TFlatVec &a = points_[t.a], &b = points_[t.b], &c = points_[t.c];
      sum += area_Tri(T2DVEC{a.x, a.y}, T2DVEC{b.x, b.y}, T2DVEC{c.x, c.y});
    }
    is_deep_[tile] = sum * step > kManyLayers * tile_ * tile_ ? 1 : 0;
  });
}

// What the rays of a bin cost more than in the tree, in siftings of a triangle. Where they are
// answered by depth only a part of the triangles is sifted.
int64_t CSweep::find_Excess(uint32_t bin) const {
  const int64_t rays = rays_.count(bin), triangles = triangles_.count(bin / 2);
  return find_Groups(rays_.count(bin)) * triangles / (is_deep_[bin / 2] ? kDeepShare : 1) -
         kRayByTree * rays;
}

// What a tile takes, in siftings of a triangle, about.
uint64_t CSweep::find_Work(uint32_t tile) const {
  const uint64_t triangles = triangles_.count(tile);
  uint64_t work = 0;
  for (uint32_t bin = 2 * tile; bin < 2 * tile + 2; ++bin) {
    const uint32_t rays = rays_.count(bin);
    if (rays == 0) continue;
    work += kWorkByRay * rays;
    work += asks_tree_ && is_Crowded(bin) ? uint64_t{kRayByTree} * rays
                                          : (kWorkByTriangle + find_Groups(rays)) * triangles /
                                                (is_deep_[tile] ? kDeepShare : 1);
  }
  return work + 1;
}

// Cuts the tiles into runs of equal work, run k from runs_[k] to runs_[k + 1]; their number.
uint32_t CSweep::share_Tiles() {
  const uint32_t tiles = tiles_.count();
  const uint32_t runs = parts_ > 1 ? std::min(parts_ * kRunsPerPart, tiles) : 1;
  runs_.resize(size_t{runs} + 1);
  uint64_t all = 0, sum = 0;
  for (uint32_t tile = 0; tile < tiles; ++tile) all += find_Work(tile);
  uint32_t run = 0;
  for (uint32_t tile = 0; tile < tiles; ++tile) {
    for (; run <= sum * runs / all; ++run) runs_[run] = tile;
    sum += find_Work(tile);
  }
  for (; run <= runs; ++run) runs_[run] = tiles;
  return runs;
}

// Whether the crowded bins are worth the tree.
bool CSweep::prefers_Tree() const {
  int64_t excess = 0;
  for (uint32_t bin = 0; bin < 2 * tiles_.count(); ++bin)
    excess += std::max(int64_t{0}, find_Excess(bin));
  return excess > (tree_->has_Rays() ? 0 : int64_t{kTreeByTriangle} * msh_.n_tri);
}

void CSweep::ask_Tree(const TSweepRays& rays, uint32_t bin) const {
  const T3DVEC way = bin % 2 == 0 ? direction_ : -direction_;
  for (uint32_t k = rays_.begin(bin); k < rays_.begin(bin + 1); ++k) {
    const uint32_t i = *rays_.entries(k);
    if (tree_->AnyHit({rays.orgs[rays.id(i)], way})) close_Way(rays.sight[i], bin);
  }
}

// Of a thin triangle nothing is known but that a ray must come to its own box.
void CSweep::narrow_Thin(const uint32_t* ids, uint32_t count, TFlats& flats) const {
  for (uint32_t i = 0; i < count; ++i) {
    if (flats.clear[i] < kInfinite) continue;
    const TFlatBox box = shadow(ids[i]);
    flats.low_x[i] = box.low_x;
    flats.high_x[i] = box.high_x;
    flats.low_y[i] = box.low_y;
    flats.high_y[i] = box.high_y;
  }
}

// Brings what the next tiles need close while this one is answered: triangles two tiles ahead,
// their corners and the rays one. Not beyond the end of the run: others may be sorting there.
void CSweep::fetch_Ahead(uint32_t tile, uint32_t end) const {
  const uint32_t next = std::min(tile + 1, end), last = std::min(tile + 2, end);
  const uint32_t after = std::min(tile + 3, end);
  for (uint32_t k = triangles_.begin(last); k < triangles_.begin(after); ++k)
    __builtin_prefetch(&msh_.tri[*triangles_.entries(k)]);
  for (uint32_t k = triangles_.begin(next); k < triangles_.begin(last); ++k) {
    const T3DTRI& t = msh_.tri[*triangles_.entries(k)];
    for (const uint32_t corner : {t.a, t.b, t.c}) __builtin_prefetch(&points_[corner]);
  }
  for (uint32_t k = rays_.begin(2 * next); k < rays_.begin(2 * last); ++k) {
    const uint32_t i = *rays_.entries(k);
    for (const float* row : {x_.data(), y_.data(), z_.data()}) __builtin_prefetch(row + i);
    __builtin_prefetch(&spot_[i]);
  }
}

void CSweep::answer_Tile(const TSweepRays& rays, uint32_t number, uint32_t end_of_run) {
  fetch_Ahead(number, end_of_run);
  TTile tile(number);
  for (uint32_t bin = 2 * number; bin < 2 * number + 2; ++bin) {
    if (rays_.count(bin) == 0) continue;
    if (asks_tree_ && is_Crowded(bin)) {
      ask_Tree(rays, bin);
      continue;
    }
    if (is_deep_[number]) {
      order_Triangles(flat_Mesh(), way_Sign(bin), triangles_.count(number),
                      triangles_.entries(triangles_.begin(number)));
      tile.from = UINT32_MAX;
    }
    const uint32_t end = rays_.begin(bin + 1);
    for (uint32_t first = rays_.begin(bin); first < end; first += kMostRays)
      answer_Rays(rays, bin, rays_.entries(first), std::min(kMostRays, end - first), tile);
  }
}

// How far along their way rays may start that come to triangles of each layer.
void CSweep::find_Reach(float way, TTile& tile) const {
  const float* ends = way > 0.0f ? tile.flats.high_z : tile.flats.low_z;
  for (uint32_t first = 0; first < tile.count; first += kLayer) {
    float reach = way * ends[first];
    for (uint32_t i = first + 1; i < std::min(first + kLayer, tile.count); ++i)
      reach = std::max(reach, way * ends[i]);
    tile.reach[first / kLayer] = reach;
  }
}

// Makes flats of the triangles from `from` on.
void CSweep::lay_Flats(float way, uint32_t from, TTile& tile) const {
  if (tile.from == from) return;
  tile.from = from;
  tile.count = std::min(kMostFlats, triangles_.begin(tile.number + 1) - from);
  const uint32_t* ids = triangles_.entries(from);
  if (lanes_->flatten(flat_Mesh(), ids, tile.count, tile.flats))
    narrow_Thin(ids, tile.count, tile.flats);
  if (is_deep_[tile.number]) find_Reach(way, tile);
}

// Holds rays of a tile against its triangles.
void CSweep::answer_Rays(const TSweepRays& rays, uint32_t bin, const uint32_t* list, uint32_t count,
                         TTile& tile) const {
  TTileRays asked;
  asked.way = way_Sign(bin);
  order_Rays({x_.data(), y_.data(), z_.data(), spot_.data()}, list, count,
             is_deep_[tile.number] != 0, asked);
  uint16_t alive[kMostGroups];
  for (uint32_t k = 0; k < count; k += kGroup)
    alive[k / kGroup] = static_cast<uint16_t>((1u << std::min(kGroup, count - k)) - 1);
  const uint32_t end = triangles_.begin(tile.number + 1);
  for (uint32_t from = triangles_.begin(tile.number); from < end; from += kMostFlats) {
    lay_Flats(asked.way, from, tile);
    for (uint32_t k = 0; k < count; k += kGroup) {
      uint32_t hits = find_Hits(rays, asked, k, alive[k / kGroup], tile);
      alive[k / kGroup] &= static_cast<uint16_t>(~hits);
      for (; hits != 0; hits &= hits - 1)
        close_Way(rays.sight[asked.ray[k + static_cast<uint32_t>(std::countr_zero(hits))]], bin);
    }
  }
}

// Which of the alive rays of a group hit a triangle. Of deep tiles layer after layer is looked
// over: those behind all rays not at all, and none beyond the first that stop all.
uint32_t CSweep::find_Hits(const TSweepRays& rays, const TTileRays& asked, uint32_t first,
                           uint32_t alive, const TTile& tile) const {
  if (alive == 0) return 0;
  const TGroup group = asked.group(first);
  uint32_t list[kMostFlats + kGroup];
  if (!is_deep_[tile.number]) {
    const uint32_t listed = lanes_->select(tile.flats, 0, tile.count, group, list);
    return sift_Listed(rays, asked, first, alive, tile, list, listed);
  }
  const float nearest = find_Nearest(group);
  uint32_t hits = 0;
  for (uint32_t from = 0; from < tile.count && alive != hits; from += kLayer) {
    if (tile.reach[from / kLayer] < nearest) continue;
    const uint32_t end = std::min(from + kLayer, tile.count);
    const uint32_t listed = lanes_->select(tile.flats, from, end, group, list);
    hits |= sift_Listed(rays, asked, first, alive & ~hits, tile, list, listed);
  }
  return hits;
}

// The same of listed triangles alone.
uint32_t CSweep::sift_Listed(const TSweepRays& rays, const TTileRays& asked, uint32_t first,
                             uint32_t alive, const TTile& tile, const uint32_t* list,
                             uint32_t listed) const {
  const TGroup group = asked.group(first);
  const T3DVEC way = group.way > 0.0f ? direction_ : -direction_;
  const uint32_t* ids = triangles_.entries(tile.from);
  uint32_t hits = 0;
  for (uint32_t e = 0; e < listed && alive != hits; e += kChunk) {
    TSifted sifted[kChunk];
    const uint32_t found = lanes_->sift(tile.flats, list + e, std::min(kChunk, listed - e), group,
                                        alive & ~hits, sifted);
    for (uint32_t s = 0; s < found; ++s) {
      hits |= sifted[s].hit;
      for (uint32_t bits = sifted[s].unclear & ~hits; bits != 0; bits &= bits - 1) {
        const auto k = static_cast<uint32_t>(std::countr_zero(bits));
        const T3DVEC& org = rays.orgs[rays.id(asked.ray[first + k])];
        if (hit_Own({org, way}, msh_, ids[sifted[s].at])) hits |= 1u << k;
      }
    }
  }
  return hits;
}

}  // namespace undercut
