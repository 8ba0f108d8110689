// The connected patches of hidden triangles, the rim of each, and how far each triangle lies from
// the rim of its own patch, across an axis. Lengths in mm.
//
// One pass over all triangles finds the borders of all patches, and one more measures all
// distances, both in parallel; only the search for patches and the rims go one after the other.
#pragma once

#include <memory>

#include "mesh/components.h"
#include "undercut/depth_flood.h"
#include "undercut/rim.h"

namespace undercut {

class CPatchRims {
 public:
  // Both are read when a patch is, and not before.
  CPatchRims(const T3DMSH& msh, const TAdj& tri_tri) : msh_(msh), tri_tri_(tri_tri) {}
  CPatchRims(const CPatchRims&) = delete;
  CPatchRims& operator=(const CPatchRims&) = delete;

  // Room for the numbers of patches, once; false without memory.
  bool reserve(uint32_t n_tri) { return alloc(*number_, n_tri) && alloc(*open_, n_tri); }

  // For each set of hidden triangles, in turn; false without memory. Patches come in the order of
  // their lowest triangle. `hidden` has a bit for each triangle.
  bool find(const CBitVector& hidden);
  bool make_Rims();
  bool list_Borders(const CBitVector& hidden);

  uint32_t count() { return patches_.count(); }
  // Number of triangles of a patch.
  uint32_t size(uint32_t j) { return patches_.end(j) - patches_.first(j); }
  // The patch's triangles, in no order that shows.
  const uint32_t* triangles(uint32_t j) { return patches_.order->data + patches_.first(j); }

  // The rim of a patch with a border: what drop_Open leaves of it. 0, or a code of CRim::Build; 0
  // and no rim for a patch without a border.
  int32_t build_Rim(uint32_t j, const CBitVector& open_ends, const T3DFRM& frm);

  // Lowers the value of each triangle to its distance from the rim of its patch, where that has
  // one.
  void measure(const T3DFRM& frm, double* least);
  // The same by the flood, for a slack that is not ample: seeds are taken from the triangle that
  // the search for the patch found last to the one that it began with. `flood.waiting` is all
  // clear, before and after; `flood.rho` is scratch. 0; -1 a rim's tree, else a code of flood_Depth
  // less 1.
  int32_t measure_ByFlood(const TFlood& flood, double* least);

 private:
  void clear();

  const T3DMSH& msh_;
  const TAdj& tri_tri_;
  Scoped<TArr<uint32_t>> number_;  // by hidden triangle, of its patch
  Scoped<TArr<uint8_t>> open_;     // by triangle: its edges on the border of its patch
  TComponents patches_;
  Scoped<TArr<uint32_t>> ends_;  // by patch: where its edges end
  Scoped<TArr<T3DSGM>> edges_;   // patch by patch
  std::unique_ptr<CRim[]> rims_;
};

// The distance of each triangle of a set from one rim; the others keep their value.
void measure_Set(const T3DMSH& msh, const T3DFRM& frm, const CRim& rim, const CBitVector& set,
                 double* distance);

}  // namespace undercut
