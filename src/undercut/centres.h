// Origins of the frames that the searches hand out. Means run: the i-th point has the weight
// 1 / (i + 1) against the mean of those before it.
#pragma once

#include "foundation/values.h"

namespace undercut {

T3DVEC mean_Vertices(const T3DMSH& msh);
// Of the centroids of the listed triangles, each with the same weight, those with equal corners
// among them. Zero for an empty list; a null list stands for the whole mesh, which has the mean of
// its vertices.
T3DVEC mean_Centroids(const T3DMSH& msh, const TLst<uint32_t>& lst);

}  // namespace undercut
