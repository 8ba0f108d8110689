// One undercut area: a set of triangles that is to be machined along one tool axis.
//
// Lengths in mm, areas in mm2, angles in degrees.
#pragma once

#include <cstdint>
#include <set>

#include "decomposition/sorted_blocks.h"
#include "foundation/values.h"

namespace undercut {

// Where a region lies in the plane of its normal frame: centre of area, integrals of x^2, y^2 and
// xy about the frame's origin (S) and about the centre (C).
struct TUcPlane {
  T2DVEC centre = {0, 0};
  double sxx = 0, syy = 0, sxy = 0;
  double cxx = 0, cyy = 0, cxy = 0;
};

// What is known of a region, kept up to date with every triangle that joins or leaves it. Means run
// over triangles, unweighted; axis and normal are not of unit length and are normalised on each
// use.
struct TUcMeasures {
  double area = 0;
  double perimeter = 0;
  T3DVEC centroid = {0, 0, 0};
  double polar_low = 1.0, polar_high = -1.0;  // range of the chosen band; as reset: no band
  T3DFRM axis_frame = kIdentity;              // its Z is the tool axis
  T3DVEC axis = {0, 0, 0};                    // mean of the axes that the triangles ask for
  double axis_area = 0;                       // projected along the axis
  double axis_perimeter = 0;
  double axis_ratio = 0;            // axis area over area, of the seed alone
  T3DFRM normal_frame = kIdentity;  // its Z follows the mean normal
  T3DVEC normal = {0, 0, 0};
  double normal_area = 0;  // projected along the mean normal
  double normal_perimeter = 0;
  TUcPlane plane;
};

// An entry of the candidate queue: cheapest first, equal costs by the lower triangle.
struct TUcWish {
  double cost;
  int32_t triangle;
};
inline bool operator<(const TUcWish& a, const TUcWish& b) {
  return (a.cost < b.cost) | ((a.cost == b.cost) & (a.triangle < b.triangle));
}

// The same in the order of triangles.
struct TUcPrice {
  uint32_t triangle;
  double cost;
};
inline bool operator<(const TUcPrice& a, const TUcPrice& b) { return a.triangle < b.triangle; }

// The candidates are held twice, by triangle and by cost; both always hold the same pairs.
class CUcA {
 public:
  explicit CUcA(int32_t number = -1) : id(number) {}
  virtual ~CUcA() = default;

  int32_t id;
  uint32_t band = kNone;
  bool fixed = false;  // came through a whole pass: stands as a wall in later ones
  int32_t head = -1;   // first triangle of the list
  uint32_t count = 0;
  std::set<uint32_t> boundary;  // triangles just outside, when it was last asked for
  double rank = 0;
  CSortedBlocks<TUcPrice> candidates;
  CSortedBlocks<TUcWish> queue;
  TUcMeasures measures;
  double polar0 = -180.0, azimuth0 = -360.0;  // axis of the seed

  bool has_Cnd(uint32_t triangle) const { return candidates.find({triangle, 0}) != nullptr; }
  bool add_Cnd(uint32_t triangle, double cost) { return candidates.insert({triangle, cost}); }
  bool add_Que(double cost, uint32_t triangle) {
    return queue.insert({cost, static_cast<int32_t>(triangle)});
  }
  // Take the entry out; false if there is none.
  bool pop_Cnd(uint32_t triangle, double& cost);
  bool pop_Que(double& cost, uint32_t& triangle);
  bool del_Que(double cost, uint32_t triangle) {
    return queue.erase({cost, static_cast<int32_t>(triangle)});
  }
  // Both containers at once.
  bool add_Wish(uint32_t triangle, double cost) {
    return add_Cnd(triangle, cost) && add_Que(cost, triangle);
  }
  bool drop_Wish(uint32_t triangle) {
    double cost;
    return pop_Cnd(triangle, cost) && del_Que(cost, triangle);
  }
  // Empties boundary and candidates.
  void clr_Sets();
};

}  // namespace undercut
