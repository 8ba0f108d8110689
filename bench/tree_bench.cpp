// Cost of the triangle tree: its build, and the any-hit query along one direction from every lifted
// centroid, as seeds, growth and evaluation ask it.
#include <benchmark/benchmark.h>

#include "bench/bodies.h"
#include "mesh/trees.h"

namespace {

using bodies::TBody;
using undercut::C3DTriAABBTree;

TBody make_Body(const benchmark::State& state) {
  const auto count = static_cast<uint32_t>(state.range(0));
  return state.range(1) == 0 ? bodies::make_Ring(count) : bodies::make_Ball(count);
}

void build_Tree(benchmark::State& state) {
  TBody body = make_Body(state);
  for (auto _ : state) {
    C3DTriAABBTree tree;
    benchmark::DoNotOptimize(tree.Build(body.view()));
  }
  state.counters["triangles"] = static_cast<double>(body.triangles.size());
}

// One direction, 60 degrees from Z, as on a tilted axis; the origin 0.001 mm above each triangle.
void any_Hit(benchmark::State& state) {
  TBody body = make_Body(state);
  const T3DMSH msh = body.view();
  C3DTriAABBTree tree;
  tree.Build(msh);
  const T3DVEC dir = undercut::sph_ToCar(60.0, 30.0);
  std::vector<T3DRAY> rays;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const undercut::T3DFAC f = undercut::get_Fac(msh, t);
    rays.push_back({undercut::cen_Tri(f) + 0.001 * undercut::nml_Tri(f), dir});
  }
  uint64_t hits = 0;
  for (auto _ : state) {
    hits = 0;
    for (const T3DRAY& ray : rays) hits += tree.AnyHit(ray) ? 1 : 0;
    benchmark::DoNotOptimize(hits);
  }
  const auto asked = static_cast<double>(rays.size());
  state.counters["time_per_ray"] = benchmark::Counter(
      asked, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.counters["hit_share"] = static_cast<double>(hits) / asked;
}

// 100,000 coincident triangles: the deepest tree that there is.
void build_Coincident(benchmark::State& state) {
  TBody body;
  for (uint32_t t = 0; t < state.range(0); ++t) {
    body.points.insert(body.points.end(), {{0, 0, 0}, {3, 1, 0}, {1, 2, 2}});
    body.triangles.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  }
  for (auto _ : state) {
    C3DTriAABBTree tree;
    benchmark::DoNotOptimize(tree.Build(body.view()));
  }
}

void set_Bodies(benchmark::internal::Benchmark* bench) {
  for (const int64_t count : {20000, 200000, 1000000})
    for (const int64_t kind : {0, 1}) bench->Args({count, kind});
  bench->ArgNames({"triangles", "ball"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(build_Tree)->Apply(set_Bodies);
BENCHMARK(any_Hit)->Apply(set_Bodies);
BENCHMARK(build_Coincident)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
