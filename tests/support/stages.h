// The stages of a decomposition, run one by one over a mesh, as a call of get_Dcm runs them.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "decomposition/filter.h"
#include "decomposition/stage.h"
#include "decomposition/stage_files.h"
#include "tests/support/maps.h"

namespace undercut::tests {

struct TRig {
  TWorld world;
  CDcmPar par;
  C3DTriAABBTree tree;
  TUcCand cnd;
  TUcRank rnk;
  std::vector<uint32_t> triangles;
  TLst<uint32_t> roi = {};
  std::vector<TUcSeed> seeds;
  CStageFiles files;
  TUcStage stage;

  TRig(TSoup soup, const CDcmPar& parameters) : TRig(std::move(soup), parameters, {}) {}
  // An empty list stands for the whole mesh.
  TRig(TSoup soup, const CDcmPar& parameters, std::vector<uint32_t> list)
      : world(std::move(soup)),
        par(parameters),
        triangles(std::move(list)),
        files(par, ".", world.map, tree),
        stage{world.map, par, cnd, rnk, roi, seeds, files} {
    if (triangles.empty()) triangles = list_All(world.soup);
    EXPECT_TRUE(tree.Build(world.soup.msh()));
    const TUcBand bands[] = {
        {par.a_th0, par.b_th0}, {par.a_th1, par.b_th1}, {par.a_th2, par.b_th2}};
    const TUcBand whole = {0, 180};
    map().set_Win(par.n_con == 0 ? &whole : bands, par.n_con == 0 ? 1 : par.n_con);
    map().b_ini = par.b_ini != 0;
    map().b_5ax = par.b_5ax != 0;
    map().w_4ax = par.w_4ax;
    cnd = {0,         nullptr,   &map(),
           &tree,     par.T_win, 0.001,
           par.f_fuz, par.w_nul, {par.T_gw0, par.T_gw1, par.T_gw2, par.T_gw3, par.T_gw4}};
    rnk = {nullptr, &map(), par.L_gw0, par.L_gw1};
    const auto n = static_cast<uint32_t>(triangles.size());
    roi = {triangles.data(), n, n};
    calc_Seeds(map(), {roi.data, roi.count}, tree, 0.001, seeds);
    EXPECT_TRUE(map().ini_Roi({roi.data, roi.count}));
  }

  CMap& map() { return world.map; }
  std::vector<TUcRef> regions() {
    std::vector<TUcRef> refs;
    EXPECT_TRUE(map().get_Ucs(refs, false));
    return refs;
  }
  // The regions that take part in the pass.
  std::vector<CUcA*> open_Regions() {
    std::vector<CUcA*> open;
    for (const TUcRef& ref : regions())
      if (ref.id != 0 && !ref.region->fixed) open.push_back(ref.region);
    return open;
  }
  bool split() {
    for (CUcA* region : open_Regions())
      if (!com_Uca(map(), region)) return false;
    return true;
  }
  bool end_Pass() {
    if (!del_Small(map(), par) || !fix_Regions(map())) return false;
    keep_Seeds(map(), roi, seeds);
    return renew_Free(map());
  }
};

}  // namespace undercut::tests
