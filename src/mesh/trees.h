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
#include "mesh/box_tree.h"
#include "mesh/made_once.h"
#include "mesh/ray_tree.h"

namespace undercut {

class C3DGeoAABBTree {
 public:
  virtual ~C3DGeoAABBTree() = default;
  // Writes what a node holds, for inspection.
  virtual bool DumpNode(uint32_t node, const std::string& path) const = 0;
  const std::vector<TBoxNode<C3DAABB>>& nodes() const { return tree().nodes; }
  const std::vector<TBoxItem<C3DAABB>>& items() const { return tree().items; }

 protected:
  virtual const TBoxTree<C3DAABB>& tree() const = 0;
};

// Two trees in one: the box tree, whose order shows in answers, and the tree of rays for AnyHit.
// Each is made when a query first needs it, on several threads at once if it must be, and never
// shows; a query that has no memory for it throws std::bad_alloc, and a later one tries again.
class C3DTriAABBTree : public C3DGeoAABBTree {
 public:
  // Takes a mesh and the memory of the items, and makes neither tree. False for a mesh without
  // arrays or counts or with a vertex index out of range, or without memory; the tree is then
  // empty.
  bool Prepare(const T3DMSH& msh);
  // Prepare, and makes the box tree at once.
  bool Build(const T3DMSH& msh);
  // Makes the tree of rays ahead of a parallel loop, on all threads. Throws std::bad_alloc.
  void BuildRays() const;
  bool has_Rays() const { return rays_made_.is_Made(); }
  // Prepare, and makes the tree of rays at once.
  bool BuildRays(const T3DMSH& msh);
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
  bool has_Excluded() const { return excludes_; }

  bool DumpNode(uint32_t node, const std::string& path) const override;
  const T3DMSH& mesh() const { return msh_; }

 private:
  const TBoxTree<C3DAABB>& tree() const override;
  void make_Tree() const;
  bool any_Plain(const T3DRAY& ray) const;

  T3DMSH msh_ = {};
  mutable TBoxTree<C3DAABB> tree_;
  mutable TRayTree rays_;  // answers AnyHit, but for rays and meshes that it does not take
  mutable CMadeOnce tree_made_, rays_made_;
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
  const TBoxTree<C3DAABB>& tree() const override { return tree_; }

  TBoxTree<C3DAABB> tree_;
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
