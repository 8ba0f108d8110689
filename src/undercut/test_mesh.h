// The mesh that rays are cast on, with its tree: the mesh itself, or a soup of its triangles, each
// grown on its own. Both have the triangle numbering of the mesh. Rays start on the same mesh that
// they are tested on.
#pragma once

#include "foundation/arrays.h"
#include "mesh/trees.h"

namespace undercut {

// How far the making of a test mesh came; each computation has codes of its own for the failures.
enum class TestMesh { kReady, kNoSoup, kNoSoupTree, kNoTree };

class CTestMesh {
 public:
  CTestMesh() = default;
  CTestMesh(const CTestMesh&) = delete;
  CTestMesh& operator=(const CTestMesh&) = delete;

  // Borrows the mesh, which must stay alive and unchanged. Each triangle grows by the dilation, in
  // mm; at 0 and below there is no soup. kNoSoup or kNoTree for an empty mesh.
  TestMesh Build(const T3DMSH& msh, double dilation);

  // The mesh itself or the soup; empty unless built.
  const T3DMSH& mesh() const { return tree_.mesh(); }
  const C3DTriAABBTree& tree() const { return tree_; }

 private:
  Scoped<T3DMSH> soup_;
  C3DTriAABBTree tree_;
};

}  // namespace undercut
