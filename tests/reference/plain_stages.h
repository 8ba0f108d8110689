// The stages of a pass written down step by step: whether and how much a region wants a triangle,
// growth, deletion, ranking and balancing. Candidates and ranks are plain maps that are searched
// from end to end for the least, a fan is a list and a set. Moves and rays are the library's, which
// have plain forms of their own.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <vector>

#include "decomposition/seeds.h"
#include "interface/parameters.h"
#include "mesh/trees.h"
#include "tests/reference/plain_measures.h"
#include "tests/reference/plain_sort.h"

namespace reference {

// A step that fails ends the stage.
struct TPlainFailure {};
inline void must(bool ok) {
  if (!ok) throw TPlainFailure();
}

// The lesser eigenvalue is b.
inline bool plain_Eigen(double m00, double m01, double m10, double m11, double& a, double& b) {
  const double t = -(m00 + m11);
  const double d = t * t / 4 - (m00 * m11 - m10 * m01);
  if (d < 0) return false;
  const float root = std::sqrt(float(d));
  a = -t / 2 + double(root);
  b = -t / 2 - double(root);
  return true;
}
inline void plain_Axes(double l1, double l2, double& a, double& b) {
  const double q = 1.2732395447351628;
  a = std::pow(q * q * l1 * l1 * l1 / l2, 0.125);
  b = std::pow(q * q * l2 * l2 * l2 / l1, 0.125);
}

class CPlainStages {
 public:
  CPlainStages(CMap& where, const C3DTriAABBTree& boxes, const CDcmPar& parameters)
      : map(where), tree(boxes), par(parameters) {}

  CMap& map;
  const C3DTriAABBTree& tree;
  const CDcmPar& par;
  double lift = 0.001;
  std::map<int32_t, std::map<uint32_t, double>> wishes;  // of each region: triangle and cost
  std::map<int32_t, double> ranks;
  uint64_t steps = 0, turns = 0;
  uint64_t turn_limit = 0;  // of balancing; 0 stands for that of the library
  uint64_t guarded = 0;     // circles that the guard has broken

  // ---- Is the triangle acceptable?
  // ---------------------------------------------------------------

  T3DVEC axis_With(const CUcA& r, const T3DVEC& n) const {
    const double N = r.count;
    return plain_Unit(
        plain_Blend(1 / (N + 1), plain_Axis(map, r, n), N / (N + 1), r.measures.axis));
  }

  static bool coincide(const T3DFAC& f) { return f.a == f.b || f.a == f.c || f.b == f.c; }

  bool test(const CUcA& r, uint32_t u) const {
    const T3DFAC f = get_Fac(map.msh, u);
    if (coincide(f)) return false;
    const T3DVEC n = plain_Unit(cross(f.b - f.a, f.c - f.a));
    if (ang_Vec(n, plain_Unit(r.measures.normal)) > par.T_win) return false;
    const T3DVEC a = axis_With(r, n);
    T3DVEC p = cen_Tri(f);
    if (lift > 0) p = {p.x + lift * n.x, p.y + lift * n.y, p.z + lift * n.z};
    if (!tree.AnyHit({p, a})) return true;
    const double fuzz = par.f_fuz;
    if (!(fuzz > 0)) return false;
    const double g = ang_Vec(n, a);
    T3DVEC u_dir = n;
    if (g > par.w_nul && g < 180 - par.w_nul) {
      const double d = n.x * a.x + n.y * a.y + n.z * a.z;
      u_dir = plain_Unit({n.x - d * a.x, n.y - d * a.y, n.z - d * a.z});
      if (u_dir.x * n.x + u_dir.y * n.y + u_dir.z * n.z < 0) u_dir = {-u_dir.x, -u_dir.y, -u_dir.z};
    }
    p = {p.x + fuzz * u_dir.x, p.y + fuzz * u_dir.y, p.z + fuzz * u_dir.z};
    return !tree.AnyHit({p, a});
  }

  // ---- How much is it wanted?
  // --------------------------------------------------------------------

  double normal_Measure(const CUcA& r, const T3DFAC& f) const {
    must(par.T_win > 0 && par.T_win < 180);
    double g = ang_Vec(nml_Tri(f), plain_Unit(r.measures.normal));
    if (g < 0) g = 0;
    if (g > par.T_win) g = par.T_win;
    return 1 - g / par.T_win;
  }

  double axis_Measure(const CUcA& r, const T3DFAC& f) const {
    const T3DVEC a = axis_With(r, nml_Tri(f)), c = cen_Tri(f);
    const T3DFAC flat = {plain_Onto(f.a, a, c), plain_Onto(f.b, a, c), plain_Onto(f.c, a, c)};
    return area_Tri(flat) / area_Tri(f);
  }

  static uint32_t vertex(const T3DTRI& t, int k) {
    const uint32_t v[] = {t.a, t.b, t.c};
    return v[k % 3];
  }

  // Round the pivot from the edge `slot` of t; what is met joins the fan.
  void walk(std::vector<uint32_t>& fan, uint32_t t, int slot, uint32_t pivot, uint32_t last,
            int32_t id) const {
    int32_t next = map.slots[t][slot];
    while (next != -1 && map.region_of[next] != id && map.region_of[next] != -1) {
      must(fan.size() < map.msh.n_tri);
      fan.push_back(uint32_t(next));
      const T3DTRI& tri = map.msh.tri[next];
      int found = -1;
      for (int k = 0; k < 3 && found < 0; ++k) {
        const uint32_t from = vertex(tri, k), to = vertex(tri, k + 1);
        if (from == pivot && to != last) {
          found = k;
          last = to;
        } else if (to == pivot && from != last) {
          found = k;
          last = from;
        }
      }
      if (found < 0) return;
      next = map.slots[next][found];
    }
  }

  std::vector<uint32_t> fan_Of(uint32_t u, int32_t id) const {
    must(map.region_of[u] != id);
    std::vector<uint32_t> fan = {u};
    int touching = 0, k = -1;
    for (int slot = 0; slot < 3; ++slot)
      if (map.slots[u][slot] != -1 && map.region_of[map.slots[u][slot]] == id) ++touching, k = slot;
    must(touching > 0);
    if (touching > 1) return fan;
    const T3DTRI& tri = map.msh.tri[u];
    const uint32_t P = vertex(tri, k), Q = vertex(tri, k + 1), O = vertex(tri, k + 2);
    walk(fan, u, (k + 2) % 3, P, O, id);
    walk(fan, u, (k + 1) % 3, Q, O, id);
    return fan;
  }

  double border_Measure(const CUcA& r, uint32_t u) const {
    const std::vector<uint32_t> fan = fan_Of(u, r.id);
    const std::set<uint32_t> marked(fan.begin(), fan.end());
    double shared = 0, other = 0;
    for (const uint32_t t : fan)
      for (int k = 0; k < 3; ++k) {
        const int32_t nb = map.slots[t][k];
        if (nb == -1 || marked.count(uint32_t(nb))) continue;
        const T3DTRI& tri = map.msh.tri[t];
        const double edge = dst(map.msh.vtx[vertex(tri, k)], map.msh.vtx[vertex(tri, k + 1)]);
        if (map.region_of[nb] == r.id)
          shared += edge;
        else
          other += edge;
      }
    return shared / (shared + other);
  }

  double shape_Measure(const CUcA& r, const T3DFAC& f) const {
    const T3DFAC l = to_Local(r.measures.normal_frame, f);
    TUcPlane own;
    mom_Tri(l, own);
    const TUcPlane& p = r.measures.plane;
    const double xx = p.sxx + own.sxx, yy = p.syy + own.syy, xy = p.sxy + own.sxy;
    const double A = r.measures.normal_area, s = plain_Signed(l);
    const double gx = (l.a.x + l.b.x + l.c.x) / 3, gy = (l.a.y + l.b.y + l.c.y) / 3;
    const double mx = (A / (A + s)) * p.centre.x + (s / (A + s)) * gx;
    const double my = (A / (A + s)) * p.centre.y + (s / (A + s)) * gy;
    const double cxx = xx - (A + s) * mx * mx, cyy = yy - (A + s) * my * my;
    const double cxy = xy - (A + s) * mx * my;
    double l1 = 0, l2 = 0, a, b;
    must(plain_Eigen(cyy, -cxy, -cxy, cxx, l1, l2));
    must(!(l1 < 0) && !(l2 < 0));
    plain_Axes(l1, l2, a, b);
    must(a > 0 && b > 0);
    return a < b ? a / b : b / a;
  }

  double cost(const CUcA& r, uint32_t u) const {
    const T3DFAC f = get_Fac(map.msh, u);
    const double e0 = normal_Measure(r, f), e1 = axis_Measure(r, f), e2 = border_Measure(r, u);
    const double e3 = shape_Measure(r, f), e4 = map.region_of[u] == 0 ? 1.0 : 0.0;
    for (const double e : {e0, e1, e2, e3, e4}) must(e >= 0 && e <= 1);
    const double sum =
        par.T_gw0 * e0 + par.T_gw1 * e1 + par.T_gw2 * e2 + par.T_gw3 * e3 + par.T_gw4 * e4;
    must(!std::isnan(sum));
    return -sum;
  }

  // ---- Candidates
  // --------------------------------------------------------------------------------

  bool has(int32_t id, uint32_t u) { return wishes[id].count(u) != 0; }
  void want(const CUcA& r, uint32_t u) {
    if (test(r, u)) wishes[r.id][u] = cost(r, u);
  }
  // Takes the cheapest out, of equal ones that of the lower index; false if there is none.
  bool take_Best(int32_t id, uint32_t& u) {
    std::map<uint32_t, double>& all = wishes[id];
    if (all.empty()) return false;
    u = all.begin()->first;
    for (const auto& [triangle, price] : all)
      if (price < all[u]) u = triangle;
    all.erase(u);
    return true;
  }

  // ---- Growth
  // ------------------------------------------------------------------------------------

  void plant(CUcA& r, uint32_t t, int32_t band) const {
    const T3DFAC f = get_Fac(map.msh, t);
    const T3DVEC c = cen_Tri(f), n = nml_Tri(f);
    TUcMeasures& m = r.measures;
    m.area = m.normal_area = area_Tri(f);
    m.centroid = c;
    m.normal = n;
    m.normal_frame = frm_Ray({c, n});
    r.band = uint32_t(band);
    m.polar_low = map.bands[size_t(band)].low;
    m.polar_high = map.bands[size_t(band)].high;
    double p = car_ToSph(n).x, az = car_ToSph(n).y;
    if (!map.b_5ax) {
      const double w1 = map.w_4ax - 90 < 0 ? map.w_4ax - 90 + 360 : map.w_4ax - 90;
      const double w2 = map.w_4ax - 270 < 0 ? map.w_4ax - 270 + 360 : map.w_4ax - 270;
      az = std::abs(az - w1) > std::abs(az - w2) ? w2 : w1;
    }
    if (p < m.polar_low) p = m.polar_low;
    if (p > m.polar_high) p = m.polar_high;
    r.polar0 = p;
    r.azimuth0 = az;
    m.axis = sph_ToCar(p, az);
    m.axis_frame = frm_Ray({c, m.axis});
    const T3DFAC g = {plain_Onto(f.a, m.axis, c), plain_Onto(f.b, m.axis, c),
                      plain_Onto(f.c, m.axis, c)};
    m.axis_area = area_Tri(g);
    m.axis_perimeter = dst(g.a, g.b) + dst(g.b, g.c) + dst(g.c, g.a);
    m.perimeter = m.normal_perimeter = dst(f.a, f.b) + dst(f.b, f.c) + dst(f.c, f.a);
    m.axis_ratio = m.axis_area / m.area;
    mom_Tri(to_Local(m.normal_frame, f), m.plane);
  }

  // False once region 0 is empty.
  bool seed(int32_t id, uint32_t t, int32_t band) {
    CUcA* r = new CUcA(id);
    must(map.add_Uca(r));
    plant(*r, t, band);
    TUcMove move;
    TUcMoved moved;
    must(map.classify_Move(t, id, move) && map.apply_Move(t, id, moved));
    if (moved.source == 'r') return false;
    for (size_t k = 1; k < 4; ++k) {
      if (move.triangles[k] == -1 || move.to_flags[k] == '?') continue;
      must(move.to_flags[k] == '+' && !has(id, uint32_t(move.triangles[k])));
      want(*r, uint32_t(move.triangles[k]));
    }
    uint32_t u;
    while (take_Best(id, u))
      if (map.region_of[u] == 0 && test(*r, u)) join(*r, u);
    return true;
  }

  void join(CUcA& r, uint32_t u) {
    TUcMove move;
    TUcMoved moved;
    must(map.classify_Move(u, r.id, move) && map.apply_Move(u, r.id, moved));
    for (size_t k = 1; k < 4; ++k) {
      if (move.triangles[k] == -1) continue;
      const uint32_t nb = uint32_t(move.triangles[k]);
      const char flag = move.to_flags[k];
      if (flag == '+' && !has(r.id, nb) && map.region_of[nb] == 0) want(r, nb);
      if (flag == '-' || flag == 'u') wishes[r.id].erase(nb);
      if (flag == 'u' && map.region_of[nb] == 0) want(r, nb);
    }
    must(!coincide(get_Fac(map.msh, u)));
    r.measures = plain_Update(map, r, u, 1);
    ++steps;
  }

  void grow(const std::vector<uint32_t>& roi, const std::vector<TUcSeed>& seeds) {
    wishes.clear();
    int32_t next = map.max_Id() + 1;
    for (const TUcSeed& record : seeds) {
      if (record.key == 0) return;
      const uint32_t t = roi[record.index];
      if (map.region_of[t] != 0) continue;
      if (!seed(next, t, record.band)) return;
      ++next;
    }
  }

  // ---- Deletion
  // ----------------------------------------------------------------------------------

  double score(const CUcA& r) const {
    if (!std::strcmp(par.F_srt, "srf")) return r.measures.area;
    const TUcPlane& p = r.measures.plane;
    double l1 = 0, l2 = 0, a, b;
    must(plain_Eigen(p.cyy, -p.cxy, -p.cxy, p.cxx, l1, l2));
    plain_Axes(l1, l2, a, b);
    const double A = 2 * a, B = 2 * b;
    must(A + B > 0);
    double K = std::floor((A < B ? A : B) / par.F_fae);
    if (!(K >= -2147483648.0 && K <= 2147483647.0)) K = -2147483648.0;
    return K * (A + B - (K + 1) * par.F_fae) / (A + B);
  }

  void remove_Small() {
    must(!std::strcmp(par.F_srt, "srf") || !std::strcmp(par.F_srt, "len"));
    struct TScored {
      double key;
      CUcA* region;
    };
    std::vector<TUcRef> refs;
    must(map.get_Ucs(refs, false));
    std::vector<TScored> scored;
    for (const TUcRef& ref : refs)
      if (ref.id != 0 && !ref.region->fixed) scored.push_back({score(*ref.region), ref.region});
    plain_Sort(scored.data(), 0, int64_t(scored.size()) - 1,
               [](const TScored& s) { return s.key; });
    const double limit = std::strcmp(par.F_srt, "srf") ? par.F_quo : par.F_srf;
    for (int64_t j = 0; j < int64_t(scored.size()); ++j) {
      const TScored& s = scored[scored.size() - 1 - size_t(j)];
      const bool stays = s.key > limit && (par.F_cnt < 1 || j < par.F_cnt);
      while (!stays && s.region->head != -1) {
        const uint32_t t = uint32_t(s.region->head);
        map.del_Tri(t, s.region);
        map.add_Tri(t, map.get_Uca(0));
        map.region_of[t] = 0;
      }
      if (stays) continue;
      map.del_Uca(s.region);
      delete s.region;
    }
  }

  // ---- Ranking
  // -----------------------------------------------------------------------------------

  double rank_Of(const CUcA& r) const {
    const double A = r.measures.area, P = r.measures.perimeter;
    const double s = 1 - A / map.roi_area;
    const double R = std::sqrt(A / 3.141592653589793);
    const double h = 1 - 6.283185307179586 * R / P;
    return -(par.L_gw0 * s + par.L_gw1 * h);
  }

  void enqueue(CUcA& r) {
    const double rank = rank_Of(r);
    must(!std::isnan(rank));
    ranks[r.id] = r.rank = rank;
  }

  void rank_All() {
    ranks.clear();
    wishes.clear();
    std::vector<TUcRef> refs;
    must(map.get_Ucs(refs, false));
    for (const TUcRef& ref : refs) {
      CUcA& r = *ref.region;
      r.boundary.clear();
      if (ref.id == 0 || r.fixed) continue;
      for (int32_t t = r.head; t != -1; t = map.next[t])
        for (uint32_t j = 0; j < map.neighbours.counts[t]; ++j)
          if (map.region_of[map.neighbours.lists[t][j]] != r.id)
            r.boundary.insert(map.neighbours.lists[t][j]);
      for (const uint32_t u : r.boundary) want(r, u);
      enqueue(r);
    }
  }

  // ---- Balancing
  // ---------------------------------------------------------------------------------

  struct TWatch {
    int32_t from = -1, to = -1;
    bool turned = false;
    std::set<uint32_t> moved;
  };

  // What a region wants of what another holds is forgotten.
  void forget(int32_t id, int32_t held) {
    std::map<uint32_t, double> left;
    for (const auto& [u, price] : wishes[id])
      if (map.region_of[u] != held) left[u] = price;
    wishes[id] = left;
  }

  // False if the pair runs in a circle.
  bool note(TWatch& g, int32_t f, int32_t id, uint32_t u) {
    if (g.from == f && g.to == id && !g.turned) {
      g.moved.insert(u);
      return true;
    }
    if (g.from == f && g.to == id && g.moved.empty()) return false;
    if (g.from == id && g.to == f) {
      if (g.moved.count(u))
        g.moved.erase(u);
      else
        g.moved.insert(u);
      g.turned = true;
      return true;
    }
    g = {f, id, false, {u}};
    return true;
  }

  void renew(CUcA* r, uint32_t u, char flag) {
    if (!r || r->id == 0) return;
    if (flag == '+' && !has(r->id, u) && !map.get_Lck(u)) want(*r, u);
    if (flag == '-' || flag == 'u') wishes[r->id].erase(u);
    if (flag == 'u' && !map.get_Lck(u)) want(*r, u);
  }

  void transfer(CUcA& r, uint32_t u) {
    const int32_t f = map.region_of[u];
    if (f > 0 && map.get_Uca(f)->count == 1) must(ranks.erase(f) == 1);
    TUcMove move;
    TUcMoved moved;
    must(map.classify_Move(u, r.id, move) && map.apply_Move(u, r.id, moved));
    must(!coincide(get_Fac(map.msh, u)));
    r.measures = plain_Update(map, r, u, 1);
    enqueue(r);
    CUcA* y = map.get_Uca(f);
    if (y && f > 0) {
      must(ranks.erase(f) == 1);
      y->measures = plain_Update(map, *y, u, -1);
      enqueue(*y);
    }
    for (size_t k = 0; k < 4; ++k) {
      if (move.triangles[k] == -1) continue;
      renew(y, uint32_t(move.triangles[k]), move.from_flags[k]);
      renew(&r, uint32_t(move.triangles[k]), move.to_flags[k]);
    }
    ++steps;
  }

  // The acceptable candidate of least cost.
  bool choose(const CUcA& r, uint32_t& u) {
    while (take_Best(r.id, u))
      if (!map.get_Lck(u) && test(r, u)) return true;
    return false;
  }

  void balance() {
    TWatch guard;
    steps = turns = guarded = 0;
    const uint64_t limit = turn_limit ? turn_limit : 1000000 + uint64_t(200) * map.msh.n_tri;
    while (!ranks.empty()) {
      must(turns++ < limit);
      int32_t id = ranks.begin()->first;
      for (const auto& [other, rank] : ranks)
        if (rank < ranks[id]) id = other;
      const double rank = ranks[id];
      ranks.erase(id);
      CUcA& r = *map.get_Uca(id);
      must(rank == r.rank);
      uint32_t u;
      if (!choose(r, u)) {
        for (int32_t t = r.head; t != -1; t = map.next[t]) map.set_Lck(uint32_t(t));
        continue;
      }
      const int32_t f = map.region_of[u];
      must(f != id);
      if (f == -1) {
        ranks[id] = rank;
      } else if (note(guard, f, id, u)) {
        transfer(r, u);
      } else {
        if (f > 0) forget(f, id);
        forget(id, f);
        ranks[id] = rank;
        guard = {};
        ++guarded;
      }
    }
  }
};

}  // namespace reference
