// The distance of points from the nearest of many segments of the plane: the same to the bit as
// from a walk along all of them (dst_Pol2), at the cost of a few.
//
// Segments lie in blocks of eight that are measured at once, with what dst_Seg2 computes of a
// segment alone already computed; over them stands a tree of eight boxes in each node. A search
// goes nearest first and passes over each box that lies farther than the nearest segment so far
// (N. Roussopoulos, S. Kelley, F. Vincent, Nearest Neighbor Queries, 1995). The answer is a minimum
// of values that each hang on one segment alone, so neither the order nor what is passed over shows
// in it, as long as no box is passed over that holds a smaller computed value: how far rounding may
// bring such a value below the distance of its box is what `margin` in the source is for.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/primitives.h"

namespace undercut {

inline constexpr uint32_t kBlock = 8;

// Eight segments, the last repeated where there are fewer.
struct TSgmBlock {
  double ax[kBlock], ay[kBlock], bx[kBlock], by[kBlock];
  double ux[kBlock], uy[kBlock], length[kBlock];  // (b - a) / length; zero for no length
};

// Eight boxes, those of children that are missing inverted and without end.
struct TBoxBlock {
  double low_x[kBlock], low_y[kBlock], high_x[kBlock], high_y[kBlock];
};

class C2DSgmSearch {
 public:
  // Copies what it needs of the polyline, but for one whose coordinates are too large for the
  // search, or no numbers: that one must stay alive. False, and empty, for a polyline without
  // arrays or counts, a point index out of range, or no memory.
  bool Build(const T2DPOL& pol);
  void Clear();

  // The smallest dst_Seg2 of all segments; kAbsent for none. `near` is a block to begin with, 0 or
  // what an earlier search left there: after a search for a point close by it makes this one short.
  double Nearest(const T2DVEC& p, uint32_t& near) const;

 private:
  double search(const T2DVEC& p, double margin, uint32_t& near) const;
  void order(const T2DPOL& pol, std::vector<uint32_t>& ids) const;
  void lay_Blocks(const T2DPOL& pol, const std::vector<uint32_t>& ids);
  void lay_Boxes(const T2DPOL& pol, const std::vector<uint32_t>& ids);

  T2DPOL pol_ = {};
  double extent_ = 0.0;  // no coordinate is larger; not below kHuge: every search is a walk
  std::vector<TSgmBlock> blocks_;
  std::vector<TBoxBlock> boxes_;  // level by level, the lowest first
  std::vector<uint32_t> levels_;  // where each level begins in boxes_
};

// The smallest squared distance of a point from the segments of a block, as dst_Seg2 computes it
// before its root; and the squared distances from eight boxes, with a bit for each that is not
// above the limit. One form for any processor, and one with AVX2 that stands in for it where there
// is AVX2: the same to the bit.
double near_Block(const TSgmBlock& block, const T2DVEC& p);
uint32_t reach_Boxes(const TBoxBlock& boxes, const T2DVEC& p, double limit, double* squares);
double near_BlockPlain(const TSgmBlock& block, const T2DVEC& p);
uint32_t reach_BoxesPlain(const TBoxBlock& boxes, const T2DVEC& p, double limit, double* squares);

}  // namespace undercut
