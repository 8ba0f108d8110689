// The forms of the sweep's arithmetic, and what they say of single pairs of a ray and a triangle
// held against hit_Tri and hit_Box.
#pragma once

#include <cstdint>
#include <vector>

#include "mesh/sweep.h"
#include "mesh/sweep_bounds.h"
#include "tests/support/hostile_rays.h"

namespace undercut::tests {

struct TForm {
  const char* name;
  const TSweepLanes* lanes;
};

// All that this processor has.
inline std::vector<TForm> list_Forms() {
  std::vector<TForm> forms = {{"portable", &kPortableLanes}};
  if (avx2_Lanes()) forms.push_back({"avx2", avx2_Lanes()});
  if (avx512_Lanes()) forms.push_back({"avx512", avx512_Lanes()});
  return forms;
}

inline bool hits_Own(const T3DRAY& ray, const T3DFAC& f) {
  C3DAABB own;
  own.from_Tri(f);
  return hit_Box(ray, own) && hit_Tri(ray, f);
}

// What single precision makes of pairs.
struct TPairs {
  uint64_t pairs = 0, unclear = 0;
  uint64_t wrong = 0;  // hit or missed, and not so
};

// A group of rays, with their numbers.
struct TRayGroup {
  alignas(64) float x[kGroup];
  alignas(64) float y[kGroup];
  alignas(64) float z[kGroup];
  float way;

  TGroup view() const { return {x, y, z, way}; }
};

// A mesh and rays in the coordinates of a sweep.
class CPlaced {
 public:
  explicit CPlaced(THostile& hostile) : hostile_(hostile) {
    C3DAABB box;
    for (const T3DVEC& v : hostile.soup.vtx) box.add(v);
    across_ = get_Across(box, hostile.direction);
    for (const T3DVEC& org : hostile.orgs) box.add(org);
    const double most = std::max(max_Abs(box.min), max_Abs(box.max));
    const double away = most * len(across_.z);
    least_ = static_cast<float>(std::max(kThinLeast, kThinFar * away * away));
    is_bounded_ = most <= 0x1p17 * len(hostile.direction);
    for (const T3DVEC& v : hostile.soup.vtx) {
      const T3DVEC p = across_(v);
      points_.push_back(
          {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z), 0});
    }
    for (const T3DVEC& org : hostile.orgs) add(across_(org), ray_x_, ray_y_, ray_z_);
  }

  TFlatMesh mesh() const { return {points_.data(), hostile_.soup.tri.data(), least_}; }
  const TAcross& across() const { return across_; }
  // The direction is kept by org + dir, which the bounds need.
  bool is_Bounded() const { return is_bounded_; }

  // A group of rays from the i-th on; the last again where there are no more.
  TRayGroup rays(uint32_t i, float way) const {
    TRayGroup group;
    group.way = way;
    for (uint32_t k = 0; k < kGroup; ++k) {
      const size_t at = std::min<size_t>(i + k, ray_x_.size() - 1);
      group.x[k] = ray_x_[at], group.y[k] = ray_y_[at], group.z[k] = ray_z_[at];
    }
    return group;
  }

  // Holds a group of rays against the listed triangles, as a tile does.
  void judge(const TForm& form, uint32_t i, float way, const std::vector<uint32_t>& ids,
             TPairs& out) const {
    const TRayGroup group = rays(i, way);
    TFlats flats;
    const auto count = static_cast<uint32_t>(ids.size());
    if (form.lanes->flatten(mesh(), ids.data(), count, flats)) narrow_Thin(ids, flats);
    uint32_t list[kMostFlats + kGroup];
    const uint32_t listed = form.lanes->select(flats, 0, count, group.view(), list);
    TSifted sifted[kMostFlats];
    const uint32_t found = form.lanes->sift(flats, list, listed, group.view(), 0xffff, sifted);
    std::vector<uint32_t> hit(count), unclear(count);
    for (uint32_t s = 0; s < found; ++s) {
      hit[sifted[s].at] = sifted[s].hit;
      unclear[sifted[s].at] = sifted[s].unclear;
    }
    for (uint32_t t = 0; t < count; ++t)
      for (uint32_t k = 0; k < kGroup; ++k) {
        const size_t at = std::min<size_t>(i + k, hostile_.orgs.size() - 1);
        ++out.pairs;
        if (unclear[t] >> k & 1u)
          ++out.unclear;
        else
          out.wrong += exact(at, way, ids[t]) != ((hit[t] >> k & 1u) != 0) ? 1 : 0;
      }
  }

  bool exact(size_t ray, float way, uint32_t t) const {
    const T3DVEC& d = hostile_.direction;
    return hits_Own({hostile_.orgs[ray], way > 0 ? d : -d}, get_Fac(hostile_.soup.msh(), t));
  }

 private:
  // As a sweep does: to the shadow of their own box.
  void narrow_Thin(const std::vector<uint32_t>& ids, TFlats& flats) const {
    for (size_t i = 0; i < ids.size(); ++i) {
      if (flats.clear[i] < kInfinite) continue;
      C3DAABB own;
      own.from_Tri(get_Fac(hostile_.soup.msh(), ids[i]));
      float low_x = 4, high_x = -4, low_y = 4, high_y = -4;
      for (uint32_t corner = 0; corner < 8; ++corner) {
        const T3DVEC p =
            across_({corner & 1 ? own.max.x : own.min.x, corner & 2 ? own.max.y : own.min.y,
                     corner & 4 ? own.max.z : own.min.z});
        low_x = std::min(low_x, static_cast<float>(p.x));
        high_x = std::max(high_x, static_cast<float>(p.x));
        low_y = std::min(low_y, static_cast<float>(p.y));
        high_y = std::max(high_y, static_cast<float>(p.y));
      }
      flats.low_x[i] = low_x - kPad, flats.high_x[i] = high_x + kPad;
      flats.low_y[i] = low_y - kPad, flats.high_y[i] = high_y + kPad;
    }
  }

  static void add(const T3DVEC& p, std::vector<float>& x, std::vector<float>& y,
                  std::vector<float>& z) {
    x.push_back(static_cast<float>(p.x));
    y.push_back(static_cast<float>(p.y));
    z.push_back(static_cast<float>(p.z));
  }

  THostile& hostile_;
  TAcross across_ = {};
  float least_ = 0;
  bool is_bounded_ = false;
  std::vector<TFlatVec> points_;
  std::vector<float> ray_x_, ray_y_, ray_z_;
};

}  // namespace undercut::tests
