#include "prepare.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>

#include "cut.h"
#include "refine.h"

namespace undercut::host {
namespace {

// A well-mixed number for each counter value (Steele, Lea, Flood 2014: splitmix64).
uint64_t mix_Bits(uint64_t value) {
  value += 0x9E3779B97F4A7C15u;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

// From -1 to 1, the same for the same position, index and axis on every machine.
double spread_Index(uint32_t position, uint32_t index, uint32_t axis) {
  const uint64_t bits = mix_Bits((uint64_t{position} << 40) + 3 * uint64_t{index} + axis) >> 11;
  return static_cast<double>(bits) * 0x1p-52 - 1.0;
}

// A share of the shortest edge at each vertex, 0 for a vertex without edges.
std::vector<double> find_Reach(const Mesh& mesh, double share) {
  constexpr double kNone = std::numeric_limits<double>::max();
  std::vector<double> reach(mesh.vertices.size(), kNone);
  for (const T3DTRI& t : mesh.triangles) {
    const uint32_t ring[4] = {t.a, t.b, t.c, t.a};
    for (int k = 0; k < 3; ++k) {
      const uint32_t a = ring[k], b = ring[k + 1];
      if (a == b) continue;
      const double length = len_Vec(mesh.vertices[b] - mesh.vertices[a]);
      reach[a] = std::min(reach[a], length);
      reach[b] = std::min(reach[b], length);
    }
  }
  for (double& length : reach) length = length == kNone ? 0.0 : share * length;
  return reach;
}

// For each vertex of a mesh whose triangles were given copies of vertices the one that it was.
std::vector<uint32_t> find_Roots(const Mesh& before, const Mesh& after) {
  std::vector<uint32_t> root(after.vertices.size());
  std::iota(root.begin(), root.end(), 0u);
  for (size_t i = 0; i < after.triangles.size(); ++i) {
    const T3DTRI &old = before.triangles[i], &now = after.triangles[i];
    root[now.a] = old.a;
    root[now.b] = old.b;
    root[now.c] = old.c;
  }
  return root;
}

std::array<uint32_t, 3> sort_Corners(const T3DTRI& t) {
  std::array<uint32_t, 3> corners{t.a, t.b, t.c};
  std::sort(corners.begin(), corners.end());
  return corners;
}

void mark_Needles(const Mesh& mesh, double share, std::vector<bool>& marked) {
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI& t = mesh.triangles[i];
    const T3DVEC &a = mesh.vertices[t.a], &b = mesh.vertices[t.b], &c = mesh.vertices[t.c];
    const double longest = std::max({len_Vec(b - a), len_Vec(c - b), len_Vec(a - c)});
    const double height = longest > 0.0 ? 2.0 * area_Tri(mesh, i) / longest : 0.0;
    if (height <= share * longest) marked[i] = true;
  }
}

void mark_Doubled(const Mesh& mesh, std::vector<bool>& marked) {
  std::vector<std::pair<std::array<uint32_t, 3>, uint32_t>> order;
  order.reserve(mesh.triangles.size());
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    order.emplace_back(sort_Corners(mesh.triangles[i]), i);
  }
  std::sort(order.begin(), order.end());
  for (size_t k = 1; k < order.size(); ++k) {
    if (order[k].first == order[k - 1].first) marked[order[k].second] = true;
  }
}

}  // namespace

Rotation rotate_Up(const T3DVEC& up) {
  const T3DVEC u = unit_Vec(up);
  const double level = u.x * u.x + u.y * u.y;
  // Straight down there is no shortest rotation; half a turn about X is taken.
  if (u.z < 0.0 && level == 0.0) return {{1, 0, 0}, {0, -1, 0}, {0, 0, -1}};
  // Rodrigues' form of the rotation about u x Z, written out; below the horizon the factor
  // 1 / (1 + z) is taken in the form that does not cancel.
  const double k = u.z < 0.0 ? (1.0 - u.z) / level : 1.0 / (1.0 + u.z);
  return {{1.0 - k * u.x * u.x, -k * u.x * u.y, -u.x},
          {-k * u.x * u.y, 1.0 - k * u.y * u.y, -u.y},
          {u.x, u.y, u.z}};
}

void place_Vertices(Prepared& prepared, uint32_t position) {
  for (uint32_t v = 0; v < prepared.rest.size(); ++v) {
    const uint32_t root = prepared.root[v];
    const T3DVEC way{spread_Index(position, root, 0), spread_Index(position, root, 1),
                     spread_Index(position, root, 2)};
    prepared.mesh.vertices[v] = prepared.rest[v] + prepared.reach[root] * unit_Vec(way);
  }
}

std::vector<bool> find_Awkward(const Mesh& mesh, double share) {
  std::vector<bool> marked(mesh.triangles.size(), false);
  mark_Needles(mesh, share, marked);
  mark_Doubled(mesh, marked);
  return marked;
}

void set_Apart(Mesh& mesh, const std::vector<bool>& marked) {
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    if (!marked[i]) continue;
    T3DTRI& t = mesh.triangles[i];
    const auto copy_Vertex = [&](uint32_t v) {
      mesh.vertices.push_back(T3DVEC(mesh.vertices[v]));
      return static_cast<uint32_t>(mesh.vertices.size() - 1);
    };
    // Corners that were one vertex stay one.
    const T3DTRI old = t;
    t.a = copy_Vertex(old.a);
    t.b = old.b == old.a ? t.a : copy_Vertex(old.b);
    t.c = old.c == old.a ? t.a : old.c == old.b ? t.b : copy_Vertex(old.c);
  }
}

Prepared keep_Plain(const Mesh& mesh) {
  Prepared prepared;
  prepared.mesh = mesh;
  prepared.origin.resize(mesh.triangles.size());
  std::iota(prepared.origin.begin(), prepared.origin.end(), 0u);
  prepared.apart.assign(mesh.triangles.size(), false);
  return prepared;
}

Prepared prepare_Mesh(const Mesh& mesh, const PrepareRules& rules) {
  Prepared prepared = keep_Plain(mesh);
  prepared.rotation = rotate_Up(rules.up);
  for (T3DVEC& vertex : prepared.mesh.vertices) vertex = prepared.rotation.turn(vertex);
  if (rules.max_edge > 0.0) {
    Refined refined = refine_Mesh(prepared.mesh, rules.max_edge);
    prepared.mesh = std::move(refined.mesh);
    prepared.origin = std::move(refined.origin);
    prepared.apart.assign(prepared.mesh.triangles.size(), false);
  }
  const Mesh joined = prepared.mesh;
  if (rules.needle > 0.0) prepared.apart = find_Awkward(prepared.mesh, rules.needle);
  set_Apart(prepared.mesh, prepared.apart);
  if (rules.cut) cut_Singular(prepared.mesh);
  prepared.rest = prepared.mesh.vertices;
  prepared.reach = find_Reach(joined, rules.displacement);
  prepared.root = find_Roots(joined, prepared.mesh);
  place_Vertices(prepared, 0);
  return prepared;
}

}  // namespace undercut::host
