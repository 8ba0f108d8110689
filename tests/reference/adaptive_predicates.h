// The first adaptive stages of orient3d, incircle and insphere as published (J. R. Shewchuk, 1997),
// with the splitter as an argument: 2^27 + 1 as intended, or 0 as in a program that never sets it.
#pragma once

#include <vector>

namespace reference {

using Expansion = std::vector<double>;

class AdaptiveStage {
 public:
  explicit AdaptiveStage(double splitter) : splitter_(splitter) {}

  double orient3d(const double* pa, const double* pb, const double* pc, const double* pd) const {
    const double ax = pa[0] - pd[0], ay = pa[1] - pd[1], az = pa[2] - pd[2];
    const double bx = pb[0] - pd[0], by = pb[1] - pd[1], bz = pb[2] - pd[2];
    const double cx = pc[0] - pd[0], cy = pc[1] - pd[1], cz = pc[2] - pd[2];
    const Expansion adet = scale(difference(bx, cy, cx, by), az);
    const Expansion bdet = scale(difference(cx, ay, ax, cy), bz);
    const Expansion cdet = scale(difference(ax, by, bx, ay), cz);
    return estimate(sum(sum(adet, bdet), cdet));
  }

  double incircle(const double* pa, const double* pb, const double* pc, const double* pd) const {
    const double ax = pa[0] - pd[0], ay = pa[1] - pd[1];
    const double bx = pb[0] - pd[0], by = pb[1] - pd[1];
    const double cx = pc[0] - pd[0], cy = pc[1] - pd[1];
    const Expansion bc = difference(bx, cy, cx, by);
    const Expansion adet = sum(scale(scale(bc, ax), ax), scale(scale(bc, ay), ay));
    const Expansion ca = difference(cx, ay, ax, cy);
    const Expansion bdet = sum(scale(scale(ca, bx), bx), scale(scale(ca, by), by));
    const Expansion ab = difference(ax, by, bx, ay);
    const Expansion cdet = sum(scale(scale(ab, cx), cx), scale(scale(ab, cy), cy));
    return estimate(sum(sum(adet, bdet), cdet));
  }

  double insphere(const double* pa, const double* pb, const double* pc, const double* pd,
                  const double* pe) const {
    double a[3], b[3], c[3], d[3];
    for (int k = 0; k < 3; ++k) {
      a[k] = pa[k] - pe[k];
      b[k] = pb[k] - pe[k];
      c[k] = pc[k] - pe[k];
      d[k] = pd[k] - pe[k];
    }
    const Expansion ab = difference(a[0], b[1], b[0], a[1]);
    const Expansion bc = difference(b[0], c[1], c[0], b[1]);
    const Expansion cd = difference(c[0], d[1], d[0], c[1]);
    const Expansion da = difference(d[0], a[1], a[0], d[1]);
    const Expansion ac = difference(a[0], c[1], c[0], a[1]);
    const Expansion bd = difference(b[0], d[1], d[0], b[1]);

    const Expansion bcd = sum(scale(bc, d[2]), sum(scale(cd, b[2]), scale(bd, -c[2])));
    const Expansion adet = sum(sum(scale(scale(bcd, a[0]), -a[0]), scale(scale(bcd, a[1]), -a[1])),
                               scale(scale(bcd, a[2]), -a[2]));
    const Expansion cda = sum(scale(cd, a[2]), sum(scale(da, c[2]), scale(ac, d[2])));
    const Expansion bdet = sum(sum(scale(scale(cda, b[0]), b[0]), scale(scale(cda, b[1]), b[1])),
                               scale(scale(cda, b[2]), b[2]));
    const Expansion dab = sum(scale(da, b[2]), sum(scale(ab, d[2]), scale(bd, a[2])));
    const Expansion cdet = sum(sum(scale(scale(dab, c[0]), -c[0]), scale(scale(dab, c[1]), -c[1])),
                               scale(scale(dab, c[2]), -c[2]));
    const Expansion abc = sum(scale(ab, c[2]), sum(scale(bc, a[2]), scale(ac, -b[2])));
    const Expansion ddet = sum(sum(scale(scale(abc, d[0]), d[0]), scale(scale(abc, d[1]), d[1])),
                               scale(scale(abc, d[2]), d[2]));
    return estimate(sum(sum(adet, bdet), sum(cdet, ddet)));
  }

 private:
  void split(double a, double& high, double& low) const {
    const double c = splitter_ * a;
    const double big = c - a;
    high = c - big;
    low = a - high;
  }

  void two_Product(double a, double b, double& x, double& y) const {
    x = a * b;
    double a_high, a_low, b_high, b_low;
    split(a, a_high, a_low);
    split(b, b_high, b_low);
    const double first = x - a_high * b_high;
    const double second = first - a_low * b_high;
    const double third = second - a_high * b_low;
    y = a_low * b_low - third;
  }

  static void two_Sum(double a, double b, double& x, double& y) {
    x = a + b;
    const double b_virtual = x - a;
    const double a_virtual = x - b_virtual;
    const double b_round = b - b_virtual;
    const double a_round = a - a_virtual;
    y = a_round + b_round;
  }

  static void two_Diff(double a, double b, double& x, double& y) {
    x = a - b;
    const double b_virtual = a - x;
    const double a_virtual = x + b_virtual;
    const double b_round = b_virtual - b;
    const double a_round = a - a_virtual;
    y = a_round + b_round;
  }

  static void fast_Two_Sum(double a, double b, double& x, double& y) {
    x = a + b;
    const double b_virtual = x - a;
    y = b - b_virtual;
  }

  // a b - c d in four terms, zeros kept.
  Expansion difference(double a, double b, double c, double d) const {
    double p1, p0, q1, q0, i, j, rest;
    two_Product(a, b, p1, p0);
    two_Product(c, d, q1, q0);
    Expansion h(4);
    two_Diff(p0, q0, i, h[0]);
    two_Sum(p1, i, j, rest);
    two_Diff(rest, q1, i, h[1]);
    two_Sum(j, i, h[3], h[2]);
    return h;
  }

  Expansion scale(const Expansion& e, double b) const {
    Expansion h;
    double q, tail;
    two_Product(e[0], b, q, tail);
    if (tail != 0) h.push_back(tail);
    for (size_t k = 1; k < e.size(); ++k) {
      double product1, product0, total;
      two_Product(e[k], b, product1, product0);
      two_Sum(q, product0, total, tail);
      if (tail != 0) h.push_back(tail);
      fast_Two_Sum(product1, total, q, tail);
      if (tail != 0) h.push_back(tail);
    }
    if (q != 0 || h.empty()) h.push_back(q);
    return h;
  }

  static Expansion sum(const Expansion& e, const Expansion& f) {
    Expansion h;
    size_t i = 0, k = 0;
    double e_now = e[0], f_now = f[0], q, next, tail;
    const auto step_E = [&] { e_now = ++i < e.size() ? e[i] : 0.0; };
    const auto step_F = [&] { f_now = ++k < f.size() ? f[k] : 0.0; };
    if ((f_now > e_now) == (f_now > -e_now)) {
      q = e_now;
      step_E();
    } else {
      q = f_now;
      step_F();
    }
    if (i < e.size() && k < f.size()) {
      if ((f_now > e_now) == (f_now > -e_now)) {
        fast_Two_Sum(e_now, q, next, tail);
        step_E();
      } else {
        fast_Two_Sum(f_now, q, next, tail);
        step_F();
      }
      q = next;
      if (tail != 0) h.push_back(tail);
      while (i < e.size() && k < f.size()) {
        if ((f_now > e_now) == (f_now > -e_now)) {
          two_Sum(q, e_now, next, tail);
          step_E();
        } else {
          two_Sum(q, f_now, next, tail);
          step_F();
        }
        q = next;
        if (tail != 0) h.push_back(tail);
      }
    }
    for (; i < e.size(); step_E()) {
      two_Sum(q, e_now, next, tail);
      q = next;
      if (tail != 0) h.push_back(tail);
    }
    for (; k < f.size(); step_F()) {
      two_Sum(q, f_now, next, tail);
      q = next;
      if (tail != 0) h.push_back(tail);
    }
    if (q != 0 || h.empty()) h.push_back(q);
    return h;
  }

  static double estimate(const Expansion& e) {
    double q = e[0];
    for (size_t k = 1; k < e.size(); ++k) q += e[k];
    return q;
  }

  double splitter_;
};

}  // namespace reference
