// Cost of the undercut analysis: one rating of a direction, the searches made of ratings, the
// classification along axes and the depth field.
#include <benchmark/benchmark.h>

#include <omp.h>

#include "bench/bodies.h"
#include "interface/exports.h"
#include "undercut/evaluators.h"

namespace {

using bodies::TBody;

// The ball of as many triangles as the first argument says; the second is the number of threads.
TBody make_Body(const benchmark::State& state) {
  omp_set_num_threads(static_cast<int>(state.range(1)));
  return bodies::make_Ball(static_cast<uint32_t>(state.range(0)));
}

template <typename Error>
void rate(benchmark::State& state, Error& error) {
  TBody body = make_Body(state);
  error.ini_Err(body.view());
  double theta = 0.0;
  for (auto _ : state) {
    theta += 7.0;
    benchmark::DoNotOptimize(error.Err(theta, 30.0));
  }
}

void rate_3ax(benchmark::State& state) {
  undercut::C3axUcErr error;
  error.set_Gew(0.01);
  rate(state, error);
}

void rate_5ax(benchmark::State& state) {
  undercut::C5axUcErr error;
  error.set_Gew(0.01);
  error.set_Off(0.001);
  rate(state, error);
}

// Directions that are spread over the sphere, in general position.
std::vector<T3DRAY> make_Axes(uint32_t count) {
  std::vector<T3DRAY> axes;
  for (uint32_t k = 0; k < count; ++k)
    axes.push_back({{0, 0, 0}, undercut::sph_ToCar(180.0 * (k + 0.5) / count, 137.5 * k)});
  return axes;
}

// One call of an export, which must succeed.
void call(benchmark::State& state, int32_t (*computation)(const TUcReq*, TUcRes*), uint32_t axes) {
  TBody body = make_Body(state);
  std::vector<T3DRAY> axi = make_Axes(axes);
  TUcReq req = {};
  ini_Req(&req);
  req.msh = body.view();
  req.axi.data = axi.data();
  req.axi.count = axes;
  for (auto _ : state) {
    TUcRes res = {};
    ini_Res(&res);
    if (const int32_t status = computation(&req, &res); status != 0)
      state.SkipWithError(("status " + std::to_string(status)).c_str());
    clr_Res(&res);
  }
}

void search_3ax(benchmark::State& state) { call(state, get_3ax, 0); }
void search_5ax(benchmark::State& state) { call(state, get_5ax, 0); }
void classify_1(benchmark::State& state) { call(state, get_UCs, 1); }
void classify_12(benchmark::State& state) { call(state, get_UCs, 12); }
void depth_1(benchmark::State& state) { call(state, get_dFi, 1); }
void depth_3(benchmark::State& state) { call(state, get_dFi, 3); }

void set_Sizes(benchmark::internal::Benchmark* bench) {
  for (const int64_t count : {20000, 200000, 1000000})
    for (const int64_t threads : {1, 2}) bench->Args({count, threads});
  bench->ArgNames({"triangles", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(rate_3ax)->Apply(set_Sizes);
BENCHMARK(rate_5ax)->Apply(set_Sizes);
BENCHMARK(search_3ax)->Apply(set_Sizes);
BENCHMARK(search_5ax)->Apply(set_Sizes);
BENCHMARK(classify_1)->Apply(set_Sizes);
BENCHMARK(classify_12)->Apply(set_Sizes);
BENCHMARK(depth_1)->Apply(set_Sizes);
BENCHMARK(depth_3)->Apply(set_Sizes);

}  // namespace

BENCHMARK_MAIN();
