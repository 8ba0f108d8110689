// What an evaluator prepares of a mesh once, so that a rating is rays and one pass over arrays.
#pragma once

#include "mesh/sight.h"

namespace undercut {

class CRatedMsh {
 public:
  CRatedMsh() = default;
  CRatedMsh(const CRatedMsh&) = delete;
  CRatedMsh& operator=(const CRatedMsh&) = delete;
  ~CRatedMsh() { clear(); }

  // False, and empty, for an empty mesh, a vertex index out of range or no memory. The mesh is a
  // view: it must stay alive and unchanged.
  bool prepare(const T3DMSH& mesh);
  void clear();

  T3DMSH msh = {};
  C3DTriAABBTree tree;
  CSight eye;  // for the evaluator to set
  // For each triangle; area and normal are zero where two corners are equal, by coordinates.
  T3DVEC* nml = nullptr;     // unit normals
  double* area = nullptr;    // mm2
  uint8_t* sight = nullptr;  // scratch: what the rays of one rating find
};

}  // namespace undercut
