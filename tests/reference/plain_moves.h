// The map of regions in its plainest form: neighbours by comparing all triangles, lists as vectors.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "foundation/values.h"

namespace reference {

using namespace undercut;

// A record of a move as text: flags of source and of target, for the triangle and its three slots.
struct TPlainMove {
  bool ok = false;
  std::string from = "????", to = "????";
};

class CPlainMap {
 public:
  explicit CPlainMap(const T3DMSH& msh) : region_of(msh.n_tri, -1), slots(msh.n_tri) {
    for (uint32_t t = 0; t < msh.n_tri; ++t) find_Around(msh, t);
  }

  std::vector<int> region_of;
  std::vector<std::vector<int>> slots;            // three for each triangle, -1 for none
  std::vector<std::vector<uint32_t>> neighbours;  // by edge, then by triangle
  std::map<int, std::vector<uint32_t>> lists;     // of the regions, last come first

  // Another triangle than `except` across an edge of t lies in the region.
  bool has_Other(int t, uint32_t except, int id) const {
    for (const int nb : slots[t])
      if (nb >= 0 && nb != int(except) && region_of[nb] == id) return true;
    return false;
  }
  bool is_Border(uint32_t t, int id) const {
    int in = region_of[t] == id, out = !in;
    for (const uint32_t nb : neighbours[t]) region_of[nb] == id ? ++in : ++out;
    return in > 0 && out > 0;
  }
  bool is_Outside(uint32_t t, int id) const { return region_of[t] != id && is_Border(t, id); }

  TPlainMove classify(uint32_t t, int to) const {
    TPlainMove move;
    const int from = region_of[t];
    move.ok = from == to || (from >= 0 && to >= 0);
    if (from == to || !move.ok) return move;
    bool inner = false, noted = false;
    for (int k = 0; k < 3; ++k) {
      const int nb = slots[t][k];
      if (nb < 0) continue;
      if (region_of[nb] == from) inner = true;
      if (region_of[nb] != from) {
        move.from[k + 1] = has_Other(nb, t, from) ? 'u' : '-';
        noted = true;
      }
      if (region_of[nb] != to) move.to[k + 1] = has_Other(nb, t, to) ? 'u' : '+';
    }
    if (inner || !noted) move.from[0] = '+';
    if (is_Outside(t, to)) move.to[0] = '-';
    return move;
  }

  // The two status letters, or "" for a failure.
  std::string apply(uint32_t t, int to) {
    const int from = region_of[t];
    if (from == to) return "--";
    if (from < 0 || to < 0) return "";
    std::string status = lists.count(to) ? "--" : "a-";
    lists[to];
    std::erase(lists[from], t);
    lists[to].insert(lists[to].begin(), t);
    region_of[t] = to;
    if (!lists[from].empty()) return status;
    if (from != 0) lists.erase(from);
    status[1] = 'r';
    return status;
  }

 private:
  static int count_Of(const T3DTRI& tri, uint32_t v) {
    return int(tri.a == v) + int(tri.b == v) + int(tri.c == v);
  }
  void find_Around(const T3DMSH& msh, uint32_t t) {
    const uint32_t v[4] = {msh.tri[t].a, msh.tri[t].b, msh.tri[t].c, msh.tri[t].a};
    std::vector<uint32_t> around;
    for (int k = 0; k < 3; ++k)
      for (uint32_t nb = 0; nb < msh.n_tri; ++nb)
        if (nb != t && count_Of(msh.tri[nb], v[k + 1]))
          around.insert(around.end(), size_t(count_Of(msh.tri[nb], v[k])), nb);
    slots[t] = {-1, -1, -1};
    for (const uint32_t nb : around)
      for (int k = 0; k < 3; ++k)
        if (count_Of(msh.tri[nb], v[k]) && count_Of(msh.tri[nb], v[k + 1])) slots[t][k] = int(nb);
    neighbours.push_back(around);
  }
};

}  // namespace reference
