// Every computation over one mesh, each with a name, its status and the hash of all that it hands
// out. The larger the mesh, the fewer calls and the shorter searches.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "tests/golden/golden_scene.h"
#include "tests/support/hash.h"

namespace undercut::tests {

struct TGoldenLine {
  std::string call;
  int32_t status;
  uint64_t hash;
};

class CGoldenCalls {
 public:
  explicit CGoldenCalls(CGoldenScene& scene) : scene_(scene) {}

  std::vector<TGoldenLine> run_All();

 private:
  using Computation = int32_t (*)(const TUcReq*, TUcRes*);
  using Add = void (*)(CHash&, const TUcReq&, const TUcRes&);

  static void add_Ucs(CHash& hash, const TUcReq& req, const TUcRes& res) {
    hash.add_Array(res.ucs, req.msh.n_tri);
  }
  static void add_Dfi(CHash& hash, const TUcReq& req, const TUcRes& res) {
    hash.add_Array(res.dfi, req.msh.n_tri);
  }
  static void add_FrmA(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Value(res.frm_a); }
  static void add_FrmB(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Value(res.frm_b); }
  static void add_Lst(CHash& hash, const TUcReq&, const TUcRes& res) {
    hash.add_Array(res.lst, res.n_lst);
  }
  static void add_Sta(CHash& hash, const TUcReq& req, const TUcRes& res) {
    hash.add_Array(res.sta, req.cav.capacity);
  }
  static void add_Rma(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Lists(res.rma); }
  static void add_Com(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Lists(res.com); }
  static void add_Prj(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Lists(res.prj); }
  static void add_Nml(CHash& hash, const TUcReq&, const TUcRes& res) { hash.add_Lists(res.nml); }
  // The selected triangles, which get_UCc stores in place of a frame.
  static void add_Selected(CHash& hash, const TUcReq&, const TUcRes& res) {
    TLstU32 selected;
    std::memcpy(static_cast<void*>(&selected), &res.frm_a, sizeof selected);
    hash.add_List(selected);
  }
  // All that get_Dcm answers, and what it left of its lists.
  static void add_Dcm(CHash& hash, const TUcReq& req, const TUcRes& res) {
    for (uint32_t i = 0; i < res.uca_t.count; ++i) hash.add_Lists(res.uca_t.data[i]);
    hash.add_Lists(res.uca_a);
    hash.add_Lists(res.uca_f);
    hash.add_List(res.sts);
    hash.add_Lists(req.rois);
  }

  void call(const char* name, const TUcReq& req, Computation computation, Add add) {
    TUcRes res = {};
    ini_Res(&res);
    const int32_t status = computation(&req, &res);
    CHash hash;
    if (status == 0 || computation == get_Dcm) add(hash, req, res);
    lines_.push_back({name, status, hash.value()});
    clr_Res(&res);
  }
  void add_Input();
  void call_UCs();
  void call_Searches();
  void call_RegionSearches();
  void call_Curves();
  void call_Depths();
  void call_Statistics();
  void call_Rims();
  void call_Pieces();
  void call_Points();
  void call_Lines();
  void call_Corridors();
  void call_Dcm(const char* name, const std::vector<Indices>& rois);
  void call_Decompositions();

  TUcReq request(const std::vector<T3DRAY>& axes = {}) {
    TUcReq req = scene_.make_Request();
    scene_.set_Axes(req, axes);
    return req;
  }

  CGoldenScene& scene_;
  TArrArrVec curve_ = {};  // the first that cuts something out
  std::vector<TGoldenLine> lines_;
  const std::vector<T3DRAY> one_ = make_Axes({{0.25, -0.375, -1}});
  const std::vector<T3DRAY> three_ = make_Axes({{0, 0.25, 1}, {-1, 0.5, 0.125}, {0, 0, 0}});
  const std::vector<T3DRAY> along_ =
      make_Axes({{0, 0, 1}, {0, 0, -1}, {0, 1, 0}, {0, -1, 0}, {1, 0, 0}, {-1, 0, 0}});
};

}  // namespace undercut::tests
