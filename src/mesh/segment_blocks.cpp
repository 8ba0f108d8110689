// Eight segments or boxes at a time against a point.
#include <algorithm>

#include "mesh/avx2.h"
#include "mesh/segment_search.h"

namespace undercut {

// The steps of dst_Seg2. A segment without length has a zero for its direction, so that its place
// along the segment is 0 and the point is measured against a.
double near_BlockPlain(const TSgmBlock& block, const T2DVEC& p) {
  double nearest = kAbsent;
  for (uint32_t k = 0; k < kBlock; ++k) {
    const T2DVEC a = {block.ax[k], block.ay[k]}, along = {block.ux[k], block.uy[k]};
    const double s = dot(p - a, along);
    T2DVEC foot = a + s * along;
    if (s > block.length[k]) foot = {block.bx[k], block.by[k]};
    if (s < 0.0) foot = a;
    nearest = std::min(nearest, dst_Sqr(p, foot));
  }
  return nearest;
}

uint32_t reach_BoxesPlain(const TBoxBlock& boxes, const T2DVEC& p, double limit, double* squares) {
  uint32_t reached = 0;
  for (uint32_t k = 0; k < kBlock; ++k) {
    const double x = std::max(std::max(boxes.low_x[k] - p.x, p.x - boxes.high_x[k]), 0.0);
    const double y = std::max(std::max(boxes.low_y[k] - p.y, p.y - boxes.high_y[k]), 0.0);
    squares[k] = x * x + y * y;
    reached |= (squares[k] <= limit ? 1u : 0u) << k;
  }
  return reached;
}

#ifdef UNDERCUT_AVX2

namespace {

// Leaves on purpose: what they called would have to be compiled for the same processor. No product
// is fused with a sum: this target has no such instruction.
[[gnu::target("avx2")]] double near_Avx2(const TSgmBlock& block, const T2DVEC& p) {
  const __m256d px = _mm256_set1_pd(p.x), py = _mm256_set1_pd(p.y);
  __m256d nearest = _mm256_set1_pd(kAbsent);
  for (uint32_t k = 0; k < kBlock; k += 4) {
    const __m256d ax = _mm256_loadu_pd(block.ax + k), ay = _mm256_loadu_pd(block.ay + k);
    const __m256d ux = _mm256_loadu_pd(block.ux + k), uy = _mm256_loadu_pd(block.uy + k);
    const __m256d s = _mm256_add_pd(_mm256_mul_pd(_mm256_sub_pd(px, ax), ux),
                                    _mm256_mul_pd(_mm256_sub_pd(py, ay), uy));
    __m256d x = _mm256_add_pd(ax, _mm256_mul_pd(s, ux));
    __m256d y = _mm256_add_pd(ay, _mm256_mul_pd(s, uy));
    const __m256d beyond = _mm256_cmp_pd(s, _mm256_loadu_pd(block.length + k), _CMP_GT_OQ);
    x = _mm256_blendv_pd(x, _mm256_loadu_pd(block.bx + k), beyond);
    y = _mm256_blendv_pd(y, _mm256_loadu_pd(block.by + k), beyond);
    x = _mm256_sub_pd(px, _mm256_blendv_pd(x, ax, s));  // by the sign of s
    y = _mm256_sub_pd(py, _mm256_blendv_pd(y, ay, s));
    const __m256d square = _mm256_add_pd(_mm256_mul_pd(x, x), _mm256_mul_pd(y, y));
    nearest = _mm256_min_pd(square, nearest);
  }
  const __m128d two =
      _mm_min_pd(_mm256_castpd256_pd128(nearest), _mm256_extractf128_pd(nearest, 1));
  return _mm_cvtsd_f64(_mm_min_sd(two, _mm_unpackhi_pd(two, two)));
}

[[gnu::target("avx2")]] uint32_t reach_Avx2(const TBoxBlock& boxes, const T2DVEC& p, double limit,
                                            double* squares) {
  const __m256d most = _mm256_set1_pd(limit);
  uint32_t reached = 0;
  const __m256d px = _mm256_set1_pd(p.x), py = _mm256_set1_pd(p.y), zero = _mm256_setzero_pd();
  for (uint32_t k = 0; k < kBlock; k += 4) {
    const __m256d left = _mm256_sub_pd(_mm256_loadu_pd(boxes.low_x + k), px);
    const __m256d right = _mm256_sub_pd(px, _mm256_loadu_pd(boxes.high_x + k));
    const __m256d below = _mm256_sub_pd(_mm256_loadu_pd(boxes.low_y + k), py);
    const __m256d above = _mm256_sub_pd(py, _mm256_loadu_pd(boxes.high_y + k));
    const __m256d x = _mm256_max_pd(_mm256_max_pd(left, right), zero);
    const __m256d y = _mm256_max_pd(_mm256_max_pd(below, above), zero);
    const __m256d square = _mm256_add_pd(_mm256_mul_pd(x, x), _mm256_mul_pd(y, y));
    _mm256_storeu_pd(squares + k, square);
    const int bits = _mm256_movemask_pd(_mm256_cmp_pd(square, most, _CMP_LE_OQ));
    reached |= static_cast<uint32_t>(bits) << k;
  }
  return reached;
}

}  // namespace

double near_Block(const TSgmBlock& block, const T2DVEC& p) {
  return has_Avx2() ? near_Avx2(block, p) : near_BlockPlain(block, p);
}

uint32_t reach_Boxes(const TBoxBlock& boxes, const T2DVEC& p, double limit, double* squares) {
  return has_Avx2() ? reach_Avx2(boxes, p, limit, squares)
                    : reach_BoxesPlain(boxes, p, limit, squares);
}

#else

double near_Block(const TSgmBlock& block, const T2DVEC& p) { return near_BlockPlain(block, p); }

uint32_t reach_Boxes(const TBoxBlock& boxes, const T2DVEC& p, double limit, double* squares) {
  return reach_BoxesPlain(boxes, p, limit, squares);
}

#endif

}  // namespace undercut
