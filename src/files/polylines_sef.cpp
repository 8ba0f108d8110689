// .sef: a list of points, then a list of segments between them.
#include "files/elements.h"
#include "files/file.h"
#include "files/outline.h"
#include "files/writers.h"

namespace undercut {

namespace {

template <typename PointOf, typename SegmentOf>
bool write_Sef(const char* path, uint32_t n_pnt, PointOf point_of, uint32_t n_sgm,
               SegmentOf segment_of) {
  File file(path);
  if (!file) return false;
  file.printf("%d\n", static_cast<int>(n_pnt));
  for (uint32_t i = 0; i < n_pnt; ++i) file.point(point_of(i));
  file.printf("%d\n", static_cast<int>(n_sgm));
  for (uint32_t i = 0; i < n_sgm; ++i) {
    const T3DSGM segment = segment_of(i);
    file.printf("%d %d\n", static_cast<int>(segment.a), static_cast<int>(segment.b));
  }
  return true;
}

template <typename Turn>
bool write_Pol(const char* path, const T3DPOL& pol, Turn turn) {
  if (!path || !pol.pnt || pol.n_pnt == 0 || (!pol.sgm && pol.n_sgm != 0)) return false;
  const bool written = write_Sef(
      path, pol.n_pnt, [&](uint32_t i) { return turn(pol.pnt[i]); }, pol.n_sgm,
      [&](uint32_t i) { return pol.sgm[i]; });
  if (!written) std::fprintf(stderr, "error: can't open %s file \n", path);
  return written;
}

template <typename Turn>
bool write_Outline(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, Turn turn) {
  if (!path || !is_Usable(msh) || is_Empty(ids)) return false;
  if (!ok_Ids(msh, ids)) return true;
  COutline outline;
  Scoped<T3DPOL> pol;
  if (!outline.init(msh, ids) || !outline.edges(*pol)) return false;
  return write_Sef(
      path, pol->n_pnt, [&](uint32_t i) { return turn(pol->pnt[i]); }, pol->n_sgm,
      [&](uint32_t i) { return pol->sgm[i]; });
}

}  // namespace

bool sef_Pol(const char* path, const T3DPOL& pol) { return write_Pol(path, pol, InPlace{}); }

bool sef_PolFrm(const char* path, const T3DPOL& pol, const T3DFRM& frm) {
  return write_Pol(path, pol, InFrame{frm});
}

bool sef_Loop(const char* path, const TArr<T3DVEC>& loop) {
  if (!path || is_Empty(loop)) return false;
  return write_Sef(
      path, loop.count, [&](uint32_t i) { return loop.data[i]; }, loop.count,
      [&](uint32_t i) {
        return T3DSGM{i, (i + 1) % loop.count};
      });
}

bool sef_Frm(const char* path, const T3DFRM& frm) {
  const T3DVEC points[] = {frm.org, frm.org + 10.0 * frm.x, frm.org + 10.0 * frm.y,
                           frm.org + 10.0 * frm.z};
  return write_Sef(
      path, 4, [&](uint32_t i) { return points[i]; }, 3,
      [](uint32_t i) {
        return T3DSGM{0, i + 1};
      });
}

bool sef_Ray(const char* path, const T3DRAY& ray) {
  return write_Sef(
      path, 2, [&](uint32_t i) { return i == 0 ? ray.org : ray.dir; }, 1,
      [](uint32_t) {
        return T3DSGM{0, 1};
      });
}

bool sef_Pnt(const char* path, const T3DVEC& point) {
  return write_Sef(
      path, 1, [&](uint32_t) { return point; }, 0, [](uint32_t) { return T3DSGM{}; });
}

bool sef_Out(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids) {
  return write_Outline(path, msh, ids, InPlace{});
}

bool sef_OutFrm(const char* path, const T3DMSH& msh, const TLst<uint32_t>& ids, const T3DFRM& frm) {
  return write_Outline(path, msh, ids, InFrame{frm});
}

bool sef_OutLst(const char* base, const T3DMSH& msh, const TLst<TLst<uint32_t>>& lists,
                const TArr<uint32_t>& ids) {
  return write_Lists(
      base, lists, ids, 3, ".sef",
      [&msh](const char* name, const TLst<uint32_t>& list) { return sef_Out(name, msh, list); });
}

bool sef_IdPts(const char* base, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids) {
  return write_Elements(base, points, ids, ".sef", sef_Pnt);
}

bool sef_IdLps(const char* base, const TArr<TArr<T3DVEC>>& loops, const TArr<uint32_t>& ids) {
  return write_Elements(base, loops, ids, ".sef", sef_Loop);
}

bool sef_IdRays(const char* base, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids) {
  return write_Elements(base, rays, ids, ".sef", sef_Ray);
}

}  // namespace undercut
