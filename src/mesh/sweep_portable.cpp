// The arithmetic of the sweep, one triangle or one pair at a time.
#include <algorithm>
#include <cmath>

#include "mesh/sweep_bounds.h"
#include "mesh/sweep_lanes.h"

namespace undercut {

namespace {

// A triangle across the direction, and the largest parts of its edges.
struct TFlat {
  float ax, ay, az, abx, aby, abz, cax, cay, caz, nx, ny, nz;
  float wide;     // in x and y
  float longest;  // twice the largest of all
  bool is_thin;
};

float max_Abs(float a, float b) { return std::max(std::fabs(a), std::fabs(b)); }

TFlat get_Flat(const TFlatMesh& mesh, uint32_t id) {
  const T3DTRI& t = mesh.tri[id];
  TFlat f;
  const TFlatVec &a = mesh.vtx[t.a], &b = mesh.vtx[t.b], &c = mesh.vtx[t.c];
  f.ax = a.x, f.ay = a.y, f.az = a.z;
  f.abx = b.x - a.x, f.aby = b.y - a.y, f.abz = b.z - a.z;
  f.cax = a.x - c.x, f.cay = a.y - c.y, f.caz = a.z - c.z;
  f.nx = f.cay * f.abz - f.caz * f.aby;
  f.ny = f.caz * f.abx - f.cax * f.abz;
  f.nz = f.cax * f.aby - f.cay * f.abx;
  f.wide = std::max(max_Abs(f.abx, f.cax), max_Abs(f.aby, f.cay));
  f.longest = 2.0f * std::max(f.wide, max_Abs(f.abz, f.caz));
  f.is_thin = std::fabs(f.nz) < kThin * f.longest + mesh.least;
  return f;
}

struct TRange {
  float low, high;
};

// The range of the corners, widened by a part of itself.
TRange get_Heights(const TFlat& f) {
  const float bz = f.az + f.abz, cz = f.az - f.caz;
  const float low = std::min(f.az, std::min(bz, cz)), high = std::max(f.az, std::max(bz, cz));
  const float pad = (high - low) * kWiden + kPad;
  return {low - pad, high + pad};
}

// Its rectangle, widened.
struct TRect {
  float low_x, high_x, low_y, high_y;
};

TRect get_Rect(const TFlat& f) {
  const float pad = std::max(f.wide * kWiden, kPad);
  const float bx = f.ax + f.abx, by = f.ay + f.aby, cx = f.ax - f.cax, cy = f.ay - f.cay;
  return {std::min(f.ax, std::min(bx, cx)) - pad, std::max(f.ax, std::max(bx, cx)) + pad,
          std::min(f.ay, std::min(by, cy)) - pad, std::max(f.ay, std::max(by, cy)) + pad};
}

struct TBounds {
  float edge, side, clear, steep;
};

// For rays no farther than `reach` from corner a, in x and in y.
TBounds get_Bounds(const TFlat& f, float least, float reach) {
  const float across = std::fabs(f.nx) + std::fabs(f.ny), up = std::fabs(f.nz);
  const float tilt = kNormal * f.longest * (1.0f + f.longest);
  TBounds b;
  b.edge =
      kEdge * (2.0f * f.wide + reach) * (1.0f + 4.0f * f.wide) + kLongEdge * f.longest + kLeast;
  b.side = kSide * (across + up) + kReach * reach * across + kLongSide * f.longest + kLeast;
  if (f.is_thin) {
    b.steep = kTilts * tilt;
    b.clear = kInfinite;
  } else {
    b.side += tilt / (up - tilt) * reach * (across + 2.0f * up);
    b.steep = 0.0f;
    b.clear = 2.0f * b.edge + kClear * least;
  }
  return b;
}

struct TFinding {
  bool hit, missed;
};

// `way` turns the signs of all edges, which is the same as turning that of the triangle.
TFinding judge(float side, float ab, float bc, float ca, const TBounds& b) {
  const float low = std::min(ab, std::min(bc, ca)), high = std::max(ab, std::max(bc, ca));
  const bool above = side > b.side, below = side < -b.side;
  TFinding f;
  f.missed =
      ((high > b.clear) & (low < -b.clear)) | (above & (high > b.edge)) | (below & (low < -b.edge));
  f.hit = (above & (high < -b.clear)) | (below & (low > b.clear));
  return f;
}

// Of a sure triangle.
TFinding judge_Sure(float side, float ab, float bc, float ca) {
  const float most = std::max(std::max(ab, bc), std::max(ca, side));
  const bool hit = most < -1.0f;
  const bool missed = most > 1.0f;
  return {hit, missed};
}

// Of others, for a ray at x and y, and q from corner a: the bounds hold within those in x and
// y alone, which tell most of thin ones.
TFinding judge_Unsure(const TFlats& f, uint32_t i, float x, float y, float qx, float qy, float qz,
                      float side, float ab, float bc, float ca) {
  if ((x < f.low_x[i]) | (x > f.high_x[i]) | (y < f.low_y[i]) | (y > f.high_y[i]))
    return {false, true};
  const float away = std::fabs(qx) + std::fabs(qy) + std::fabs(qz);
  return judge(side, ab, bc, ca, {f.edge[i], f.side[i] + f.steep[i] * away, f.clear[i], 0.0f});
}

// How the numbers of a triangle are stored (see TFlats).
struct TScales {
  float edges, normal, edge;
};

TScales get_Scales(const TFlat& f, const TBounds& b) {
  if (!(std::fabs(f.nz) >= kSure * b.clear)) return {1.0f, 1.0f, b.edge};
  const float sign = f.nz < 0.0f ? -1.0f : 1.0f;
  return {-sign / b.clear, sign / b.side, 0.0f};
}

bool flatten_Each(const TFlatMesh& mesh, const uint32_t* ids, uint32_t count, TFlats& out) {
  bool any_Thin = false;
  for (uint32_t i = 0; i < count; ++i) {
    const TFlat f = get_Flat(mesh, ids[i]);
    const float reach = kReachBeyond * (f.is_thin ? f.longest : f.wide) + 2.0f * kPad;
    const TBounds b = get_Bounds(f, mesh.least, reach);
    const TRect r = get_Rect(f);
    const TRange heights = get_Heights(f);
    const float deep = kDeep * f.longest + kPad;
    const TScales scales = get_Scales(f, b);
    out.ax[i] = f.ax, out.ay[i] = f.ay, out.az[i] = f.az;
    out.abx[i] = scales.edges * f.abx, out.aby[i] = scales.edges * f.aby;
    out.cax[i] = scales.edges * f.cax, out.cay[i] = scales.edges * f.cay;
    out.area[i] = scales.edges * f.nz;
    out.nx[i] = scales.normal * f.nx, out.ny[i] = scales.normal * f.ny;
    out.nz[i] = scales.normal * f.nz;
    out.edge[i] = scales.edge, out.side[i] = b.side, out.clear[i] = b.clear;
    out.steep[i] = b.steep;
    out.low_x[i] = f.is_thin ? -kInfinite : r.low_x,
    out.high_x[i] = f.is_thin ? kInfinite : r.high_x;
    out.low_y[i] = f.is_thin ? -kInfinite : r.low_y,
    out.high_y[i] = f.is_thin ? kInfinite : r.high_y;
    out.low_z[i] = f.is_thin ? f.az - deep : heights.low;
    out.high_z[i] = f.is_thin ? f.az + deep : heights.high;
    any_Thin |= f.is_thin;
  }
  return any_Thin;
}

uint32_t span_Each(const TFlatMesh& mesh, uint32_t first, uint32_t count, const TTiles& tiles,
                   const TSpans& out) {
  uint32_t thin = 0;
  for (uint32_t k = 0; k < count; ++k) {
    const TFlat f = get_Flat(mesh, first + k);
    const TRect r = get_Rect(f);
    out.columns[k] = tiles.column(r.low_x) | tiles.column(r.high_x) << 16;
    out.rows[k] = tiles.row(r.low_y) | tiles.row(r.high_y) << 16;
    thin |= (f.is_thin ? 1u : 0u) << k;
  }
  return thin;
}

uint32_t place_Each(const TFlatMesh& mesh, const TAcross& across, const TTiles& tiles,
                    const T3DVEC* orgs, const uint32_t* starts, const uint32_t* own,
                    const TPlaced& out) {
  uint32_t hits = 0;
  for (uint32_t k = 0; k < kGroup; ++k) {
    const T3DVEC p = across(orgs[starts[k]]);
    const auto x = static_cast<float>(p.x), y = static_cast<float>(p.y);
    const auto z = static_cast<float>(p.z);
    out.x[k] = x, out.y[k] = y, out.z[k] = z;
    out.spot[k] = tiles.spot(x, y);

    const TFlat f = get_Flat(mesh, own[k]);
    const float qx = x - f.ax, qy = y - f.ay, qz = z - f.az;
    const TBounds b = get_Bounds(f, mesh.least, max_Abs(qx, qy));
    const float ab = f.abx * qy - f.aby * qx, ca = f.cax * qy - f.cay * qx;
    const float side = f.nx * qx + f.ny * qy + f.nz * qz;
    hits |= (judge(side, ab, f.nz - ab - ca, ca, b).hit ? 1u : 0u) << k;
    hits |= (judge(-side, ab, f.nz - ab - ca, ca, b).hit ? 1u : 0u) << (k + kGroup);
  }
  return hits;
}

uint32_t select_Each(const TFlats& f, uint32_t first, uint32_t end, const TGroup& rays,
                     uint32_t* list) {
  const auto [low_x, high_x] = std::minmax_element(rays.x, rays.x + kGroup);
  const auto [low_y, high_y] = std::minmax_element(rays.y, rays.y + kGroup);
  const auto [low_z, high_z] = std::minmax_element(rays.z, rays.z + kGroup);
  const bool ahead = rays.way > 0.0f;
  uint32_t kept = 0;
  for (uint32_t i = first; i < end; ++i) {
    list[kept] = i;
    kept += (f.low_x[i] <= *high_x) & (f.high_x[i] >= *low_x) & (f.low_y[i] <= *high_y) &
            (f.high_y[i] >= *low_y) & (ahead ? f.high_z[i] >= *low_z : f.low_z[i] <= *high_z);
  }
  return kept;
}

uint32_t sift_Each(const TFlats& f, const uint32_t* list, uint32_t count, const TGroup& rays,
                   uint32_t alive, TSifted* out) {
  uint32_t found = 0;
  for (uint32_t n = 0; n < count; ++n) {
    const uint32_t i = list[n];
    const bool is_sure = f.edge[i] == 0.0f;
    uint32_t hit = 0, missed = 0;
    for (uint32_t k = 0; k < kGroup; ++k) {
      const float x = rays.x[k] - f.ax[i], y = rays.y[k] - f.ay[i], z = rays.z[k] - f.az[i];
      const float side = rays.way * (f.nx[i] * x + f.ny[i] * y + f.nz[i] * z);
      const float ab = f.abx[i] * y - f.aby[i] * x, ca = f.cax[i] * y - f.cay[i] * x;
      const float bc = f.area[i] - ab - ca;
      const TFinding finding =
          is_sure ? judge_Sure(side, ab, bc, ca)
                  : judge_Unsure(f, i, rays.x[k], rays.y[k], x, y, z, side, ab, bc, ca);
      hit |= (finding.hit ? 1u : 0u) << k;
      missed |= (finding.missed ? 1u : 0u) << k;
    }
    out[found] = {i, static_cast<uint16_t>(hit & alive),
                  static_cast<uint16_t>(alive & ~(hit | missed))};
    found += (alive & ~missed) != 0;
  }
  return found;
}

}  // namespace

const TSweepLanes kPortableLanes = {flatten_Each, span_Each, place_Each, select_Each, sift_Each};

}  // namespace undercut
