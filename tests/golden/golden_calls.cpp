#include "tests/golden/golden_calls.h"

namespace undercut::tests {

using defaults::set;

// Tells a mesh that was read or made differently from a result that differs.
void CGoldenCalls::add_Input() {
  CHash hash;
  hash.add_Array(scene_.soup.vtx.data(), scene_.soup.vtx.size());
  hash.add_Array(scene_.soup.tri.data(), scene_.soup.tri.size());
  lines_.push_back({"input", 0, hash.value()});
}

void CGoldenCalls::call_UCs() {
  call("ucs-one", request(one_), get_UCs, add_Ucs);
  call("ucs-three", request(three_), get_UCs, add_Ucs);
  call("ucs-round", request(axes_Round()), get_UCs, add_Ucs);
  call("ucs-along", request(along_), get_UCs, add_Ucs);
  TUcReq req = request(three_);
  req.roi = view_Lst(scene_.octants[5]);
  call("ucs-roi", req, get_UCs, add_Ucs);
  req.roi = view_Lst(scene_.alternate);
  call("ucs-roi-alternate", req, get_UCs, add_Ucs);
  req = request(one_);
  set(ucs_Dil, scene_.size * 1e-4);
  call("ucs-grown", req, get_UCs, add_Ucs);
  req.roi = view_Lst(scene_.octants[2]);
  call("ucs-grown-roi", req, get_UCs, add_Ucs);
  req = request(make_Axes({{0, 0, -1}}));
  set(ucs_Tol, 0.0);
  call("ucs-no-lift", req, get_UCs, add_Ucs);
  set(ucs_Tol, 0.05);
  call("ucs-high-lift", req, get_UCs, add_Ucs);
}

// Searches over the whole mesh.
void CGoldenCalls::call_Searches() {
  TUcReq req = request();
  const auto shorten = [&] {
    if (scene_.is_Small()) return;
    set(nxn_Dxx, 90.0);
    set(nxn_Dyy, 90.0);
    set(amo_Max, scene_.is_Large() ? 2u : 10u);
  };
  shorten();
  call("three-axes", req, get_3ax, add_FrmA);
  set(err_Gew, 1.0);
  if (!scene_.is_Large()) call("three-axes-start", req, get_Amo, add_FrmA);
  req = request();
  shorten();
  if (!scene_.is_Large()) call("five-axes", req, get_5ax, add_FrmB);
  req.roi = view_Lst(scene_.patches[1]);
  call("five-axes-roi", req, get_5ax, add_FrmB);
}

void CGoldenCalls::call_RegionSearches() {
  TUcReq req = request();
  req.cav = scene_.view_Regions(scene_.spots);
  set(gcu_Phi, 30.0);
  call("four-axes", req, get_4ay, add_Lst);
  set(gcu_Flg, 1);
  set(gcu_Win, 10.0);
  set(err_Gew, 0.5);
  call("four-axes-step", req, get_4ay, add_Lst);
  set(nxn_Box, defaults::TBox{{20, 30, 120, 200}});
  call("five-axes-window", req, get_5ay, add_Lst);
  set(nxn_Box, defaults::TBox{{0, 0, 180, 360}});
  set(amo_Dxy, 0.001);
  call("five-axes-sphere", req, get_5ay, add_Lst);
}

// What closed curves cut out, alone and as an area of other computations.
void CGoldenCalls::call_Curves() {
  TUcReq req = request();
  static constexpr const char* kNames[] = {"inside-0", "inside-1", "inside-2", "inside-3"};
  for (uint32_t k = 0; k < 4; ++k) {
    req.arg = scene_.curves[k].view();
    call(kNames[k], req, get_Sub, add_Com);
    if (lines_.back().status == 0 && curve_.count == 0) curve_ = req.arg;
  }
  if (!scene_.is_Large()) {
    req.arg = curve_;
    set(nxn_Dxx, 90.0);
    set(nxn_Dyy, 90.0);
    call("five-axes-inside", req, get_5ax, add_FrmB);
  }
  req = request(one_);
  req.arg = curve_;
  call("depth-inside", req, get_dFi, add_Dfi);
}

void CGoldenCalls::call_Depths() {
  call("depth-one", request(one_), get_dFi, add_Dfi);
  call("depth-three", request(three_), get_dFi, add_Dfi);
  call("depth-joint", request(one_), get_dFb, add_Dfi);
  TUcReq req = request(three_);
  req.roi = view_Lst(scene_.octants[6]);
  call("depth-roi", req, get_dFi, add_Dfi);
  call("depth-joint-roi", req, get_dFb, add_Dfi);
  if (scene_.is_Large()) return;
  call("depth-along", request(along_), get_dFi, add_Dfi);
  call("depth-joint-three", request(three_), get_dFb, add_Dfi);
  req = request(one_);
  set(ucs_Dil, scene_.size * 1e-4);
  call("depth-grown", req, get_dFi, add_Dfi);
  req = request(one_);
  set(ucs_Eps, scene_.size * 1e-4);
  call("depth-merged", req, get_dFi, add_Dfi);
  req = request(one_);
  set(ucs_Srf, scene_.size * scene_.size * 1e-4);
  set(ucs_Off, 0.5);
  call("depth-patches", req, get_dFi, add_Dfi);
}

void CGoldenCalls::call_Statistics() {
  std::vector<T3DVEC> inward;
  for (const double z : {1.0, -1.0})
    for (const double y : {1.0, -1.0})
      for (const double x : {1.0, -1.0}) inward.push_back({x, y, z});
  TUcReq req = request(make_Axes(inward));
  req.cav = scene_.view_Regions(scene_.octants);
  call("surface-seen", req, get_Sta, add_Sta);
  call("rim-seen", req, get_Stb, add_Sta);
  call("sums", req, get_Stc, add_Sta);
  std::vector<T3DVEC> against;
  for (const T3DVEC& n : scene_.patch_normals) against.push_back(-n);
  scene_.set_Axes(req, make_Axes(against));
  req.cav = scene_.view_Regions(scene_.patches);
  call("surface-seen-patches", req, get_Sta, add_Sta);
  call("rim-seen-patches", req, get_Stb, add_Sta);
  call("sums-patches", req, get_Stc, add_Sta);
}

void CGoldenCalls::call_Rims() {
  Indices near = scene_.list_Nearest(scene_.top, 3000);
  const auto call_Each = [&](const char* edge, const char* grid, const char* list) {
    TUcReq req = request();
    req.roi = view_Lst(near);
    call(edge, req, get_Rma, add_Rma);
    set(gri_Row, 300u);
    set(gri_Col, 400u);
    call(grid, req, get_Rmb, add_Rma);
    req.frm.z = -scene_.patch_normals[2];
    req.roi = view_Lst(scene_.patches[2]);
    set(gri_Res, 1);
    set(gri_Dxx, scene_.size / 900);
    set(gri_Dyy, scene_.size / 800);
    set(ucs_Gew, 0.9);
    call(list, req, get_Rmc, add_Rma);
  };
  call_Each("rim-edges-near", "rim-grid-near", "rim-list");
  TUcReq req = request();
  req.roi = view_Lst(scene_.all);
  call("rim-edges", req, get_Rma, add_Rma);
  set(gri_Row, 300u);
  set(gri_Col, 400u);
  call("rim-grid", req, get_Rmb, add_Rma);
}

void CGoldenCalls::call_Pieces() {
  TUcReq req = request(axes_Round());
  call("pieces", req, get_Com, add_Com);
  set(ucs_Eps, scene_.size * 1e-3);
  call("pieces-merged", req, get_Com, add_Com);
  set(ucs_Eps, 0.0);
  TUcRes pieces = {};
  ini_Res(&pieces);
  get_Com(&req, &pieces);
  req.cav = pieces.com;
  set(flt_Srf, scene_.size * scene_.size * 2e-3);
  set(flt_Dep, 0.002);
  call("pieces-worth-it", req, flt_Com, add_Com);
  TArrArrVec sets[] = {curve_};
  req.lst = {sets, curve_.count};
  call("pieces-outside", req, flt_Com, add_Com);
  clr_Res(&pieces);
  set(dcm_Con, 3u);
  call("directions-in-ranges", req, err_Nml, add_Nml);
}

void CGoldenCalls::call_Points() {
  TUcReq req = request();
  scene_.set_Areas(req);
  call("points", req, get_Prj, add_Prj);
  set(prj_off, scene_.size * 1e-5);
  set(prj_inc, scene_.size * 1e-5);
  set(prj_lim, scene_.size * 1e-3);
  set(prj_tol, scene_.size);
  call("points-far", req, get_Prj, add_Prj);
}

// Lines onto the registered mesh, from outside and from inside.
void CGoldenCalls::call_Lines() {
  CHash points;
  const T3DVEC middle = scene_.make_Request().ray.org;
  for (int i = 0; i < 400; ++i) {
    const double s = 0.0025 * i - 0.5, t = 0.002 * (i * 7 % 400) - 0.4;
    const T3DRAY line = {middle + scene_.size * T3DVEC{s, t, i % 2 == 0 ? 1.0 : 0.125},
                         i % 5 == 0 ? T3DVEC{0, 0, -1} : T3DVEC{0.25 * t, s, -1}};
    T3DVEC point = {0, 0, 0};
    points.add_Value(det_Prj(&line, &point));
    points.add_Value(point);
  }
  lines_.push_back({"lines", 0, points.value()});
}

void CGoldenCalls::call_Corridors() {
  TUcReq req = request(three_);
  CHash hash;
  uint32_t count = 0;
  int32_t status = ini_Adt(&req.msh);
  cnt_Tri(&count);
  hash.add_Value(count);
  TLstU32 list = {};
  hash.add_Value(get_Shd(&list));
  hash.add_List(list);
  clr_Sub(&list);
  lines_.push_back({"registered", status, hash.value()});
  call_Lines();

  req = request(one_);
  set(con_Wid, scene_.size * 0.05);
  status = det_Roi(&req);
  get_Roi(&list);
  CHash bands;
  bands.add_List(list);
  lines_.push_back({"bands", status, bands.value()});
  call("corridor-some-pose", req, get_UCd, add_Ucs);
  call("corridor-every-pose", req, get_UCc, add_Selected);
  scene_.set_Axes(req, make_Axes({{0.5, -0.25, -1}, {0.25, 0, -1}, {0.25, -0.125, -1}}));
  call("corridor-poses", req, get_UCd, add_Ucs);
  call("corridor-every-of-poses", req, get_UCc, add_Selected);
  clr_Dll();
}

// The lists are copied: the call changes them.
void CGoldenCalls::call_Dcm(const char* name, const std::vector<Indices>& rois) {
  std::vector<Indices> lists = rois;
  std::vector<TLstU32> views;
  for (Indices& list : lists) views.push_back(view_Lst(list));
  TUcReq req = {};
  ini_Req(&req);
  req.msh = scene_.soup.msh();
  req.rois = view_Lst(views);
  call(name, req, get_Dcm, add_Dcm);
}

void CGoldenCalls::call_Decompositions() {
  defaults::restore();
  const auto half = scene_.all.begin() + scene_.triangles() / 2;
  const std::vector<Indices> halves = {{scene_.all.begin(), half}, {half, scene_.all.end()}};
  call_Dcm("regions-patches", scene_.patches);
  set(dcm_Con, 3u);
  call_Dcm("regions-patches-three-bands", scene_.patches);
  set(dcm_ini, 0);
  call_Dcm("regions-patches-free-axes", scene_.patches);
  set(dcm_5ax, 0);
  call_Dcm("regions-patches-four-axes", scene_.patches);
  if (!scene_.is_Small()) return;
  defaults::restore();
  call_Dcm("regions", {scene_.all});
  set(dcm_chk, 1);
  call_Dcm("regions-repaired", halves);
  set(dcm_Con, 3u);
  call_Dcm("regions-three-bands", halves);
  set(dcm_ini, 0);
  call_Dcm("regions-free-axes", halves);
  set(dcm_5ax, 0);
  call_Dcm("regions-four-axes", halves);
  defaults::restore();
  set(dcm_Con, 0u);
  set(dcm_win, 30.0);
  dcm_srt("srf");
  set(dcm_Lg1, 0.5);
  set(dcm_Cnt, 0);
  set(dcm_max, 2);
  call_Dcm("regions-by-area", halves);
}

std::vector<TGoldenLine> CGoldenCalls::run_All() {
  add_Input();
  call_UCs();
  call_Searches();
  call_RegionSearches();
  call_Curves();
  call_Depths();
  call_Statistics();
  call_Rims();
  call_Pieces();
  call_Points();
  call_Corridors();
  call_Decompositions();
  defaults::restore();
  return std::move(lines_);
}

}  // namespace undercut::tests
