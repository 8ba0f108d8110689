// Meshes of every character for the tests of the trees, and checks that all trees share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "mesh/trees.h"
#include "tests/reference/plain_tree.h"
#include "tests/reference/random_geometry.h"

namespace shapes {

using reference::Random;

struct Mesh {
  std::string name;
  std::vector<T3DVEC> points;
  std::vector<T3DTRI> triangles;

  T3DMSH view() {
    T3DMSH msh = {};
    msh.vtx = points.data();
    msh.n_vtx = static_cast<uint32_t>(points.size());
    msh.tri = triangles.data();
    msh.n_tri = static_cast<uint32_t>(triangles.size());
    return msh;
  }
  void add(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
    const auto n = static_cast<uint32_t>(points.size());
    points.insert(points.end(), {a, b, c});
    triangles.push_back({n, n + 1, n + 2});
  }
};

// Triangles of all sizes anywhere in a cube.
inline Mesh make_Soup(Random& random, uint32_t count, double half = 10.0) {
  Mesh mesh{"soup", {}, {}};
  for (uint32_t t = 0; t < count; ++t) {
    const T3DVEC p = random.triple(-half, half);
    const double size = half * std::pow(10.0, random.real(-2.0, 0.0));
    mesh.add(p, p + random.triple(-size, size), p + random.triple(-size, size));
  }
  return mesh;
}

// A field of whole-numbered heights: many equal coordinates, boxes that touch.
inline Mesh make_Grid(Random& random, uint32_t side, uint32_t heights) {
  Mesh mesh{"grid", {}, {}};
  for (uint32_t i = 0; i <= side; ++i)
    for (uint32_t k = 0; k <= side; ++k)
      mesh.points.push_back({1.0 * i, 1.0 * k, static_cast<double>(random.below(heights))});
  for (uint32_t i = 0; i < side; ++i)
    for (uint32_t k = 0; k < side; ++k) {
      const uint32_t a = i * (side + 1) + k, b = a + side + 1;
      mesh.triangles.push_back({a, b, b + 1});
      mesh.triangles.push_back({a, b + 1, a + 1});
    }
  return mesh;
}

// Points, needles and triangles along the axes, among ordinary ones, on few coordinates.
inline Mesh make_Degenerate(Random& random, uint32_t count) {
  Mesh mesh{"degenerate", {}, {}};
  const auto place = [&] {
    const T3DVEC p = random.triple(0, 5);
    return T3DVEC{std::floor(p.x), std::floor(p.y), std::floor(p.z)};
  };
  for (uint32_t t = 0; t < count; ++t) {
    const T3DVEC a = place(), b = place(), c = place();
    const uint64_t kind = random.below(4);
    if (kind == 0)
      mesh.add(a, a, a);
    else if (kind == 1)
      mesh.add(a, b, a);
    else if (kind == 2)
      mesh.add(a, 0.5 * (a + b), b);
    else
      mesh.add(a, b, c);
  }
  return mesh;
}

inline Mesh make_Coincident(uint32_t count) {
  Mesh mesh{"coincident", {}, {}};
  for (uint32_t t = 0; t < count; ++t) mesh.add({0, 0, 0}, {3, 1, 0}, {1, 2, 2});
  return mesh;
}

// One centre, all sizes: each box lies within the next.
inline Mesh make_Nested(uint32_t count) {
  Mesh mesh{"nested", {}, {}};
  for (uint32_t t = 0; t < count; ++t) {
    const double s = 1.0 + (t * 7u) % count;
    mesh.add({-s, -s, -s}, {s, -s, s}, {-s, s, s});
  }
  return mesh;
}

// Coincident triangles and a few others on either side, which no midpoint split can part from them.
inline Mesh make_Stragglers(uint32_t count) {
  Mesh mesh = make_Coincident(count);
  mesh.name = "stragglers";
  for (uint32_t t = 0; t < 4; ++t)
    mesh.add({900.0 + t, 0, 0}, {901.0 + t, 1, 0}, {900.0 + t, 1, 1});
  mesh.add({-900, 0, 0}, {-901, 1, 0}, {-900, 1, 1});
  return mesh;
}

// All triangles share a vertex.
inline Mesh make_Fan(uint32_t count) {
  Mesh mesh{"fan", {{0, 0, 5}}, {}};
  for (uint32_t t = 0; t < count; ++t) {
    const double w = 2.0 * 3.141592653589793 * t / count;
    mesh.points.push_back({10.0 * std::cos(w), 10.0 * std::sin(w), std::sin(5 * w)});
    mesh.triangles.push_back({0, t + 1, (t + 1) % count + 1});
  }
  return mesh;
}

// Zeros of both signs, which compare equal: which of them a box keeps is told by the order of
// items.
inline Mesh make_SignedZeros(Random& random, uint32_t count) {
  Mesh mesh{"signed zeros", {}, {}};
  const auto zero = [&] { return random.chance(0.5) ? 0.0 : -0.0; };
  for (uint32_t t = 0; t < count; ++t) {
    const T3DVEC a = {zero(), zero(), zero()}, b = {1.0, zero(), zero()};
    const T3DVEC c = {zero(), 1.0, zero()};
    mesh.add(a, b, c);
  }
  return mesh;
}

inline std::vector<Mesh> all_Meshes(Random& random, uint32_t count) {
  std::vector<Mesh> meshes;
  meshes.push_back(make_Soup(random, count));
  meshes.push_back(make_Grid(random, static_cast<uint32_t>(std::sqrt(count / 2.0)), 4));
  meshes.push_back(make_Grid(random, static_cast<uint32_t>(std::sqrt(count / 2.0)), 1));
  meshes.push_back(make_Degenerate(random, count));
  meshes.push_back(make_Coincident(count));
  meshes.push_back(make_Nested(count));
  meshes.push_back(make_Stragglers(count));
  meshes.push_back(make_Fan(count));
  meshes.push_back(make_SignedZeros(random, count));
  return meshes;
}

inline std::vector<undercut::C3DAABB> triangle_Boxes(Mesh& mesh) {
  std::vector<undercut::C3DAABB> boxes(mesh.triangles.size());
  for (uint32_t t = 0; t < boxes.size(); ++t) boxes[t].from_Tri(undercut::get_Fac(mesh.view(), t));
  return boxes;
}

// A list with room for `count` answers.
class Answers {
 public:
  explicit Answers(size_t count) : room_(count + 1, 0xABABABABu) {
    list.data = room_.data();
    list.count = 0;
    list.capacity = static_cast<uint32_t>(count);
  }
  TLst<uint32_t> list;
  std::vector<uint32_t> ids() const { return {list.data, list.data + list.count}; }

 private:
  std::vector<uint32_t> room_;
};

// Answers sorted by index.
inline std::vector<uint32_t> sorted(std::vector<uint32_t> ids) {
  std::sort(ids.begin(), ids.end());
  return ids;
}

template <typename Box>
bool same_Bits(const Box& a, const Box& b) {
  return std::memcmp(&a, &b, sizeof(Box)) == 0;
}

// Same items in the same order, same ranges, same boxes to the last bit.
template <typename Box>
void expect_Same(const std::vector<undercut::TBoxNode<Box>>& nodes,
                 const std::vector<undercut::TBoxItem<Box>>& items,
                 const reference::PlainTree<Box>& tree) {
  ASSERT_EQ(items.size(), tree.items.size());
  for (size_t i = 0; i < items.size(); ++i) {
    ASSERT_EQ(items[i].id, tree.items[i]->id) << "item " << i;
    ASSERT_TRUE(same_Bits(items[i].box, tree.items[i]->box)) << "item " << i;
  }
  size_t count = 0;
  std::vector<std::pair<uint32_t, const reference::PlainNode<Box>*>> pending = {
      {0u, tree.root.get()}};
  while (!pending.empty()) {
    const auto [index, expected] = pending.back();
    pending.pop_back();
    ++count;
    const undercut::TBoxNode<Box>& node = nodes[index];
    ASSERT_EQ(node.first, expected->first);
    ASSERT_EQ(node.last, expected->last);
    ASSERT_TRUE(same_Bits(node.box, expected->box)) << "node " << index;
    ASSERT_EQ(node.is_Leaf(), expected->left == nullptr);
    if (node.is_Leaf()) continue;
    pending.push_back({node.left, expected->left.get()});
    pending.push_back({node.right, expected->right.get()});
  }
  ASSERT_EQ(count, nodes.size());
}

// Ranges part their parent's, leaves hold up to 10 items and at least 5, boxes are tight.
template <typename Box>
void expect_Sound(const std::vector<undercut::TBoxNode<Box>>& nodes,
                  const std::vector<undercut::TBoxItem<Box>>& items) {
  ASSERT_FALSE(nodes.empty());
  ASSERT_EQ(nodes[0].first, 0u);
  ASSERT_EQ(nodes[0].last + 1, items.size());
  for (const undercut::TBoxNode<Box>& node : nodes) {
    const uint32_t count = node.last - node.first + 1;
    Box tight;
    for (uint32_t i = node.first; i <= node.last; ++i) tight.merge(items[i].box);
    // By value: of zeros of both signs a box keeps the one that came first when it was made.
    ASSERT_TRUE(node.box.min == tight.min && node.box.max == tight.max);
    ASSERT_EQ(node.is_Leaf(), count <= 10);
    if (items.size() > 10) {
      ASSERT_GE(count, 5u);
    }
    if (node.is_Leaf()) {
      ASSERT_EQ(node.right, 0u);
      continue;
    }
    ASSERT_EQ(nodes[node.left].first, node.first);
    ASSERT_EQ(nodes[node.left].last + 1, nodes[node.right].first);
    ASSERT_EQ(nodes[node.right].last, node.last);
  }
}

}  // namespace shapes
