// Simplification of a closed polyline by the height of each point over the chord of its neighbours
// (after M. Visvalingam and J. D. Whyatt, Line generalisation by repeated elimination of points,
// 1993, with the height in the place of the area).
#include "foundation/avl_tree.h"
#include "mesh/polyline.h"

namespace undercut {

namespace {

// Equal heights go by the order in which they were told; what is not a number stands last.
struct THeight {
  double value;
  uint64_t turn;
};
bool operator<(const THeight& a, const THeight& b) {
  if (is_Less(a.value, b.value)) return true;
  if (is_Less(b.value, a.value)) return false;
  return a.turn < b.turn;
}

using THeights = AVLTree<CPair<THeight, uint32_t>>;
using TNodes = TNodePool<THeights::Node>;

// A point in the ring.
struct TLink {
  uint32_t previous, next;
  THeight height;
  bool gone;
};

class Ring {
 public:
  explicit Ring(const TArr<T3DVEC>& line) : line_(line), left_(line.count) {}

  bool init();
  // Removes the flattest point; false if there is none to remove.
  bool drop_Flattest(double limit);
  bool store(TArr<T3DVEC>& out);

 private:
  double measure(const TLink& link, uint32_t i) const;
  bool insert(uint32_t i, double value) {
    TLink& link = links_->data[i];
    link.height = {value, turn_++};
    return heights_.Insert({link.height, i});
  }
  void measure_Again(uint32_t i);

  const TArr<T3DVEC>& line_;
  uint32_t left_;
  uint64_t turn_ = 0;
  Scoped<TArr<TLink>> links_;
  TNodes nodes_;
  THeights heights_;
};

double Ring::measure(const TLink& link, uint32_t i) const {
  const auto get_Flat = [&](uint32_t k) { return T2DVEC{line_.data[k].x, line_.data[k].y}; };
  const T2DVEC a = get_Flat(link.previous), b = get_Flat(link.next);
  const double chord = dst(a, b);
  return chord == 0.0 ? 0.0 : 2.0 * area_Tri(a, get_Flat(i), b) / chord;
}

bool Ring::init() {
  const uint32_t n = line_.count;
  if (n > INT32_MAX || !alloc(*links_, n) || !nodes_.init(static_cast<int32_t>(n))) return false;
  heights_.SetPool(&nodes_);
  for (uint32_t i = 0; i < n; ++i) {
    TLink& link = links_->data[i];
    link.previous = i > 0 ? i - 1 : n - 1;
    link.next = i + 1 < n ? i + 1 : 0;
    if (!insert(i, std::fabs(measure(link, i)))) return false;
  }
  return true;
}

// The height goes through single precision here, other than at first: which of two points of
// nearly equal height goes first hangs on it, and whether one at the limit goes at all.
void Ring::measure_Again(uint32_t i) {
  heights_.Remove(links_->data[i].height);
  insert(i, std::fabs(static_cast<float>(measure(links_->data[i], i))));
}

bool Ring::drop_Flattest(double limit) {
  const THeights::Node* lowest = heights_.root();
  while (lowest->left) lowest = lowest->left;
  const uint32_t i = lowest->pair.value;
  TLink& link = links_->data[i];
  if (left_ < 4 || !(link.height.value <= limit)) return false;
  heights_.Remove(link.height);
  link.gone = true;
  links_->data[link.previous].next = link.next;
  links_->data[link.next].previous = link.previous;
  measure_Again(link.previous);
  measure_Again(link.next);
  --left_;
  return true;
}

bool Ring::store(TArr<T3DVEC>& out) {
  if (!alloc(out, left_)) return false;
  uint32_t end = 0;
  for (uint32_t i = 0; i < line_.count; ++i)
    if (!links_->data[i].gone) out.data[end++] = line_.data[i];
  return true;
}

}  // namespace

int32_t pol_Simplify(const TArr<T3DVEC>& line, double limit, TArr<T3DVEC>& out) {
  reset(out);
  if (!line.data) return -1;
  if (line.count == 0) return -2;
  if (line.data[0] == line.data[line.count - 1]) return -3;
  Ring ring(line);
  if (!ring.init()) return -4;
  while (ring.drop_Flattest(limit)) {
  }
  return ring.store(out) ? 0 : -4;
}

}  // namespace undercut
