// .trf: matrices and frames.
#include "files/file.h"
#include "files/writers.h"

namespace undercut {

bool trf_Mat(const char* path, const T3DMAT& mat) {
  File file(path);
  if (!file) return false;
  static constexpr double kLastRow[] = {0, 0, 0, 1};
  for (int row = 0; row < 4; ++row) {
    const double* m = row < 3 ? mat.m + 4 * row : kLastRow;
    file.printf("%+14.8le %+14.8le %+14.8le %+14.8le\n", m[0], m[1], m[2], m[3]);
  }
  return true;
}

bool trf_Frm(const char* path, const T3DFRM& frm) {
  T3DMAT mat;
  frm_ToMat(mat, frm);
  return trf_Mat(path, mat);
}

}  // namespace undercut
