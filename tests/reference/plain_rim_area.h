// The area whose rim is asked for, in its plainest form: rounds over all triangles, all rays
// against all triangles, and a record for each component.
#pragma once

#include <cmath>
#include <cstdint>
#include <deque>
#include <vector>

#include "tests/reference/plain_adjacency.h"
#include "tests/reference/plain_rays.h"

namespace undercut::plain {

inline uint32_t count_Neighbours(const Table& neighbours, const Set& set, uint32_t t, bool value) {
  uint32_t count = 0;
  for (const uint32_t n : neighbours[t]) count += set[n] == value;
  return count;
}

inline Set dilate(const Table& neighbours, const Set& set) {
  Set next(set.size(), false);
  for (uint32_t t = 0; t < set.size(); ++t)
    next[t] = set[t] || count_Neighbours(neighbours, set, t, true) > 0;
  return next;
}

inline Set erode(const Table& neighbours, const Set& set) {
  Set next(set.size(), true);
  for (uint32_t t = 0; t < set.size(); ++t)
    if (!set[t] || count_Neighbours(neighbours, set, t, false) > 0) next[t] = false;
  return next;
}

inline Set fill_Notches(const Table& neighbours, uint32_t count, Set set) {
  for (uint32_t t = 0; t < set.size(); ++t)
    if (!set[t] && count_Neighbours(neighbours, set, t, true) == count) set[t] = true;
  return set;
}

struct TPlainComponent {
  std::vector<uint32_t> triangles;
  bool odd;      // holds a triangle with fewer or more than 3 neighbours; of no effect
  bool clear;    // of the set
  bool touches;  // a triangle of the other state
};

inline std::vector<TPlainComponent> list_Components(const Table& neighbours, const Set& set) {
  std::vector<TPlainComponent> components;
  Set visited(set.size(), false);
  for (uint32_t seed = 0; seed < set.size(); ++seed) {
    if (visited[seed]) continue;
    TPlainComponent c = {{}, false, !set[seed], false};
    std::deque<uint32_t> queue = {seed};
    visited[seed] = true;
    for (; !queue.empty(); queue.pop_front()) {
      const uint32_t t = queue.front();
      c.triangles.push_back(t);
      c.odd |= neighbours[t].size() != 3;
      for (const uint32_t n : neighbours[t]) {
        c.touches |= set[n] != set[seed];
        if (set[n] != set[seed] || visited[n]) continue;
        visited[n] = true;
        queue.push_back(n);
      }
    }
    components.push_back(c);
  }
  return components;
}

inline Set fill_Holes(const Table& neighbours, Set set) {
  const std::vector<TPlainComponent> components = list_Components(neighbours, set);
  const TPlainComponent* outside = nullptr;
  for (const TPlainComponent& c : components)
    if (c.clear && c.touches && (!outside || c.triangles.size() > outside->triangles.size()))
      outside = &c;
  for (const TPlainComponent& c : components)
    if (c.clear && c.touches && &c != outside)
      for (const uint32_t t : c.triangles) set[t] = true;
  return set;
}

inline Set clean(const Table& neighbours, const Set& area) {
  const Set closed = erode(neighbours, dilate(neighbours, area));
  const Set once = fill_Notches(neighbours, 2, closed);
  return fill_Holes(neighbours, fill_Notches(neighbours, 2, once));
}

// Lengths in mm.
struct TPlainView {
  T3DVEC direction;
  double lift;
};

inline bool joins_Area(const T3DMSH& msh, const TPlainView& view, uint32_t t) {
  const T3DVEC a = msh.vtx[msh.tri[t].a], b = msh.vtx[msh.tri[t].b], c = msh.vtx[msh.tri[t].c];
  if (a == b || b == c || c == a) return true;
  const T3DVEC n = unit(cross(b - a, c - a));
  const T3DVEC start = (a + b + c) / 3.0 + view.lift * n;
  if (reference::any_Hit(msh, {start, view.direction})) return false;
  return !(dot(n, view.direction) < std::cos(1.5707963267948966));
}

// Whether a triangle joins hangs on itself alone: so the area grows in rounds until nothing is
// added.
inline Set flood(const T3DMSH& msh, const Table& neighbours, const TPlainView& view, uint32_t start,
                 const Set& open) {
  Set joins(open.size(), false), area(open.size(), false);
  for (uint32_t t = 0; t < open.size(); ++t) joins[t] = open[t] && joins_Area(msh, view, t);
  area[start] = true;
  for (bool grown = true; grown;) {
    grown = false;
    for (uint32_t t = 0; t < open.size(); ++t)
      for (const uint32_t n : neighbours[t]) {
        if (!area[t] || area[n] || !joins[n]) continue;
        area[n] = true;
        grown = true;
      }
  }
  return area;
}

}  // namespace undercut::plain
