// The list operations in their plainest form: every loop is stored, the last position of each
// vertex is kept in a map.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

namespace undercut::plain {

using List = std::vector<uint32_t>;

// Walks once round the closed list from the last element of a run on, so that of every run the
// first stays.
inline List drop_Repeats(const List& list) {
  const size_t n = list.size();
  size_t start = n;
  for (size_t i = n; i-- > 0;)
    if (list[i] != list[(i + 1) % n]) start = i;
  if (start == n) return {list[0]};
  std::vector<bool> marked(n);
  uint32_t last = list[start];
  for (size_t k = 1; k <= n; ++k) {
    const size_t i = (start + k) % n;
    if (list[i] == last) marked[i] = true;
    last = list[i];
  }
  List kept;
  for (size_t i = 0; i < n; ++i)
    if (!marked[i]) kept.push_back(list[i]);
  return kept;
}

inline List find_BigLoop(const List& list) {
  const size_t n = list.size();
  List next(n);
  for (size_t i = 0; i < n; ++i) next[i] = static_cast<uint32_t>((i + 1) % n);
  std::vector<List> loops;
  std::map<uint32_t, uint32_t> position;
  for (uint32_t i = 0; i + 1 < n; ++i) {
    const auto [at, is_New] = position.insert({list[i], i});
    if (is_New) continue;
    const uint32_t seen = at->second;
    List loop;
    for (uint32_t k = next[seen];; k = next[k]) {
      loop.push_back(list[k]);
      if (k == i) break;
    }
    loops.push_back(loop);
    next[seen] = next[i];
    at->second = i;
  }
  List rest = {list[0]};
  for (uint32_t k = next[0]; k != 0; k = next[k]) rest.push_back(list[k]);
  rest.push_back(list[0]);
  loops.push_back(rest);
  size_t best = 0;
  for (size_t k = 1; k < loops.size(); ++k)
    if (loops[k].size() > loops[best].size()) best = k;
  return loops[best];
}

}  // namespace undercut::plain
