// A grid of bits with morphological closing (J. Serra, Image Analysis and Mathematical Morphology,
// 1982), row after row in one bit vector.
#pragma once

#include <cstdint>

#include "foundation/bit_vector.h"

namespace undercut {

// The structuring element, a run of cells in each of `count` rows: in the row at offset row[i] from
// the centre, the columns within half[i] of it. A half width of 2^31 or more counts as negative: an
// empty run.
#pragma pack(push, 4)
struct TDisk {
  uint32_t* half;
  int32_t* row;
  uint32_t count;
};
#pragma pack(pop)

// Cell (r, c) is bit r * columns + c.
class CBitMatrix {
 public:
  CBitMatrix() = default;
  virtual ~CBitMatrix() = default;
  CBitMatrix(const CBitMatrix&) = default;  // not valid if memory is exhausted
  CBitMatrix& operator=(const CBitMatrix&) = default;

  // Releases, then holds clear cells; false for no rows or columns, or no memory.
  bool init(uint32_t rows, uint32_t columns);
  void release();

  // False if out of range.
  bool set(uint32_t row, uint32_t column);
  bool test(uint32_t row, uint32_t column) const;
  // Columns first to last of a row, inclusive; false, and no change, if out of range or reversed.
  bool set_Run(uint32_t row, uint32_t first, uint32_t last);
  bool clear_Run(uint32_t row, uint32_t first, uint32_t last);

  bool is_Valid() const { return bits_.is_Valid() && rows_ && columns_; }
  void clear_All() { bits_.clear_All(); }
  void flip_All() { bits_.flip_All(); }

  // Sets or clears the disk round a centre, which may lie outside; what lies outside is cut off.
  // False only without a grid or without the disk's arrays.
  bool stamp(int64_t row, int64_t column, const TDisk& disk, bool value);

  // A border cell is one that, with its four direct neighbours, is neither all set nor all clear;
  // outside the grid counts as clear.
  // Sets the disk round each clear border cell that does not lie on the grid's edge; false without
  // memory, as below.
  bool dilate(const TDisk& disk);
  // Clears the disk round each set border cell, the grid's edge included: so what the dilation did
  // not reach there is worn off. Meant as it is.
  bool erode(const TDisk& disk);
  // Dilation, then erosion. Nothing happens to a grid that is not valid.
  bool close(const TDisk& disk) { return dilate(disk) && erode(disk); }

  uint64_t capacity() const { return bits_.capacity(); }
  uint64_t bytes() const { return bits_.bytes(); }
  uint32_t rows() const { return rows_; }
  uint32_t columns() const { return columns_; }
  const uint8_t* data() const { return bits_.data(); }

 private:
  bool put_Run(uint32_t row, uint32_t first, uint32_t last, bool value);
  bool is_Border(uint32_t row, uint32_t column) const;
  template <typename Visit>
  void each_Set(Visit visit) const;

  CBitVector bits_;
  uint32_t rows_ = 0;
  uint32_t columns_ = 0;
};

}  // namespace undercut
