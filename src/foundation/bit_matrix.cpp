// A grid of bits: runs, disks and closing.
#include "foundation/bit_matrix.h"

#include <algorithm>

namespace undercut {

bool CBitMatrix::init(uint32_t rows, uint32_t columns) {
  release();
  if (!bits_.init(static_cast<uint64_t>(rows) * columns)) return false;
  rows_ = rows;
  columns_ = columns;
  return true;
}

void CBitMatrix::release() {
  bits_.release();
  rows_ = columns_ = 0;
}

bool CBitMatrix::set(uint32_t row, uint32_t column) { return put_Run(row, column, column, true); }

bool CBitMatrix::test(uint32_t row, uint32_t column) const {
  return row < rows_ && column < columns_ &&
         bits_.test(static_cast<uint64_t>(row) * columns_ + column);
}

bool CBitMatrix::set_Run(uint32_t row, uint32_t first, uint32_t last) {
  return put_Run(row, first, last, true);
}

bool CBitMatrix::clear_Run(uint32_t row, uint32_t first, uint32_t last) {
  return put_Run(row, first, last, false);
}

bool CBitMatrix::put_Run(uint32_t row, uint32_t first, uint32_t last, bool value) {
  if (row >= rows_ || first >= columns_ || last >= columns_) return false;
  const uint64_t start = static_cast<uint64_t>(row) * columns_;
  return bits_.fill(start + first, start + last, value);
}

bool CBitMatrix::stamp(int64_t row, int64_t column, const TDisk& disk, bool value) {
  if (!is_Valid() || (disk.count && (!disk.half || !disk.row))) return false;
  for (uint32_t i = 0; i < disk.count; ++i) {
    const int64_t r = row + disk.row[i];
    if (r < 0 || r >= rows_) continue;
    const int64_t half = static_cast<int32_t>(disk.half[i]);
    const int64_t first = std::max<int64_t>(column - half, 0);
    const int64_t last = std::min<int64_t>(column + half, int64_t{columns_} - 1);
    // Also a run that lies left or right of the grid.
    if (half < 0 || last < first) continue;
    put_Run(static_cast<uint32_t>(r), static_cast<uint32_t>(first), static_cast<uint32_t>(last),
            value);
  }
  return true;
}

bool CBitMatrix::is_Border(uint32_t row, uint32_t column) const {
  // Wraps below 0 to a column or row that no grid has, which reads as clear.
  const int set = test(row, column) + test(row, column + 1) + test(row + 1, column) +
                  test(row, column - 1) + test(row - 1, column);
  return 0 < set && set < 5;
}

// Calls visit(row, column) for each set cell in rising order.
template <typename Visit>
void CBitMatrix::each_Set(Visit visit) const {
  const uint8_t* data = bits_.data();
  for (uint64_t i = 0; i < bits_.bytes(); ++i) {
    if (data[i] == 0) continue;
    for (uint64_t bit = i * 8; bit < i * 8 + 8; ++bit)
      if (bits_.test(bit))
        visit(static_cast<uint32_t>(bit / columns_), static_cast<uint32_t>(bit % columns_));
  }
}

bool CBitMatrix::dilate(const TDisk& disk) {
  if (!is_Valid()) return true;
  CBitMatrix clear(*this);
  if (!clear.is_Valid()) return false;
  clear.flip_All();
  clear.each_Set([&](uint32_t row, uint32_t column) {
    if (row == 0 || row == rows_ - 1 || column == 0 || column == columns_ - 1) return;
    if (clear.is_Border(row, column)) stamp(row, column, disk, true);
  });
  return true;
}

bool CBitMatrix::erode(const TDisk& disk) {
  if (!is_Valid()) return true;
  const CBitMatrix before(*this);
  if (!before.is_Valid()) return false;
  before.each_Set([&](uint32_t row, uint32_t column) {
    if (before.is_Border(row, column)) stamp(row, column, disk, false);
  });
  return true;
}

}  // namespace undercut
