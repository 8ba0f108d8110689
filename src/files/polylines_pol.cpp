// .pol: blocks of points between an opening and a closing tag.
#include "files/elements.h"
#include "files/file.h"
#include "files/outline.h"
#include "files/paths.h"
#include "files/writers.h"

namespace undercut {

namespace {

constexpr size_t kTagSize = 32;

template <typename PointOf>
void write_Block(File& file, const char* tag, uint32_t count, PointOf point_of) {
  file.printf("<%s>\n", tag);
  for (uint32_t i = 0; i < count; ++i) file.point(point_of(i));
  file.printf("</%s>\n", tag);
}

void write_Segment(File& file, const char* tag, const T3DVEC& a, const T3DVEC& b) {
  write_Block(file, tag, 2, [&](uint32_t i) { return i == 0 ? a : b; });
}

// A block for each line with points: tagged by its id, or by its index where no ids are given.
template <typename Turn>
bool write_Lines(const char* path, const TArr<TArr<T3DVEC>>& lines, const TArr<uint32_t>* ids,
                 Turn turn) {
  File file(path);
  if (!file) return false;
  for (uint32_t i = 0; i < lines.count; ++i) {
    const TArr<T3DVEC>& line = lines.data[i];
    if (is_Empty(line)) continue;
    char tag[kTagSize];
    if (ids)
      fmt_Name(tag, "lnd(%03d)", static_cast<int>(ids->data[i]));
    else
      fmt_Name(tag, "%03d", static_cast<int>(i));
    write_Block(file, tag, line.count, [&](uint32_t k) { return turn(line.data[k]); });
  }
  return true;
}

template <typename Turn>
bool write_Outline(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, Turn turn) {
  if (!path || !is_Usable(msh) || is_Empty(ids)) return false;
  if (!ok_Ids(msh, ids)) return true;
  COutline outline;
  Scoped<TArr<TArr<T3DVEC>>> loops;
  return outline.init(msh, ids) && outline.loops(*loops) &&
         write_Lines(path, *loops, nullptr, turn);
}

}  // namespace

bool pol_Lst(const char* path, const TArr<TArr<T3DVEC>>& lines) {
  return path && !is_Empty(lines) && write_Lines(path, lines, nullptr, InPlace{});
}

bool pol_LstFrm(const char* path, const TArr<TArr<T3DVEC>>& lines, const T3DFRM& frm) {
  return path && !is_Empty(lines) && write_Lines(path, lines, nullptr, InFrame{frm});
}

bool pol_One(const char* path, const TArr<T3DVEC>& line) {
  if (!path || is_Empty(line)) return false;
  File file(path);
  if (!file) return false;
  write_Block(file, "000", line.count, [&](uint32_t i) { return line.data[i]; });
  return true;
}

bool pol_Seg(const char* path, const T3DVEC& a, const T3DVEC& b) {
  File file(path);
  if (!file) return false;
  write_Segment(file, "sgm", a, b);
  return true;
}

bool pol_Frm(const char* path, const T3DFRM& frm) {
  File file(path);
  if (!file) return false;
  write_Segment(file, "X", frm.org, frm.org + frm.x);
  write_Segment(file, "Y", frm.org, frm.org + frm.y);
  write_Segment(file, "Z", frm.org, frm.org + frm.z);
  return true;
}

bool pol_Pts(const char* path, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids) {
  if (!path || is_Empty(points) || !has_Ids(ids, points)) return false;
  File file(path);
  if (!file) return false;
  for (uint32_t i = 0; i < points.count; ++i) {
    char tag[kTagSize];
    fmt_Name(tag, "lnd(%03d)", static_cast<int>(ids.data[i]));
    write_Block(file, tag, 1, [&](uint32_t) { return points.data[i]; });
  }
  return true;
}

bool pol_Ids(const char* path, const TArr<TArr<T3DVEC>>& lines, const TArr<uint32_t>& ids) {
  return path && !is_Empty(lines) && has_Ids(ids, lines) &&
         write_Lines(path, lines, &ids, InPlace{});
}

bool pol_Rays(const char* path, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids) {
  if (!path || is_Empty(rays) || !has_Ids(ids, rays)) return false;
  File file(path);
  if (!file) return false;
  for (uint32_t i = 0; i < rays.count; ++i) {
    char tag[kTagSize];
    fmt_Name(tag, "lnd(%03d)", static_cast<int>(ids.data[i]));
    write_Segment(file, tag, rays.data[i].org, rays.data[i].dir);
  }
  return true;
}

bool pol_Out(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids) {
  return write_Outline(path, msh, ids, InPlace{});
}

bool pol_OutFrm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm) {
  return write_Outline(path, msh, ids, InFrame{frm});
}

bool pol_OutLst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists,
                const TArr<uint32_t>& ids) {
  return write_Lists(
      base, lists, ids, 3, ".pol",
      [&msh](const char* name, const TLst<uint32_t>& list) { return pol_Out(name, msh, list); });
}

}  // namespace undercut
