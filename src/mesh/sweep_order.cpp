// Both are sorts by a key of a byte; that of triangles, which may be many, moves them in their list
// (P. McIlroy, K. Bostic, M. D. McIlroy 1993, "Engineering radix sort", the American flag sort).
#include "mesh/sweep_order.h"

#include <algorithm>
#include <array>
#include <utility>

namespace undercut {

namespace {

constexpr uint32_t kKeys = 256;
constexpr uint32_t kPerCell = 2;  // rays, at most, on average

// How much of a key tells cells apart of which none holds many rays.
uint32_t find_Shift(uint32_t count) {
  uint32_t shift = 8;
  for (uint32_t cells = 1; cells * kPerCell < count && shift > 0; cells *= 4) shift -= 2;
  return shift;
}

// Keys by depth: 0 to 255 from `low` on.
class CDepths {
 public:
  template <typename At>
  CDepths(uint32_t count, At at) {
    float high = low_ = at(0);
    for (uint32_t i = 1; i < count; ++i) low_ = std::min(low_, at(i)), high = std::max(high, at(i));
    if (high > low_) per_unit_ = static_cast<float>(kKeys - 1) / (high - low_);
  }
  uint8_t key(float z) const {
    // What is no number, where all but one depth are next to one another, gives the last key.
    return static_cast<uint8_t>(std::min(static_cast<float>(kKeys - 1), (z - low_) * per_unit_));
  }

 private:
  float low_, per_unit_ = 0;
};

// put(i, place) for each of the entries, in the order of their keys.
template <typename Put>
void sort_Keys(const uint8_t* keys, uint32_t count, uint32_t most, Put put) {
  std::array<uint16_t, kKeys + 1> next;
  std::fill_n(next.begin(), most + 2, uint16_t{0});
  for (uint32_t i = 0; i < count; ++i) ++next[keys[i] + 1];
  for (uint32_t key = 0; key < most; ++key) next[key + 1] += next[key];
  for (uint32_t i = 0; i < count; ++i) put(i, next[keys[i]]++);
}

}  // namespace

void order_Rays(const TRayPoints& from, const uint32_t* list, uint32_t count, bool by_depth,
                TTileRays& out) {
  uint8_t keys[kMostRays];
  uint32_t most = kKeys - 1;
  if (by_depth) {
    const CDepths depths(count, [&](uint32_t i) { return from.z[list[i]]; });
    for (uint32_t i = 0; i < count; ++i) keys[i] = depths.key(from.z[list[i]]);
  } else {
    const uint32_t shift = find_Shift(count);
    most >>= shift;
    for (uint32_t i = 0; i < count; ++i)
      keys[i] = static_cast<uint8_t>((from.spot[list[i]] & (kKeys - 1)) >> shift);
  }
  out.count = count;
  sort_Keys(keys, count, most, [&](uint32_t i, uint32_t place) {
    const uint32_t ray = list[i];
    out.ray[place] = ray;
    out.x[place] = from.x[ray], out.y[place] = from.y[ray], out.z[place] = from.z[ray];
  });
  for (uint32_t place = count; place % kGroup != 0; ++place)
    out.x[place] = out.x[count - 1], out.y[place] = out.y[count - 1],
    out.z[place] = out.z[count - 1];
}

void order_Triangles(const TFlatMesh& mesh, float way, uint32_t count, uint32_t* ids) {
  const auto depth = [&](uint32_t t) { return way * mesh.vtx[mesh.tri[t].a].z; };
  const CDepths depths(count, [&](uint32_t i) { return depth(ids[i]); });
  std::array<uint32_t, kKeys + 1> next{};
  for (uint32_t i = 0; i < count; ++i) ++next[depths.key(depth(ids[i])) + 1];
  for (uint32_t key = 0; key < kKeys; ++key) next[key + 1] += next[key];
  std::array<uint32_t, kKeys> end;
  std::copy_n(next.begin() + 1, kKeys, end.begin());
  for (uint32_t key = 0; key < kKeys; ++key)
    while (next[key] < end[key]) {
      const uint32_t own = depths.key(depth(ids[next[key]]));
      if (own == key)
        ++next[key];
      else
        std::swap(ids[next[key]], ids[next[own]++]);
    }
}

}  // namespace undercut
