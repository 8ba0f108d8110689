// The cost of the seeds, of the adjacency, of one growth and of a whole decomposition, on bodies of
// 20,000 to 1,000,000 triangles. Beside them their plain forms: seeds with a ray for every band,
// and a second growth without notes of the first.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <vector>

#include "bench/bodies.h"
#include "decomposition/growth_notes.h"
#include "decomposition/stage.h"
#include "decomposition/stage_files.h"
#include "foundation/sort_key.h"
#include "interface/exports.h"

namespace {

using undercut::C3DTriAABBTree;
using undercut::CMap;

constexpr double kLift = 0.001;
constexpr undercut::TUcBand kBands[] = {{0, 20}, {160, 180}, {80, 100}};

void count_Triangles(benchmark::State& state, size_t triangles) {
  state.counters["triangles"] = static_cast<double>(triangles);
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(triangles));
}

void ini_Msh(benchmark::State& state) {
  bodies::TBody body = bodies::make_Ring(static_cast<uint32_t>(state.range(0)));
  for (auto _ : state) {
    CMap map;
    benchmark::DoNotOptimize(map.ini_Msh(body.view()));
  }
  count_Triangles(state, body.triangles.size());
}

void calc_Seeds(benchmark::State& state) {
  bodies::TBody body = bodies::make_Ring(static_cast<uint32_t>(state.range(0)));
  std::vector<uint32_t> all(body.triangles.size());
  std::iota(all.begin(), all.end(), 0u);
  C3DTriAABBTree tree;
  CMap map;
  tree.Build(body.view());
  map.ini_Msh(body.view());
  map.set_Win(kBands, 3);
  std::vector<undercut::TUcSeed> seeds;
  for (auto _ : state)
    undercut::calc_Seeds(map, {all.data(), static_cast<uint32_t>(all.size())}, tree, kLift, seeds);
  count_Triangles(state, body.triangles.size());
}

// Every band asked of every triangle, one after the other.
void calc_SeedsPlain(benchmark::State& state) {
  bodies::TBody body = bodies::make_Ring(static_cast<uint32_t>(state.range(0)));
  const T3DMSH msh = body.view();
  C3DTriAABBTree tree;
  tree.Build(msh);
  std::vector<undercut::TUcSeed> seeds;
  for (auto _ : state) {
    seeds.assign(msh.n_tri, {});
    for (uint32_t t = 0; t < msh.n_tri; ++t) {
      seeds[t].index = t;
      const undercut::T3DFAC f = undercut::get_Fac(msh, t);
      const T3DVEC n = undercut::nml_Tri(f), start = undercut::cen_Tri(f) + kLift * n;
      double best = 0;
      for (const double polar : {20.0, 160.0, 100.0}) {
        const T3DVEC d = undercut::sph_ToCar(polar, undercut::car_ToSph(n).y);
        if (tree.AnyHit({start, d})) continue;
        best = std::max(best,
                        undercut::area_Tri(undercut::prj_Tri(f, d, start)) / undercut::area_Tri(f));
      }
      seeds[t].key = -best;
    }
    undercut::sort_Key(seeds.data(), 0, static_cast<int64_t>(seeds.size()) - 1,
                       [](const undercut::TUcSeed& seed) { return seed.key; });
  }
  count_Triangles(state, body.triangles.size());
}

// Growth over the whole body, after a growth of which there are notes or none.
void grow_Again(benchmark::State& state, bool noted) {
  bodies::TBody body = bodies::make_Ball(static_cast<uint32_t>(state.range(0)));
  std::vector<uint32_t> all(body.triangles.size());
  std::iota(all.begin(), all.end(), 0u);
  const auto n = static_cast<uint32_t>(all.size());
  C3DTriAABBTree tree;
  CMap map;
  tree.Build(body.view());
  map.ini_Msh(body.view());
  map.set_Win(kBands, 3);
  map.b_ini = true;
  undercut::CDcmPar par;
  undercut::TUcCand cnd;
  cnd.map = &map;
  cnd.tree = &tree;
  cnd.aperture = 30;
  undercut::TUcRank rnk;
  rnk.map = &map;
  TLst<uint32_t> roi = {all.data(), n, n};
  std::vector<undercut::TUcSeed> seeds;
  undercut::calc_Seeds(map, {all.data(), n}, tree, kLift, seeds);
  undercut::CStageFiles files(par, ".", map, tree);
  undercut::CGrowthNotes notes;
  undercut::TUcStage stage = {map, par, cnd, rnk, roi, seeds, files, 0, noted ? &notes : nullptr};
  map.ini_Roi({all.data(), n});
  undercut::grow_Regions(stage);
  for (auto _ : state) {
    map.ini_Roi({all.data(), n});
    benchmark::DoNotOptimize(undercut::grow_Regions(stage));
  }
  count_Triangles(state, body.triangles.size());
  state.counters["regions"] = map.cnt_Uca();
}
void grow_Noted(benchmark::State& state) { grow_Again(state, true); }
void grow_Plain(benchmark::State& state) { grow_Again(state, false); }

// Three passes in three bands. The list is filled anew for each call, since the call shortens it.
// The status tells whether the body went through (0) or failed twice (1), at the cost of two
// attempts.
void get_Dcm(benchmark::State& state) {
  bodies::TBody body = bodies::make_Ball(static_cast<uint32_t>(state.range(0)));
  const uint32_t bands = 3;
  const int32_t last_pass = 2;
  const double aperture = 30.0;
  dcm_Con(&bands);
  dcm_max(&last_pass);
  dcm_win(&aperture);
  std::vector<uint32_t> all(body.triangles.size());
  uint32_t regions = 0, status = 0;
  for (auto _ : state) {
    std::iota(all.begin(), all.end(), 0u);
    const auto n = static_cast<uint32_t>(all.size());
    TLstU32 roi = {all.data(), n, n};
    TUcReq req;
    TUcRes res;
    ini_Req(&req);
    ini_Res(&res);
    req.msh = body.view();
    req.rois = {&roi, 1, 1};
    status = static_cast<uint32_t>(get_Dcm(&req, &res));
    regions = res.uca_t.count ? res.uca_t.data[0].count : 0;
    clr_Res(&res);
  }
  count_Triangles(state, body.triangles.size());
  state.counters["regions"] = regions;
  state.counters["status"] = status;
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->Arg(20000)->Arg(200000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(ini_Msh)->Apply(sizes);
BENCHMARK(calc_Seeds)->Apply(sizes);
BENCHMARK(calc_SeedsPlain)->Apply(sizes);
BENCHMARK(grow_Noted)->Apply(sizes);
BENCHMARK(grow_Plain)->Apply(sizes);
BENCHMARK(get_Dcm)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
