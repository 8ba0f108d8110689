// Prints a hash of every result of a fixed set of calls. Two builds agree when their prints do.
#include <undercut/exports.h>

#include <cinttypes>
#include <cstdio>
#include <numeric>
#include <vector>

#include "bench/requests.h"
#include "tests/support/hash.h"

namespace {

using Hash = undercut::tests::CHash;

template <typename Value>
void set(int32_t (*setter)(const Value*), Value value) {
  setter(&value);
}

void print_Dcm(const char* name, bodies::TBody& body) {
  std::vector<uint32_t> all(body.triangles.size());
  std::iota(all.begin(), all.end(), 0u);
  const auto n = static_cast<uint32_t>(all.size());
  TLstU32 rois[] = {{all.data(), n / 2, n}, {all.data() + n / 2, n - n / 2, n - n / 2}};
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = body.view();
  req.rois = {rois, 2, 2};
  const int32_t status = get_Dcm(&req, &res);
  Hash hash;
  uint32_t regions = 0;
  for (uint32_t i = 0; i < res.uca_t.count; ++i) {
    hash.add_Lists(res.uca_t.data[i]);
    hash.add_List(res.uca_a.data[i]);
    hash.add_List(res.uca_f.data[i]);
    regions += res.uca_t.data[i].count;
  }
  hash.add_List(res.sts);
  for (const TLstU32& roi : rois) hash.add_List(roi);
  std::printf("%-24s status %d, %2u regions, %016" PRIx64 "\n", name, status, regions,
              hash.value());
  clr_Res(&res);
}

void print_Stc(bodies::TBody& body) {
  std::vector<uint32_t> all(body.triangles.size());
  std::iota(all.begin(), all.end(), 0u);
  std::vector<double> values(all.size());
  for (size_t i = 0; i < values.size(); ++i) values[i] = 1.0 / (1.0 + static_cast<double>(i % 97));
  TLstU32 cav = {all.data(), static_cast<uint32_t>(all.size()), static_cast<uint32_t>(all.size())};
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = body.view();
  req.cav = {&cav, 1, 1};
  req.add = values.data();
  const int32_t status = get_Stc(&req, &res);
  Hash hash;
  if (status == 0) hash.add(res.sta, sizeof(TUcStat));
  std::printf("%-24s status %d, %016" PRIx64 "\n", "sums", status, hash.value());
  clr_Res(&res);
}

void print_Hash(const char* name, int32_t status, const void* bytes, size_t size) {
  Hash hash;
  if (status == 0) hash.add(bytes, size);
  std::printf("%-24s status %d, %016" PRIx64 "\n", name, status, hash.value());
}

// Axes, undercut and depth, along three axes and with the ball's lower half as a region.
void print_Undercut(bodies::TBody& body, bodies::TBody& other) {
  std::vector<uint32_t> half(body.triangles.size() / 2);
  std::iota(half.begin(), half.end(), 0u);
  const auto n = static_cast<uint32_t>(half.size());
  TLstU32 cav[] = {{half.data(), n, n}, {nullptr, 0, 0}};
  T3DRAY axes[] = {
      {{0, 0, 0}, {0, 0.25, 1}}, {{0, 0, 0}, {-1, 0.5, 0.125}}, {{0, 0, 0}, {0, 0, 0}}};
  T3DMSH others[] = {other.view()};
  TUcReq req;
  ini_Req(&req);
  req.msh = body.view();
  req.cav = {cav, 2, 2};
  req.axi = {axes, 3};
  req.msh_b = {others, 1};
  req.f_a = 50.0;
  req.f_b = 20.0;
  const auto print = [&](const char* name, int32_t (*computation)(const TUcReq*, TUcRes*),
                         auto bytes, size_t size) {
    TUcRes res;
    ini_Res(&res);
    const int32_t status = computation(&req, &res);
    print_Hash(name, status, bytes(res), size);
    clr_Res(&res);
  };
  const auto frm_a = [](const TUcRes& res) { return &res.frm_a; };
  const auto frm_b = [](const TUcRes& res) { return &res.frm_b; };
  const auto lst = [](const TUcRes& res) { return res.lst; };
  const auto ucs = [](const TUcRes& res) { return res.ucs; };
  const auto dfi = [](const TUcRes& res) { return res.dfi; };
  const size_t n_tri = body.triangles.size();
  print("three axes", get_3ax, frm_a, sizeof(T3DFRM));
  print("three axes, from a start", get_Amo, frm_a, sizeof(T3DFRM));
  print("four axes", get_4ay, lst, 2 * sizeof(T3DFRM));
  print("five axes", get_5ax, frm_b, sizeof(T3DFRM));
  print("five axes, window", get_5ay, lst, 2 * sizeof(T3DFRM));
  print("undercut", get_UCs, ucs, n_tri);
  print("depth", get_dFi, dfi, n_tri * sizeof(double));
  print("depth, shadow of another", get_dFb, dfi, n_tri * sizeof(double));
}

template <typename Lists>
size_t add_Lists(Hash& hash, const Lists& lists) {
  hash.add_Lists(lists);
  return lists.count;
}

// Statistics, rims, points and pieces: each with the number of what is hashed.
void print_Projection(const bodies::TBody& body) {
  bodies::TRequest request(body);
  const auto print = [&](const char* name, int32_t (*computation)(const TUcReq*, TUcRes*),
                         auto add) {
    TUcRes res;
    ini_Res(&res);
    const int32_t status = computation(&request.req, &res);
    Hash hash;
    const size_t count = status == 0 ? add(hash, res) : 0;
    std::printf("%-24s status %d, %zu, %016" PRIx64 "\n", name, status, count, hash.value());
    clr_Res(&res);
  };
  const auto sta = [&](Hash& hash, const TUcRes& res) {
    hash.add(res.sta, request.regions() * sizeof(TUcStat));
    return size_t{request.regions()};
  };
  const auto rma = [](Hash& hash, const TUcRes& res) { return add_Lists(hash, res.rma); };
  const auto com = [](Hash& hash, const TUcRes& res) { return add_Lists(hash, res.com); };
  const auto prj = [](Hash& hash, const TUcRes& res) { return add_Lists(hash, res.prj); };
  const auto nml = [](Hash& hash, const TUcRes& res) { return add_Lists(hash, res.nml); };
  print("surface seen", get_Sta, sta);
  print("rim seen", get_Stb, sta);
  print("rim along edges", get_Rma, rma);
  print("rim by a grid", get_Rmb, rma);
  print("rim of a list by a grid", get_Rmc, rma);
  print("points onto the mesh", get_Prj, prj);
  print("pieces", get_Com, com);
  set<double>(ucs_Eps, 0.2);
  print("pieces, merged", get_Com, com);
  set<double>(ucs_Eps, 0.0);
  print("pieces worth it", flt_Com, com);
  print("inside a curve", get_Sub, com);
  set<uint32_t>(dcm_Con, 3);
  print("directions in ranges", err_Nml, nml);
  set<uint32_t>(dcm_Con, 0);
}

// Lines onto the registered mesh, and what bands of it select.
void print_Registered(const bodies::TBody& body) {
  bodies::TRequest request(body);
  int32_t status = ini_Adt(&request.req.msh);
  Hash points, selected;
  uint32_t met = 0;
  for (int i = 0; i < 500; ++i) {
    const T3DRAY line = {{0.1 * (i - 250), 3.0, 1.0}, {0.01 * i, 1.0, 0.3 - 0.001 * i}};
    T3DVEC point;
    met += det_Prj(&line, &point) == 0;
    points.add(&point, sizeof point);
  }
  std::printf("%-24s status %d, %u, %016" PRIx64 "\n", "lines onto the mesh", status, met,
              points.value());
  status = det_Roi(&request.req);
  TLstU32 roi = {};
  get_Roi(&roi);
  selected.add_List(roi);
  std::printf("%-24s status %d, %u, %016" PRIx64 "\n", "triangles in bands", status, roi.count,
              selected.value());
  clr_Dll();
}

}  // namespace

int main() {
  bodies::TBody ring = bodies::make_Ring(8000), ball = bodies::make_Ball(6000);
  print_Stc(ring);
  print_Undercut(ball, ring);
  print_Projection(ball);
  print_Registered(ball);
  set<uint32_t>(dcm_Con, 3);
  print_Dcm("ring", ring);
  print_Dcm("ball", ball);
  set<uint8_t>(dcm_ini, 0);
  print_Dcm("ring, axes free", ring);
  print_Dcm("ball, axes free", ball);
  set<uint8_t>(dcm_5ax, 0);
  print_Dcm("ring, four axes", ring);
  set<uint8_t>(dcm_ini, 1);
  print_Dcm("ball, four axes", ball);
  set<uint8_t>(dcm_5ax, 1);
  set<uint32_t>(dcm_Con, 0);
  set<double>(dcm_win, 30.0);
  print_Dcm("ring, one band", ring);
  dcm_srt("srf");
  set<double>(dcm_Lg1, 0.5);
  set<int32_t>(dcm_Cnt, 0);
  print_Dcm("ball, by area", ball);
  return 0;
}
