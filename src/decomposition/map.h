// The dynamic map: to which region every triangle of the mesh belongs at this moment.
//
// Region 0 holds the free triangles of the region of interest (H2O in file names); ids above 0 are
// undercut areas; a triangle outside the region of interest has id -1 and is in no list. Membership
// is kept in flat arrays, so that a move costs constant time however large a region is.
//
// Invariants: a triangle of region r is in the list of r and in no other; count is the length of
// the list; region 0 exists from ini_Roi on, even empty; any other region that apply_Move empties
// is destroyed at once.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "decomposition/marks.h"
#include "decomposition/region.h"
#include "foundation/avl_tree.h"
#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"

namespace undercut {

// A planned move of a triangle: what source and target must do with it and its three slot
// neighbours. Flags: '+' becomes a candidate, '-' stops being one, 'u' its cost must be computed
// anew, '?' nothing.
struct TUcMove {
  int32_t from = -1, to = -1;
  std::array<int32_t, 4> triangles = {-1, -1, -1, -1};  // the triangle, then its slots
  std::array<char, 4> from_flags = {'?', '?', '?', '?'};
  std::array<char, 4> to_flags = {'?', '?', '?', '?'};
};

// What a move did: 'a' in target if it made the target, 'r' in source if it emptied the source.
struct TUcMoved {
  char target = '-', source = '-';
};

struct TUcRef {
  int32_t id;
  CUcA* region;
};

struct TUcEdge {
  uint32_t a, b;
};

// An allowed range of polar angles of a tool axis, degrees.
struct TUcBand {
  double low, high;
};

// An entry of the rank queue: lowest rank first, equal ranks by the lower id.
struct TUcTurn {
  double rank;
  int32_t id;
  CUcA* region;
};
inline bool operator<(const TUcTurn& a, const TUcTurn& b) {
  if (a.rank != b.rank) return a.rank < b.rank;
  return a.id < b.id;
}

// What was last computed of a region's axis, with what it was computed from: most triangles that a
// region asks about want the same axis. Starts as no number, which equals nothing.
struct TUcAim {
  static constexpr double kNo = std::numeric_limits<double>::quiet_NaN();
  double polar = kNo, azimuth = kNo;
  T3DVEC wanted = {kNo, kNo, kNo};  // the axis at these angles
  double count = kNo;
  T3DVEC asked = {kNo, kNo, kNo}, axis = {kNo, kNo, kNo};
  T3DVEC would = {kNo, kNo, kNo};  // the axis with one more triangle, which asks for `asked`
};

// Cosines that tell an angle from an aperture: above `inside` the angle is surely no greater, below
// `outside` it surely is. Between them the angle itself decides.
struct TUcCone {
  double aperture = std::numeric_limits<double>::quiet_NaN();
  double inside = 2, outside = -2;
};

class CMap {
 public:
  CMap() = default;
  virtual ~CMap() { free_Map(); }
  CMap(const CMap&) = delete;
  CMap& operator=(const CMap&) = delete;

  // ---- Setup ----
  // Adjacency of a mesh and room for its lists; false for an empty mesh or no memory.
  bool ini_Msh(const T3DMSH& msh);
  // False for no bands.
  bool set_Win(const TUcBand* bands, uint32_t count);
  // Starts anew with region 0 holding the listed triangles. A repeated triangle is linked once and
  // counted twice in area and centroid. False for an index out of range.
  bool ini_Roi(const TArr<uint32_t>& roi);
  // Destroys all regions and empties all marks; adjacency stays.
  void reset_Map();
  void free_Map();

  // ---- Regions ----
  bool add_Uca(CUcA* region);       // takes it over; false if null or the id exists
  bool del_Uca(CUcA* region);       // gives it back, reset; the caller destroys it
  CUcA* get_Uca(int32_t id) const;  // null when absent
  int32_t cnt_Uca() const { return static_cast<int32_t>(regions_.count()); }
  int32_t max_Id() const;  // -1 without regions
  // All regions in pre-order of their tree: node, left, right. Sorted: by band, stable.
  bool get_Ucs(std::vector<TUcRef>& out, bool sorted) const;
  // Removes a region from the tree and destroys it.
  bool kill_Uca(CUcA* region);

  // ---- Triangles ----
  // Link and unlink; both read the old id, which the caller writes afterwards: the order of a move
  // is del_Tri, add_Tri, region_of.
  bool add_Tri(uint32_t triangle, CUcA* region);
  bool del_Tri(uint32_t triangle, CUcA* region);
  // The three in one.
  bool pass_Tri(uint32_t triangle, CUcA* from, CUcA* to);
  int32_t next_Tri(int32_t triangle) const { return triangle < 0 ? -1 : next[triangle]; }
  uint32_t nbr_Tri(uint32_t triangle, const uint32_t*& list) const {
    list = neighbours.lists[triangle];
    return neighbours.counts[triangle];
  }
  // The edges of the triangle whose slot lies in the region, as corner indices k, k + 1; their
  // count.
  uint32_t lst_Edg(uint32_t triangle, int32_t id, TUcEdge edges[3]) const;

  bool is_Bnd(uint32_t triangle, int32_t id) const;  // on the border of the region, either side
  bool is_In(uint32_t triangle, int32_t id) const { return region_of[triangle] == id; }
  bool is_Out(uint32_t triangle, int32_t id) const {
    return !is_In(triangle, id) && is_Bnd(triangle, id);
  }

  bool set_Lck(uint32_t triangle) { return locked.set(triangle); }
  bool clr_Lck(uint32_t triangle) { return locked.clear(triangle); }
  bool get_Lck(uint32_t triangle) const { return locked.test(triangle); }

  // Inserts into the boundary of a region each neighbour of its triangles that is not its own,
  // whoever holds it.
  void fill_Frontier(CUcA& region) const;

  // ---- Moves ----
  // How candidates change if the triangle moves now; changes nothing. False for a triangle or a
  // target outside.
  bool classify_Move(uint32_t triangle, int32_t to, TUcMove& move) const;
  // Moves a triangle, makes the target if it must, destroys an emptied source other than region 0.
  // Boundaries are left as they are: ranking fills them anew before it reads them.
  bool apply_Move(uint32_t triangle, int32_t to, TUcMoved& moved);

  // ---- Ranks ----
  bool add_Rnk(int32_t id, double rank) { return ranks.emplace(id, rank).second; }
  bool add_Rnq(double rank, int32_t id, CUcA* region) {
    return turns.insert({rank, id, region}).second;
  }
  bool pop_Rnk(int32_t id, double& rank);
  bool pop_Rnq(double& rank, CUcA*& region, int32_t& id);
  bool del_Rnq(double rank, int32_t id, CUcA*& region);

  T3DMSH msh = {};
  TAdj vtx_tri;
  TAdj neighbours;
  std::vector<std::array<int32_t, 3>> slots;  // across edge k, to k + 1; -1 for none
  std::vector<int32_t> prev, next, region_of;
  CBitVector locked;
  CMarks mark;
  TLst<uint32_t> scratch_a = {}, scratch_b = {};
  std::map<int32_t, double> ranks;
  std::set<TUcTurn> turns;
  double roi_area = 0;
  T3DVEC roi_centroid = {0, 0, 0};
  std::vector<TUcBand> bands;
  bool b_ini = false;
  bool b_5ax = true;
  double w_4ax = -360.0;
  // Only the thread that runs the computation asks for axes and angles.
  mutable TUcAim aim;
  mutable TUcCone cone;

 private:
  using Tree = AVLTree<CPair<int32_t, CUcA*>>;

  bool build();
  void fill_Slots();
  void drop_Regions();
  // Another valid slot of the triangle than `except` lies in the region.
  bool touches(int32_t triangle, uint32_t except, int32_t id) const;

  Tree regions_;
};

}  // namespace undercut
