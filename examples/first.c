/* A first program in C: a bump on a plate is divided into undercut regions. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <undercut/exports.h>

#define SIDE 60 /* squares along each side of the plate, of 0.5 mm */

static double height(double x, double y) { return 8.0 * exp(-0.02 * (x * x + y * y)); }

int main(void) {
  /* The mesh: (SIDE + 1)^2 points, two triangles for each square, counter-clockwise from above. */
  static T3DVEC points[(SIDE + 1) * (SIDE + 1)];
  static T3DTRI triangles[2 * SIDE * SIDE];
  static uint32_t all[2 * SIDE * SIDE];
  for (uint32_t i = 0; i <= SIDE; ++i)
    for (uint32_t j = 0; j <= SIDE; ++j) {
      const double x = 0.5 * (i - 0.5 * SIDE + 0.1 * sin(j)), y = 0.5 * (j - 0.5 * SIDE);
      points[i * (SIDE + 1) + j] = (T3DVEC){x, y, height(x, y)};
    }
  uint32_t n = 0;
  for (uint32_t i = 0; i < SIDE; ++i)
    for (uint32_t j = 0; j < SIDE; ++j) {
      const uint32_t a = i * (SIDE + 1) + j, b = a + SIDE + 1;
      triangles[n++] = (T3DTRI){a, b, b + 1};
      triangles[n++] = (T3DTRI){a, b + 1, a + 1};
    }
  for (uint32_t t = 0; t < n; ++t) all[t] = t;

  /* The call: parameters, the two records, the computation. */
  const uint32_t bands = 3;
  dcm_Con(&bands);
  TLstU32 whole = {all, n, n};
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = (T3DMSH){points, (SIDE + 1) * (SIDE + 1), triangles, n};
  req.rois = (TLstLstU32){&whole, 1, 1};
  const int32_t status = get_Dcm(&req, &res);
  if (status != 0) {
    printf("get_Dcm returned %d\n", (int)status);
    return EXIT_FAILURE;
  }

  /* The answer: entry k of the three lists is one region. */
  const TLstLstU32 regions = res.uca_t.data[0];
  for (uint32_t k = 0; k < regions.count; ++k) {
    const T3DVEC to_part = res.uca_a.data[0].data[k].dir;
    printf("region %u: %u triangles, tool axis %.3f %.3f %.3f\n", k + 1, regions.data[k].count,
           -to_part.x, -to_part.y, -to_part.z);
  }
  printf("%u triangles left free\n", whole.count);
  clr_Res(&res);
  return EXIT_SUCCESS;
}
