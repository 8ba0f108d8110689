// The cost of the seeds, of the adjacency and of a whole decomposition, on bodies of 20,000 to
// 1,000,000 triangles.
#include <benchmark/benchmark.h>

#include <numeric>

#include "bench/bodies.h"
#include "decomposition/seeds.h"
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
BENCHMARK(get_Dcm)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
