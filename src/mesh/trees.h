// Trees of axis-aligned boxes over triangles, points and plane segments.
//
// All three are built by box_tree.h. Items are numbered as they come in the mesh; a vertex index
// out of range makes a build fail.
//
// Answers are appended to a list that the caller has sized for all items, with no check.
// Trees borrow their arrays, which must stay unchanged and alive. Queries only read: any number of
// threads may run them on one tree.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/arrays.h"
#include "foundation/box.h"
#include "foundation/primitives.h"
#include "mesh/ray_tree.h"

namespace undercut {

class C3DGeoAABBTree {
 public:
  virtual ~C3DGeoAABBTree() = default;
  // Writes what a node holds, for inspection.
  virtual bool DumpNode(uint32_t node, const std::string& path) const = 0;
  const std::vector<TBoxNode<C3DAABB>>& nodes() const { return tree_.nodes; }
  const std::vector<TBoxItem<C3DAABB>>& items() const { return tree_.items; }

 protected:
  TBoxTree<C3DAABB> tree_;
};

class C3DTriAABBTree : public C3DGeoAABBTree {
 public:
  // False for a mesh without arrays or counts, or without memory; the tree is then empty.
  bool Build(const T3DMSH& msh);
  void Clear();

  // Each triangle that the whole line crosses, among those whose own box the ray reaches forward.
  void QueryLine(const T3DRAY& ray, TLst<uint32_t>& lst) const;
  // Each triangle that reaches into the volume.
  void QueryCylinder(const T3DCYL& cylinder, TLst<uint32_t>& lst) const;
  void QuerySlab(const T3DSLB& slab, TLst<uint32_t>& lst) const;
  // Whether the ray crosses any triangle. The same as: some triangle passes hit_Box with its own
  // box and then hit_Tri.
  bool AnyHit(const T3DRAY& ray) const;

  // One triangle that AnyHit passes over; idle unless set.
  void Exclude(uint32_t triangle) {
    excluded_ = triangle;
    excludes_ = true;
  }

  bool DumpNode(uint32_t node, const std::string& path) const override;
  const T3DMSH& mesh() const { return msh_; }

 private:
  bool any_Plain(const T3DRAY& ray) const;

  T3DMSH msh_ = {};
  TRayTree rays_;  // answers AnyHit, but for rays and meshes that it does not take
  uint32_t excluded_ = 0;
  bool excludes_ = false;
};

class C3DPntAABBTree : public C3DGeoAABBTree {
 public:
  // Over the vertices of a mesh; its triangles are not read but must be there.
  bool Build(const T3DMSH& msh);
  void Clear();
  // Each vertex inside the sphere, its boundary included, and, where cls_Sph takes a whole box,
  // some beyond the radius. A radius of exactly 0 takes no such shortcut.
  void QuerySphere(const T3DSPH& sphere, TLst<uint32_t>& lst) const;
  bool DumpNode(uint32_t node, const std::string& path) const override;

 private:
  const T3DVEC* points_ = nullptr;
  uint32_t count_ = 0;
};

class C2DSgmAABBTree {
 public:
  virtual ~C2DSgmAABBTree() = default;
  bool Build(const T2DPOL& pol);
  void Clear();
  // Each segment that reaches the circle.
  void QueryCircle(const C2DCIRC& circle, TLst<uint32_t>& lst) const;
  // The smallest distance from the centre to what QueryCircle finds; kAbsent for none. `scratch` is
  // sized for all segments.
  double Nearest(const C2DCIRC& circle, TLst<uint32_t>& scratch) const;
  const TBoxTree<C2DAABB>& tree() const { return tree_; }

 private:
  T2DPOL pol_ = {};
  TBoxTree<C2DAABB> tree_;
};

}  // namespace undercut
