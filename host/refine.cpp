#include "refine.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "errors.h"

namespace undercut::host {
namespace {

constexpr size_t kMostTriangles = 20'000'000;

[[noreturn]] void fail_TooMany() {
  throw UsageError("--max-edge: the mesh would have more than " + std::to_string(kMostTriangles) +
                   " triangles. Take a larger length.");
}

// An edge by its two vertices, the lower first.
using Edge = std::pair<uint32_t, uint32_t>;

Edge make_Edge(uint32_t a, uint32_t b) { return {std::min(a, b), std::max(a, b)}; }

std::vector<Edge> find_LongEdges(const Mesh& mesh, double max_edge) {
  std::vector<Edge> edges;
  for (const T3DTRI& t : mesh.triangles) {
    for (const Edge& edge : {make_Edge(t.a, t.b), make_Edge(t.b, t.c), make_Edge(t.c, t.a)}) {
      const T3DVEC& a = mesh.vertices[edge.first];
      if (len_Vec(mesh.vertices[edge.second] - a) > max_edge) edges.push_back(edge);
    }
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  return edges;
}

// The pieces of one triangle, given the middle of each edge (ab, bc, ca) or -1.
void split_Tri(const T3DTRI& t, int64_t ab, int64_t bc, int64_t ca, std::vector<T3DTRI>& pieces) {
  const auto vertex = [](int64_t v) { return static_cast<uint32_t>(v); };
  const int count = (ab >= 0) + (bc >= 0) + (ca >= 0);
  if (count == 0) {
    pieces.push_back(t);
  } else if (count == 3) {
    pieces.push_back({t.a, vertex(ab), vertex(ca)});
    pieces.push_back({vertex(ab), t.b, vertex(bc)});
    pieces.push_back({vertex(ca), vertex(bc), t.c});
    pieces.push_back({vertex(ab), vertex(bc), vertex(ca)});
  } else if (count == 1 ? ab < 0 : (ab < 0 || bc < 0)) {
    // Turn the corners until ab is the one edge split, or ab and bc are the two.
    split_Tri({t.b, t.c, t.a}, bc, ca, ab, pieces);
  } else if (count == 1) {
    pieces.push_back({t.a, vertex(ab), t.c});
    pieces.push_back({vertex(ab), t.b, t.c});
  } else {
    pieces.push_back({vertex(ab), t.b, vertex(bc)});
    pieces.push_back({t.a, vertex(ab), vertex(bc)});
    pieces.push_back({t.a, vertex(bc), t.c});
  }
}

// One round: every long edge is split once.
void split_Edges(Refined& refined, const std::vector<Edge>& edges) {
  Mesh& mesh = refined.mesh;
  const auto first = static_cast<int64_t>(mesh.vertices.size());
  for (const Edge& edge : edges) {
    const T3DVEC middle = 0.5 * (mesh.vertices[edge.first] + mesh.vertices[edge.second]);
    mesh.vertices.push_back(middle);
  }
  const auto find_Middle = [&](uint32_t a, uint32_t b) -> int64_t {
    const Edge edge = make_Edge(a, b);
    const auto at = std::lower_bound(edges.begin(), edges.end(), edge);
    return at != edges.end() && *at == edge ? first + (at - edges.begin()) : -1;
  };
  std::vector<T3DTRI> triangles;
  std::vector<uint32_t> origin;
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI t = mesh.triangles[i];
    split_Tri(t, find_Middle(t.a, t.b), find_Middle(t.b, t.c), find_Middle(t.c, t.a), triangles);
    origin.resize(triangles.size(), refined.origin[i]);
    if (triangles.size() > kMostTriangles) fail_TooMany();
  }
  mesh.triangles = std::move(triangles);
  refined.origin = std::move(origin);
}

}  // namespace

Refined refine_Mesh(const Mesh& mesh, double max_edge) {
  Refined refined{mesh, {}};
  // A piece is not larger than the equilateral triangle, and covers no more than `max_edge` of the
  // longest edge, so this many there will be at least.
  const double largest = std::sqrt(3.0) / 4.0 * max_edge * max_edge;
  double pieces = 0.0;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    refined.origin.push_back(i);
    const T3DTRI& t = mesh.triangles[i];
    const T3DVEC &a = mesh.vertices[t.a], &b = mesh.vertices[t.b], &c = mesh.vertices[t.c];
    const double longest = std::max({len_Vec(b - a), len_Vec(c - b), len_Vec(a - c)});
    pieces += std::max({1.0, area_Tri(mesh, i) / largest, longest / max_edge});
  }
  if (!(pieces <= static_cast<double>(kMostTriangles))) fail_TooMany();
  // Each round halves the longest edge at the worst, or doubles the triangles up to the limit.
  for (int round = 0; round < 64; ++round) {
    const std::vector<Edge> edges = find_LongEdges(refined.mesh, max_edge);
    if (edges.empty()) break;
    split_Edges(refined, edges);
  }
  return refined;
}

}  // namespace undercut::host
