// Plain determinants and, where one of orient3d, incircle or insphere is exactly zero, the sum of
// the first adaptive stage. Method: J. R. Shewchuk, Adaptive Precision Floating-Point Arithmetic
// and Fast Robust Geometric Predicates, Discrete & Computational Geometry 18, 1997.
//
// Departure: the splitter and the error bounds of the paper are zero here. So a product has no
// tail, the expansion of a difference of two products has two terms instead of four, and no later
// stage is ever reached. The order of operations is the paper's, and every answer hangs on it. A
// determinant that is not a number is returned as it is.
#include "foundation/predicates.h"

#include "foundation/values.h"

namespace undercut {

namespace {

struct TSum {
  double sum, tail;
};

// Terms in the order of rising magnitude; at least one, and a zero only where it stands alone or in
// a difference of products.
template <int N>
struct TExpansion {
  double term[N];
  int count = 0;

  void add(double v) { term[count++] = v; }
  void add_Tail(double tail) {
    if (tail != 0.0) add(tail);
  }
  void add_Head(double head) {
    if (head != 0.0 || count == 0) add(head);
  }
};

// Needs |a| >= |b| to be exact; where that fails, its error is part of the answer.
TSum fast_two_sum(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

TSum two_sum(double a, double b) {
  const double sum = a + b;
  const double b_virtual = sum - a;
  const double a_virtual = sum - b_virtual;
  return {sum, (a - a_virtual) + (b - b_virtual)};
}

// a b - c d, each product rounded.
TExpansion<2> diff_Products(double a, double b, double c, double d) {
  const TSum s = two_sum(a * b, -(c * d));
  return {{s.tail, s.sum}, 2};
}

template <int N, int M>
TExpansion<N + M> fast_expansion_sum_zeroelim(const TExpansion<N>& e, const TExpansion<M>& f) {
  TExpansion<N + M> h;
  int i = 0, k = 0;
  const auto take_Smaller = [&] {
    const bool first =
        k == f.count || (i < e.count && (f.term[k] > e.term[i]) == (f.term[k] > -e.term[i]));
    return first ? e.term[i++] : f.term[k++];
  };
  double q = take_Smaller();
  bool fast = i < e.count && k < f.count;
  while (i < e.count || k < f.count) {
    const double term = take_Smaller();
    const TSum s = fast ? fast_two_sum(term, q) : two_sum(q, term);
    fast = false;
    q = s.sum;
    h.add_Tail(s.tail);
  }
  h.add_Head(q);
  return h;
}

template <int N>
TExpansion<N> scale_expansion_zeroelim(const TExpansion<N>& e, double b) {
  TExpansion<N> h;
  double q = e.term[0] * b;
  for (int i = 1; i < e.count; ++i) {
    const TSum s = fast_two_sum(e.term[i] * b, q);
    q = s.sum;
    h.add_Tail(s.tail);
  }
  h.add_Head(q);
  return h;
}

template <int N>
double estimate(const TExpansion<N>& e) {
  double q = e.term[0];
  for (int i = 1; i < e.count; ++i) q += e.term[i];
  return q;
}

T2DVEC diff_2(const double* p, const double* q) { return {p[0] - q[0], p[1] - q[1]}; }
T3DVEC diff_3(const double* p, const double* q) { return {p[0] - q[0], p[1] - q[1], p[2] - q[2]}; }

// The first stage of orient3d, of the differences to pd.
double sum_Orient(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
  const auto det_a = scale_expansion_zeroelim(diff_Products(b.x, c.y, c.x, b.y), a.z);
  const auto det_b = scale_expansion_zeroelim(diff_Products(c.x, a.y, a.x, c.y), b.z);
  const auto det_c = scale_expansion_zeroelim(diff_Products(a.x, b.y, b.x, a.y), c.z);
  const auto det_ab = fast_expansion_sum_zeroelim(det_a, det_b);
  return estimate(fast_expansion_sum_zeroelim(det_ab, det_c));
}

// (x x + y y) minor
TExpansion<4> lift_Minor(const TExpansion<2>& minor, const T2DVEC& p) {
  const auto xx = scale_expansion_zeroelim(scale_expansion_zeroelim(minor, p.x), p.x);
  const auto yy = scale_expansion_zeroelim(scale_expansion_zeroelim(minor, p.y), p.y);
  return fast_expansion_sum_zeroelim(xx, yy);
}

// The first stage of incircle, of the differences to pd.
double sum_Circle(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c) {
  const auto det_a = lift_Minor(diff_Products(b.x, c.y, c.x, b.y), a);
  const auto det_b = lift_Minor(diff_Products(c.x, a.y, a.x, c.y), b);
  const auto det_c = lift_Minor(diff_Products(a.x, b.y, b.x, a.y), c);
  const auto det_ab = fast_expansion_sum_zeroelim(det_a, det_b);
  return estimate(fast_expansion_sum_zeroelim(det_ab, det_c));
}

// A minor and its factor in a 3x3 determinant.
struct TCofactor {
  TExpansion<2> minor;
  double factor;
};

// sign (x x + y y + z z) times the determinant that three cofactors make.
TExpansion<18> lift_Minor(const TCofactor& first, const TCofactor& second, const TCofactor& third,
                          const T3DVEC& p, double sign) {
  const auto det = fast_expansion_sum_zeroelim(
      scale_expansion_zeroelim(third.minor, third.factor),
      fast_expansion_sum_zeroelim(scale_expansion_zeroelim(first.minor, first.factor),
                                  scale_expansion_zeroelim(second.minor, second.factor)));
  const auto xx = scale_expansion_zeroelim(scale_expansion_zeroelim(det, p.x), sign * p.x);
  const auto yy = scale_expansion_zeroelim(scale_expansion_zeroelim(det, p.y), sign * p.y);
  const auto zz = scale_expansion_zeroelim(scale_expansion_zeroelim(det, p.z), sign * p.z);
  return fast_expansion_sum_zeroelim(fast_expansion_sum_zeroelim(xx, yy), zz);
}

// The first stage of insphere, of the differences to pe.
double sum_Sphere(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c, const T3DVEC& d) {
  const auto ab = diff_Products(a.x, b.y, b.x, a.y);
  const auto bc = diff_Products(b.x, c.y, c.x, b.y);
  const auto cd = diff_Products(c.x, d.y, d.x, c.y);
  const auto da = diff_Products(d.x, a.y, a.x, d.y);
  const auto ac = diff_Products(a.x, c.y, c.x, a.y);
  const auto bd = diff_Products(b.x, d.y, d.x, b.y);
  const auto det_a = lift_Minor({cd, b.z}, {bd, -c.z}, {bc, d.z}, a, -1.0);
  const auto det_b = lift_Minor({da, c.z}, {ac, d.z}, {cd, a.z}, b, 1.0);
  const auto det_c = lift_Minor({ab, d.z}, {bd, a.z}, {da, b.z}, c, -1.0);
  const auto det_d = lift_Minor({bc, a.z}, {ac, -b.z}, {ab, c.z}, d, 1.0);
  const auto det_ab = fast_expansion_sum_zeroelim(det_a, det_b);
  const auto det_cd = fast_expansion_sum_zeroelim(det_c, det_d);
  return estimate(fast_expansion_sum_zeroelim(det_ab, det_cd));
}

}  // namespace

double orient2d(const double pa[2], const double pb[2], const double pc[2]) {
  return (pa[0] - pc[0]) * (pb[1] - pc[1]) - (pa[1] - pc[1]) * (pb[0] - pc[0]);
}

double orient3d(const double pa[3], const double pb[3], const double pc[3], const double pd[3]) {
  const T3DVEC a = diff_3(pa, pd), b = diff_3(pb, pd), c = diff_3(pc, pd);
  const double det =
      a.z * (b.x * c.y - c.x * b.y) + b.z * (c.x * a.y - a.x * c.y) + c.z * (a.x * b.y - b.x * a.y);
  return det != 0.0 ? det : sum_Orient(a, b, c);
}

double incircle(const double pa[2], const double pb[2], const double pc[2], const double pd[2]) {
  const T2DVEC a = diff_2(pa, pd), b = diff_2(pb, pd), c = diff_2(pc, pd);
  const double det = dot(a, a) * (b.x * c.y - c.x * b.y) + dot(b, b) * (c.x * a.y - a.x * c.y) +
                     dot(c, c) * (a.x * b.y - b.x * a.y);
  return det != 0.0 ? det : sum_Circle(a, b, c);
}

double insphere(const double pa[3], const double pb[3], const double pc[3], const double pd[3],
                const double pe[3]) {
  const T3DVEC a = diff_3(pa, pe), b = diff_3(pb, pe), c = diff_3(pc, pe), d = diff_3(pd, pe);
  const double ab = a.x * b.y - b.x * a.y;
  const double bc = b.x * c.y - c.x * b.y;
  const double cd = c.x * d.y - d.x * c.y;
  const double da = d.x * a.y - a.x * d.y;
  const double ac = a.x * c.y - c.x * a.y;
  const double bd = b.x * d.y - d.x * b.y;
  const double abc = a.z * bc - b.z * ac + c.z * ab;
  const double bcd = b.z * cd - c.z * bd + d.z * bc;
  const double cda = c.z * da + d.z * ac + a.z * cd;
  const double dab = d.z * ab + a.z * bd + b.z * da;
  const double det = (dot(d, d) * abc - dot(c, c) * dab) + (dot(b, b) * cda - dot(a, a) * bcd);
  return det != 0.0 ? det : sum_Sphere(a, b, c, d);
}

}  // namespace undercut
