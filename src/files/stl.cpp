// Binary STL. The header's first bytes are a marker, the rest is zero.
#include <bit>
#include <cstring>

#include "files/elements.h"
#include "files/file.h"
#include "files/writers.h"

namespace undercut {

namespace {

constexpr size_t kHeaderSize = 80;
constexpr size_t kRecordSize = 50;
constexpr char kMarker[] = "zorvanite!";

uint8_t* put_U16(uint8_t* at, uint32_t value) {
  at[0] = static_cast<uint8_t>(value);
  at[1] = static_cast<uint8_t>(value >> 8);
  return at + 2;
}

uint8_t* put_U32(uint8_t* at, uint32_t value) { return put_U16(put_U16(at, value), value >> 16); }

uint8_t* put_F32(uint8_t* at, double value) {
  return put_U32(at, std::bit_cast<uint32_t>(static_cast<float>(value)));
}

uint8_t* put_Point(uint8_t* at, const T3DVEC& p) {
  return put_F32(put_F32(put_F32(at, p.x), p.y), p.z);
}

// `triangle_of` gives the triangle of record i, `point_of` the place of a vertex, `label_of` the
// attribute of record i. False, before the file is opened, for a corner out of range.
template <typename TriangleOf, typename PointOf, typename LabelOf>
bool write_Stl(const char* path, const T3DMSH& msh, uint32_t count, TriangleOf triangle_of,
               PointOf point_of, LabelOf label_of) {
  for (uint32_t i = 0; i < count; ++i)
    if (!ok_Corners(msh, msh.tri[triangle_of(i)])) return false;
  File file(path, "wb");
  if (!file) return false;

  uint8_t head[kHeaderSize + 4] = {};
  std::memcpy(head, kMarker, sizeof kMarker);
  put_U32(head + kHeaderSize, count);
  file.write(head, sizeof head);
  for (uint32_t i = 0; i < count; ++i) {
    const T3DTRI& tri = msh.tri[triangle_of(i)];
    uint8_t record[kRecordSize];
    uint8_t* at = put_Point(record, {0, 0, 1});
    at = put_Point(at, point_of(msh.vtx[tri.a]));
    at = put_Point(at, point_of(msh.vtx[tri.b]));
    at = put_Point(at, point_of(msh.vtx[tri.c]));
    put_U16(at, label_of(i));
    file.write(record, sizeof record);
  }
  return true;
}

uint32_t itself(uint32_t i) { return i; }
uint32_t no_Label(uint32_t) { return 0; }

template <typename PointOf>
bool write_Listed(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids,
                  PointOf point_of) {
  if (!path || !msh.vtx || !msh.tri || is_Empty(ids)) return false;
  if (!ok_Ids(msh, ids)) return true;
  return write_Stl(
      path, msh, ids.count, [&](uint32_t i) { return ids.data[i]; }, point_of, no_Label);
}

}  // namespace

bool stl_Msh(const char* path, const T3DMSH& msh) {
  return path && is_Usable(msh) && write_Stl(path, msh, msh.n_tri, itself, InPlace{}, no_Label);
}

bool stl_Lbl(const char* path, const T3DMSH& msh, const uint32_t* labels) {
  return path && is_Usable(msh) && labels &&
         write_Stl(path, msh, msh.n_tri, itself, InPlace{},
                   [labels](uint32_t i) { return labels[i] + 1; });
}

bool stl_Ids(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids) {
  return write_Listed(path, msh, ids, InPlace{});
}

bool stl_Frm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm) {
  return write_Listed(path, msh, ids, InFrame{frm});
}

bool stl_Lst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists) {
  return write_Lists(
      base, lists, itself, 3, ".stl",
      [&msh](const char* name, const TLst<uint32_t>& ids) { return stl_Ids(name, msh, ids); });
}

}  // namespace undercut
