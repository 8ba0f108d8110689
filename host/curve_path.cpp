#include "curve_path.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>
#include <utility>

#include "edges.h"

namespace undercut::host {
namespace {

double dist_Segment(const T3DVEC& p, const T3DVEC& a, const T3DVEC& b) {
  const T3DVEC along = b - a;
  const double square = dot_Vec(along, along);
  const double t = square > 0.0 ? std::clamp(dot_Vec(p - a, along) / square, 0.0, 1.0) : 0.0;
  return len_Vec(a + t * along - p);
}

// Half the sum of the cross products of successive points: its length is the area of a flat curve,
// and it points to where the curve is seen to run counter-clockwise.
T3DVEC find_VectorArea(const Curve& curve) {
  T3DVEC twice{};
  for (size_t i = 0; i < curve.size(); ++i) {
    twice = twice + cross_Vec(curve[i] - curve[0], curve[(i + 1) % curve.size()] - curve[0]);
  }
  return 0.5 * twice;
}

}  // namespace

CurvePaths::CurvePaths(const Mesh& mesh) : mesh_(mesh) {
  const size_t count = mesh.vertices.size();
  const std::vector<EdgeUse> uses = list_Edges(mesh);
  std::vector<std::pair<uint32_t, uint32_t>> edges;
  for_Edges(uses,
            [&](size_t start, size_t) { edges.emplace_back(uses[start].low, uses[start].high); });
  first_.assign(count + 1, 0);
  for (const auto& [low, high] : edges) {
    ++first_[low + 1];
    ++first_[high + 1];
  }
  for (size_t i = 0; i < count; ++i) {
    if (first_[i + 1] > 0 && is_Finite(mesh.vertices[i])) by_x_.push_back(static_cast<uint32_t>(i));
    first_[i + 1] += first_[i];
  }
  neighbours_.resize(2 * edges.size());
  std::vector<uint32_t> next = first_;
  for (const auto& [low, high] : edges) {
    neighbours_[next[low]++] = high;
    neighbours_[next[high]++] = low;
  }
  std::stable_sort(by_x_.begin(), by_x_.end(), [&](uint32_t a, uint32_t b) {
    return mesh_.vertices[a].x < mesh_.vertices[b].x;
  });
  search_.assign(count, 0);
  before_.assign(count, 0);
  cost_.assign(count, 0.0);
}

uint32_t CurvePaths::find_Nearest(const T3DVEC& point) const {
  double nearest = std::numeric_limits<double>::infinity();
  uint32_t best = by_x_.front();
  const auto start =
      std::lower_bound(by_x_.begin(), by_x_.end(), point.x,
                       [&](uint32_t vertex, double x) { return mesh_.vertices[vertex].x < x; });
  // True while a nearer one may lie farther out along x.
  const auto try_Vertex = [&](uint32_t vertex) {
    const T3DVEC way = mesh_.vertices[vertex] - point;
    if (std::fabs(way.x) > nearest) return false;
    const double distance = len_Vec(way);
    if (distance < nearest || (distance == nearest && vertex < best)) {
      nearest = distance;
      best = vertex;
    }
    return true;
  };
  for (auto at = start; at != by_x_.end() && try_Vertex(*at);) ++at;
  for (auto at = start; at != by_x_.begin() && try_Vertex(*(at - 1));) --at;
  return best;
}

bool CurvePaths::add_Way(uint32_t from, uint32_t to, const T3DVEC& a, const T3DVEC& b,
                         std::vector<uint32_t>& path) {
  using Entry = std::pair<double, uint32_t>;
  std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
  ++searches_;
  const auto reach = [&](uint32_t vertex, uint32_t before, double cost) {
    if (search_[vertex] == searches_ && !(cost < cost_[vertex])) return;
    search_[vertex] = searches_;
    before_[vertex] = before;
    cost_[vertex] = cost;
    open.emplace(cost, vertex);
  };
  reach(from, from, 0.0);
  while (!open.empty() && open.top().second != to) {
    const auto [cost, vertex] = open.top();
    open.pop();
    if (cost > cost_[vertex]) continue;
    for (uint32_t k = first_[vertex]; k < first_[vertex + 1]; ++k) {
      const uint32_t next = neighbours_[k];
      const T3DVEC& p = mesh_.vertices[next];
      reach(next, vertex, cost + len_Vec(p - mesh_.vertices[vertex]) + dist_Segment(p, a, b));
    }
  }
  if (open.empty()) return false;
  const size_t end = path.size();
  for (uint32_t vertex = to; vertex != from; vertex = before_[vertex]) path.push_back(vertex);
  std::reverse(path.begin() + static_cast<std::ptrdiff_t>(end), path.end());
  return true;
}

std::vector<uint32_t> CurvePaths::keep_Main(const std::vector<uint32_t>& path,
                                            const T3DVEC& aim) const {
  std::vector<uint32_t> way, main;
  double record = 0.0;
  const auto try_Loop = [&](size_t from) {
    if (way.size() - from < 3) return;
    Curve loop;
    for (size_t i = from; i < way.size(); ++i) loop.push_back(mesh_.vertices[way[i]]);
    const double area = dot_Vec(find_VectorArea(loop), aim);
    if (!main.empty() && !(area > record)) return;
    record = area;
    main.assign(way.begin() + static_cast<std::ptrdiff_t>(from), way.end());
  };
  constexpr size_t kNone = std::numeric_limits<size_t>::max();
  std::vector<size_t> place(mesh_.vertices.size(), kNone);
  for (const uint32_t vertex : path) {
    if (const size_t at = place[vertex]; at != kNone) {
      try_Loop(at);
      for (size_t i = at + 1; i < way.size(); ++i) place[way[i]] = kNone;
      way.resize(at + 1);
      continue;
    }
    place[vertex] = way.size();
    way.push_back(vertex);
  }
  try_Loop(0);
  return main;
}

std::vector<uint32_t> CurvePaths::lay(const Curve& curve) {
  if (by_x_.empty()) return {};
  std::vector<uint32_t> path;
  const uint32_t start = find_Nearest(curve[0]);
  uint32_t from = start;
  for (size_t i = 0; i < curve.size(); ++i) {
    const T3DVEC &a = curve[i], &b = curve[(i + 1) % curve.size()];
    const uint32_t to = i + 1 < curve.size() ? find_Nearest(b) : start;
    if (!add_Way(from, to, a, b, path)) return {};
    from = to;
  }
  return keep_Main(path, unit_Vec(find_VectorArea(curve)));
}

}  // namespace undercut::host
