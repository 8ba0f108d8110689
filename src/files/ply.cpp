// Coloured PLY, text.
#include "files/colour.h"
#include "files/elements.h"
#include "files/file.h"
#include "files/writers.h"
#include "foundation/arrays.h"

namespace undercut {

namespace {

constexpr const char kColours[] =
    "property uchar red\n"
    "property uchar green\n"
    "property uchar blue\n";

// The two layouts differ in the element that the colours belong to.
void write_Header(File& file, const T3DMSH& msh, bool by_vertex) {
  file.printf(
      "ply\n"
      "format ascii 1.0\n"
      "comment QR presented\n"
      "element vertex %d\n"
      "property float x\n"
      "property float y\n"
      "property float z\n"
      "%s"
      "element face %d\n"
      "property list uchar int vertex_indices\n"
      "%s"
      "end_header\n",
      static_cast<int>(msh.n_vtx), by_vertex ? kColours : "", static_cast<int>(msh.n_tri),
      by_vertex ? "" : kColours);
}

template <typename ColourOf>
bool write_Faces(const char* path, const T3DMSH& msh, ColourOf colour_of) {
  File file(path);
  if (!file) return false;
  write_Header(file, msh, false);
  for (uint32_t v = 0; v < msh.n_vtx; ++v) file.point(msh.vtx[v]);
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DTRI& tri = msh.tri[t];
    const TRgb colour = colour_of(t);
    file.printf("3 %d %d %d %d %d %d\n", static_cast<int>(tri.a), static_cast<int>(tri.b),
                static_cast<int>(tri.c), colour.r, colour.g, colour.b);
  }
  return true;
}

template <typename ColourOf>
bool write_Vertices(const char* path, const T3DMSH& msh, ColourOf colour_of) {
  File file(path);
  if (!file) return false;
  write_Header(file, msh, true);
  for (uint32_t v = 0; v < msh.n_vtx; ++v) {
    const T3DVEC& p = msh.vtx[v];
    const TRgb colour = colour_of(v);
    file.printf("%lf %lf %lf %d %d %d\n", p.x, p.y, p.z, colour.r, colour.g, colour.b);
  }
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DTRI& tri = msh.tri[t];
    file.printf("3 %d %d %d\n", static_cast<int>(tri.a), static_cast<int>(tri.b),
                static_cast<int>(tri.c));
  }
  return true;
}

double mean_NonZero(const uint32_t* triangles, uint32_t count, const double* values,
                    uint32_t n_tri) {
  double sum = 0;
  uint32_t used = 0;
  for (uint32_t i = 0; i < count; ++i) {
    if (triangles[i] >= n_tri || values[triangles[i]] == 0.0) continue;
    sum += values[triangles[i]];
    ++used;
  }
  return used == 0 ? 0.0 : sum / used;
}

int64_t label_Index(int32_t label) {
  const int64_t n = static_cast<int64_t>(label) + 1;
  return n > kPaletteLast ? n % (kPaletteLast + 1) + 2 : n;
}

}  // namespace

bool ply_Val(const char* path, const T3DMSH& msh, const T2DVEC& range, const double* values,
             int32_t mode, bool negate) {
  if (!path || !is_Usable(msh) || !values) return false;
  return write_Faces(path, msh, [&](uint32_t t) {
    return col_Map(negate ? -values[t] : values[t], range.x, range.y, mode);
  });
}

bool ply_Rng(const char* path, const T3DMSH& msh, double low, double high, const double* values,
             int32_t mode) {
  return ply_Val(path, msh, {low, high}, values, mode, false);
}

bool ply_Vtx(const char* path, const T3DMSH& msh, const TAdj& vtx_tri, const T2DVEC& range,
             const double* values, int32_t mode) {
  if (!path || !is_Usable(msh) || !vtx_tri.lists || !vtx_tri.counts || !values) return false;
  return write_Vertices(path, msh, [&](uint32_t v) {
    const double mean = mean_NonZero(vtx_tri.lists[v], vtx_tri.counts[v], values, msh.n_tri);
    return col_Map(mean, range.x, range.y, mode);
  });
}

bool ply_Reg(const char* path, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists) {
  if (!path || !is_Usable(msh) || is_Empty(lists)) return false;
  Scoped<TArr<uint32_t>> colours;
  if (!alloc(*colours, msh.n_tri)) return false;
  for (uint32_t i = 0; i < lists.count; ++i) {
    const TLst<uint32_t>& list = lists.data[i];
    if (is_Empty(list)) continue;
    if (!ok_Ids(msh, list)) return true;
    for (uint32_t k = 0; k < list.count; ++k) colours->data[list.data[k]] = i + 1;
  }
  return write_Faces(path, msh, [&](uint32_t t) { return col_Pal(colours->data[t]); });
}

bool ply_Lbl(const char* path, const T3DMSH& msh, const int32_t* labels) {
  if (!path || !is_Usable(msh) || !labels) return false;
  return write_Faces(path, msh, [&](uint32_t t) { return col_Pal(label_Index(labels[t])); });
}

bool ply_Bit(const char* path, const T3DMSH& msh, const CBitVector& bits) {
  if (!path || !is_Usable(msh) || bits.size() != msh.n_tri) return false;
  return write_Faces(path, msh, [&](uint32_t t) {
    return bits.test(t) ? TRgb{255, 0, 0} : TRgb{255, 255, 255};
  });
}

bool ply_Ids(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids) {
  if (!path || !is_Usable(msh) || is_Empty(ids)) return false;
  if (!ok_Ids(msh, ids)) return true;
  CBitVector bits;
  return bits.from_Lst(ids, msh.n_tri) && ply_Bit(path, msh, bits);
}

}  // namespace undercut
