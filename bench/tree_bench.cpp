// Cost of the triangle tree: the builds of its two trees, and the any-hit query from every lifted
// centroid, as seeds, growth and evaluation ask it: along one direction or, as balancing comes to,
// along many. The plain form of the query, which walks the box tree, stands beside it.
#include <benchmark/benchmark.h>

#include <random>

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

void build_Rays(benchmark::State& state) {
  TBody body = make_Body(state);
  for (auto _ : state) {
    C3DTriAABBTree tree;
    benchmark::DoNotOptimize(tree.Prepare(body.view()));
    tree.BuildRays();
  }
  state.counters["triangles"] = static_cast<double>(body.triangles.size());
}

// The origin 0.001 mm above each triangle; 60 degrees from Z, as on a tilted axis, or anywhere.
std::vector<T3DRAY> make_Rays(const T3DMSH& msh, bool one_Way) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> angle(0.0, 180.0);
  std::vector<T3DRAY> rays;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const undercut::T3DFAC f = undercut::get_Fac(msh, t);
    const double polar = one_Way ? 60.0 : angle(random);
    const double azimuth = one_Way ? 30.0 : 2.0 * angle(random);
    rays.push_back(
        {undercut::cen_Tri(f) + 0.001 * undercut::nml_Tri(f), undercut::sph_ToCar(polar, azimuth)});
  }
  return rays;
}

void ask_Rays(benchmark::State& state, bool plain) {
  TBody body = make_Body(state);
  C3DTriAABBTree tree;
  tree.Build(body.view());
  tree.BuildRays();
  if (plain) tree.Exclude(UINT32_MAX);
  const std::vector<T3DRAY> rays = make_Rays(body.view(), state.range(2) == 1);
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

void any_Hit(benchmark::State& state) { ask_Rays(state, false); }
void any_HitPlain(benchmark::State& state) { ask_Rays(state, true); }

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

void set_Rays(benchmark::internal::Benchmark* bench) {
  for (const int64_t count : {20000, 200000, 1000000})
    for (const int64_t kind : {0, 1})
      for (const int64_t one_Way : {1, 0}) bench->Args({count, kind, one_Way});
  bench->ArgNames({"triangles", "ball", "one_way"})->Unit(benchmark::kMillisecond);
}

BENCHMARK(build_Tree)->Apply(set_Bodies);
BENCHMARK(build_Rays)->Apply(set_Bodies);
BENCHMARK(any_Hit)->Apply(set_Rays);
BENCHMARK(any_HitPlain)->Apply(set_Rays);
BENCHMARK(build_Coincident)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
