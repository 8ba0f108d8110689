// .asc: bare points.
#include "files/elements.h"
#include "files/file.h"
#include "files/writers.h"

namespace undercut {

namespace {

bool write_Asc(const char* path, const T3DVEC* points, uint32_t count) {
  File file(path);
  if (!file) return false;
  for (uint32_t i = 0; i < count; ++i) file.point(points[i]);
  return true;
}

}  // namespace

bool asc_Pts(const char* path, const TArr<T3DVEC>& points) {
  return !is_Empty(points) && write_Asc(path, points.data, points.count);
}

bool asc_Pnt(const char* path, const T3DVEC& point) { return write_Asc(path, &point, 1); }

bool asc_Ray(const char* path, const T3DRAY& ray) {
  const T3DVEC points[] = {ray.org, ray.dir};
  return write_Asc(path, points, 2);
}

bool asc_IdPts(const char* base, const TArr<T3DVEC>& points, const TArr<uint32_t>& ids) {
  return write_Elements(base, points, ids, ".asc", asc_Pnt);
}

bool asc_IdLst(const char* base, const TArr<TArr<T3DVEC>>& lists, const TArr<uint32_t>& ids) {
  return write_Elements(base, lists, ids, ".asc", asc_Pts);
}

bool asc_IdRays(const char* base, const TArr<T3DRAY>& rays, const TArr<uint32_t>& ids) {
  return write_Elements(base, rays, ids, ".asc", asc_Ray);
}

}  // namespace undercut
