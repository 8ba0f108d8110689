// Scratch marks on triangles that are cleared in no time: a mark is the number of the current
// round.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace undercut {

class CMarks {
 public:
  // Room for so many triangles, none marked. Throws std::bad_alloc.
  void init(uint32_t triangles) {
    round_of_.assign(triangles, 0);
    round_ = 1;
  }
  void release() { round_of_.clear(); }
  uint32_t size() const { return static_cast<uint32_t>(round_of_.size()); }

  void set(uint32_t triangle) { round_of_[triangle] = round_; }
  bool test(uint32_t triangle) const { return round_of_[triangle] == round_; }
  void clear_All() {
    if (++round_ != 0) return;
    std::fill(round_of_.begin(), round_of_.end(), 0);  // the count has come round
    round_ = 1;
  }

 private:
  std::vector<uint32_t> round_of_;
  uint32_t round_ = 1;
};

}  // namespace undercut
