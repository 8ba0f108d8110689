// All rays along one direction, and against it, in one pass.
//
// Seen along the direction, rays are points and triangles are flat. Both are sorted into square
// tiles of a few triangles each, and in each tile its rays, sixteen at a time, are held against its
// triangles. The answers are those of C3DTriAABBTree::AnyHit, bit for bit: what single precision is
// sure of is taken, and the rest is decided by hit_Tri and hit_Box. sweep.cpp shows why.
//
// The cost grows with the number of triangles and of rays. Where too many triangles lie behind one
// another it would grow with the product of both; such places, or meshes, are left to the tree.
#pragma once

#include "foundation/scratch.h"
#include "mesh/sweep_bins.h"
#include "mesh/sweep_lanes.h"
#include "mesh/sweep_order.h"
#include "mesh/sweep_space.h"
#include "mesh/trees.h"

namespace undercut {

// What is found for a ray; see sight.h.
inline constexpr uint8_t kSeesAhead = 1;
inline constexpr uint8_t kSeesBehind = 2;

// Ray i starts at orgs[t] with t = list[i], or t = i without a list; it is most likely to be hit by
// triangle t. It is asked along the direction if sight[i] has kSeesAhead, and against it if
// kSeesBehind. All listed starts must be finite, those that are not asked too, and their indices
// below 2^27.
struct TSweepRays {
  const T3DVEC* orgs;
  C3DAABB box;  // of all starts
  const uint32_t* list;
  uint32_t count;
  uint8_t* sight;

  uint32_t id(uint32_t i) const { return list ? list[i] : i; }
};

// Keeps its memory from one sweep to the next: some 50 bytes for each triangle with a ray.
class CSweep {
 public:
  // The tree's mesh; both must stay as they are. False if no sweep can be made of it: coordinates
  // that are not finite or out of range. `lanes`: null for the fastest form.
  bool ini_Msh(const C3DTriAABBTree& tree, const TSweepLanes* lanes = nullptr);

  // Clears the bits of the ways that are blocked. False, and nothing done, where errors can't be
  // bounded: starts or a mesh too far from 0 for the size of the mesh or of the direction; or where
  // the tree would be quicker. Throws std::bad_alloc.
  bool clear_Hit(const T3DVEC& direction, const TSweepRays& rays);

 private:
  static constexpr uint32_t kFewParts = 2;  // of so much work that even two pay for threads

  struct TTile;
  struct TFlatBox {
    float low_x, high_x, low_y, high_y;
  };

  bool set_Across(const T3DVEC& direction, const C3DAABB& starts);
  TFlatBox shadow(uint32_t t) const;
  TFlatBox place_Mesh();
  double find_Side() const;
  void lay_Tiles(const TFlatBox& box);
  template <typename Body>
  void each_Part(uint32_t count, Body body) const;
  template <typename Body>
  void count_Groups(uint32_t count, uint32_t bins, CBins& out, Body body);
  template <typename Body>
  void put_Groups(uint32_t count, CBins& out, Body body);
  TFlatMesh flat_Mesh() const;
  void span_Shadow(uint32_t t);
  bool bin_Triangles();
  void ask_Own(const TSweepRays& rays, uint32_t first, uint32_t count, CBins::CRow& row);
  void bin_Rays(const TSweepRays& rays);
  void answer_Tiles(const TSweepRays& rays);
  void find_Deep();
  int64_t find_Excess(uint32_t bin) const;
  bool is_Crowded(uint32_t bin) const { return find_Excess(bin) > 0; }
  bool prefers_Tree() const;
  uint64_t find_Work(uint32_t tile) const;
  uint32_t share_Tiles();
  void fetch_Ahead(uint32_t tile, uint32_t end) const;
  void answer_Tile(const TSweepRays& rays, uint32_t number, uint32_t end_of_run);
  void answer_Rays(const TSweepRays& rays, uint32_t bin, const uint32_t* list, uint32_t count,
                   TTile& tile) const;
  void find_Reach(float way, TTile& tile) const;
  void lay_Flats(float way, uint32_t from, TTile& tile) const;
  void narrow_Thin(const uint32_t* ids, uint32_t count, TFlats& flats) const;
  uint32_t find_Hits(const TSweepRays& rays, const TTileRays& asked, uint32_t first, uint32_t alive,
                     const TTile& tile) const;
  uint32_t sift_Listed(const TSweepRays& rays, const TTileRays& asked, uint32_t first,
                       uint32_t alive, const TTile& tile, const uint32_t* list,
                       uint32_t listed) const;
  void ask_Tree(const TSweepRays& rays, uint32_t bin) const;

  const C3DTriAABBTree* tree_ = nullptr;
  const TSweepLanes* lanes_ = nullptr;
  T3DMSH msh_ = {};
  C3DAABB box_;
  T3DVEC direction_ = {};
  TAcross across_ = {};
  TTiles tiles_ = {};
  double tile_ = 0;                    // side of a tile
  float least_ = 0;                    // see TFlatMesh
  uint32_t parts_ = 1;                 // of triangles or rays, binned beside one another
  CScratch<uint8_t> is_deep_;          // of the tiles: answered by depth
  bool asks_tree_ = false;             // for crowded bins
  CScratch<uint32_t> runs_;            // of tiles
  CScratch<TFlatVec> points_;          // the vertices
  CScratch<uint32_t> columns_, rows_;  // of tiles that the triangles lie over
  CBins triangles_;                    // one bin a tile
  CScratch<float> x_, y_, z_;          // where the rays start
  CScratch<uint32_t> spot_;            // of the rays
  CBins rays_;                         // two bins a tile: rays along the direction, and against it
};

}  // namespace undercut
