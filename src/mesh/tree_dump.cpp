// What a node of a tree holds, written for a viewer: triangles and the node's box as text STL,
// points one a line. Numbers have six digits behind the point, whatever locale the host has set.
#include <charconv>
#include <cstdio>

#include "mesh/trees.h"

namespace undercut {

namespace {

// A text file, closed at the end of its scope. Writes are not checked: a full disk goes unnoticed.
class TDump {
 public:
  explicit TDump(const std::string& path) : file_(std::fopen(path.c_str(), "w")) {}
  ~TDump() {
    if (file_) std::fclose(file_);
  }
  TDump(const TDump&) = delete;
  TDump& operator=(const TDump&) = delete;

  bool is_Open() const { return file_ != nullptr; }
  void text(const char* s) { std::fputs(s, file_); }
  void vec(const T3DVEC& v) {
    number(v.x);
    text(" ");
    number(v.y);
    text(" ");
    number(v.z);
  }

 private:
  void number(double value) {
    char digits[328];  // up to 309 stand before the point
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6);
    std::fwrite(digits, 1, static_cast<size_t>(end.ptr - digits), file_);
  }

  std::FILE* file_;
};

void put_Facet(TDump& dump, const T3DFAC& f, const T3DVEC& normal) {
  dump.text(" facet normal ");
  dump.vec(normal);
  dump.text("\n   outer loop            \n");
  for (const T3DVEC* p : {&f.a, &f.b, &f.c}) {
    dump.text("     vertex ");
    dump.vec(*p);
    dump.text("  \n");
  }
  dump.text("   endloop               \n endfacet                \n");
}

struct TSide {
  int corners[2][3];
  T3DVEC normal;
};
constexpr TSide kSides[6] = {
    {{{3, 2, 1}, {1, 0, 3}}, {0, 0, -1}}, {{{1, 2, 6}, {6, 5, 1}}, {1, 0, 0}},
    {{{2, 3, 7}, {7, 6, 2}}, {0, 1, 0}},  {{{3, 0, 4}, {4, 7, 3}}, {-1, 0, 0}},
    {{{0, 1, 5}, {5, 4, 0}}, {0, -1, 0}}, {{{4, 5, 6}, {6, 7, 4}}, {0, 0, 1}},
};

void put_Box(TDump& dump, const C3DAABB& box) {
  T3DVEC corners[8];
  box.corners(corners);
  dump.text("solid Box\n");
  for (const TSide& side : kSides)
    for (const auto& t : side.corners)
      put_Facet(dump, {corners[t[0]], corners[t[1]], corners[t[2]]}, side.normal);
  dump.text("endsolid Box\n");
}

}  // namespace

bool C3DTriAABBTree::DumpNode(uint32_t node, const std::string& path) const {
  if (node >= nodes().size()) return false;
  TDump dump(path);
  if (!dump.is_Open()) return false;
  const TBoxNode<C3DAABB>& dumped = nodes()[node];
  dump.text("solid Node\n");
  for (uint32_t i = dumped.first; i <= dumped.last; ++i) {
    const T3DFAC f = get_Fac(msh_, items()[i].id);
    put_Facet(dump, f, nml_Tri(f));
  }
  put_Box(dump, dumped.box);
  dump.text("endsolid Node\n");
  return true;
}

bool C3DPntAABBTree::DumpNode(uint32_t node, const std::string& path) const {
  if (node >= tree_.nodes.size()) return false;
  TDump dump(path);
  if (!dump.is_Open()) return false;
  const TBoxNode<C3DAABB>& dumped = tree_.nodes[node];
  for (uint32_t i = dumped.first; i <= dumped.last; ++i) {
    dump.vec(points_[tree_.items[i].id]);
    dump.text("\n");
  }
  return true;
}

}  // namespace undercut
