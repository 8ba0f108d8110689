#include "undercut/test_mesh.h"

#include "mesh/shrink.h"

namespace undercut {

TestMesh CTestMesh::Build(const T3DMSH& msh, double dilation) {
  tree_.Clear();
  release(*soup_);
  if (dilation <= 0.0) return tree_.Prepare(msh) ? TestMesh::kReady : TestMesh::kNoTree;
  if (!tri_Shrink(msh, dilation, *soup_)) return TestMesh::kNoSoup;
  return tree_.Prepare(*soup_) ? TestMesh::kReady : TestMesh::kNoSoupTree;
}

}  // namespace undercut
