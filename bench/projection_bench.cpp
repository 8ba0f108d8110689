// Cost of what hosts compute on regions: how much of them is seen, their rims, points onto a mesh,
// pieces.
#include <benchmark/benchmark.h>

#include <omp.h>

#include "bench/requests.h"

namespace {

using bodies::TRequest;
using Computation = int32_t (*)(const TUcReq*, TUcRes*);

void check(benchmark::State& state, int32_t status) {
  if (status != 0) state.SkipWithError(("status " + std::to_string(status)).c_str());
}

// Calls of one export over the warty ball, which must succeed.
void call(benchmark::State& state, Computation computation, TRequest& request) {
  for (auto _ : state) {
    TUcRes res = {};
    ini_Res(&res);
    check(state, computation(&request.req, &res));
    clr_Res(&res);
  }
}
void call(benchmark::State& state, Computation computation) {
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))));
  call(state, computation, request);
}

// The second argument is the number of threads. `run`: triangles of a region, 0 for octants.
void rate(benchmark::State& state, Computation computation, uint32_t run) {
  omp_set_num_threads(static_cast<int>(state.range(1)));
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))), run);
  call(state, computation, request);
  state.counters["regions"] = request.regions();
}
void surface_8(benchmark::State& state) { rate(state, get_Sta, 0); }
void surface_Many(benchmark::State& state) { rate(state, get_Sta, 100); }
void rim_8(benchmark::State& state) { rate(state, get_Stb, 0); }
void rim_Many(benchmark::State& state) { rate(state, get_Stb, 100); }

void edge_Rim(benchmark::State& state) { call(state, get_Rma); }
void grid_Rim(benchmark::State& state) { call(state, get_Rmb); }
void grid_RimOfList(benchmark::State& state) { call(state, get_Rmc); }

void project_Points(benchmark::State& state) {
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))));
  call(state, get_Prj, request);
  state.counters["points"] = static_cast<double>(request.points());
}

void find_Pieces(benchmark::State& state) { call(state, get_Com); }
void find_PiecesMerged(benchmark::State& state) {
  const double tolerance = 1e-6, none = 0.0;
  ucs_Eps(&tolerance);
  call(state, get_Com);
  ucs_Eps(&none);
}
void filter_Pieces(benchmark::State& state) { call(state, flt_Com); }
void filter_PiecesByACurve(benchmark::State& state) {
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))));
  TArrArrVec curves[] = {request.req.arg};
  request.req.lst = {curves, 1};
  call(state, flt_Com, request);
}
void cut_Inside(benchmark::State& state) { call(state, get_Sub); }

// A line through the middle, in another direction each time.
void project_Line(benchmark::State& state) {
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))));
  check(state, ini_Adt(&request.req.msh));
  double theta = 0.0;
  for (auto _ : state) {
    theta += 7.3;
    const T3DRAY ray = {{1, 2, 3}, undercut::sph_ToCar(std::fmod(theta, 180.0), 2.0 * theta)};
    T3DVEC point;
    check(state, det_Prj(&ray, &point));
    benchmark::DoNotOptimize(point);
  }
  clr_Dll();
}

// The bands of the axes of all octants.
void select_Slabs(benchmark::State& state) {
  TRequest request(bodies::make_Ball(static_cast<uint32_t>(state.range(0))));
  check(state, ini_Adt(&request.req.msh));
  for (auto _ : state) check(state, det_Roi(&request.req));
  clr_Dll();
}

void set_Sizes(benchmark::internal::Benchmark* bench) {
  for (const int64_t count : {20000, 200000, 1000000}) bench->Arg(count);
  bench->ArgName("triangles")->Unit(benchmark::kMillisecond)->UseRealTime();
}
void set_SizesAndThreads(benchmark::internal::Benchmark* bench) {
  for (const int64_t count : {20000, 200000, 1000000})
    for (const int64_t threads : {1, 2}) bench->Args({count, threads});
  bench->ArgNames({"triangles", "threads"})->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(surface_8)->Apply(set_SizesAndThreads);
BENCHMARK(surface_Many)->Apply(set_SizesAndThreads);
BENCHMARK(rim_8)->Apply(set_SizesAndThreads);
BENCHMARK(rim_Many)->Apply(set_SizesAndThreads);
BENCHMARK(edge_Rim)->Apply(set_Sizes);
BENCHMARK(grid_Rim)->Apply(set_Sizes);
BENCHMARK(grid_RimOfList)->Apply(set_Sizes);
BENCHMARK(project_Points)->Apply(set_Sizes);
BENCHMARK(project_Line)->Apply(set_Sizes)->Unit(benchmark::kMicrosecond);
BENCHMARK(select_Slabs)->Apply(set_Sizes);
BENCHMARK(find_Pieces)->Apply(set_Sizes);
BENCHMARK(find_PiecesMerged)->Apply(set_Sizes);
BENCHMARK(filter_Pieces)->Apply(set_Sizes);
BENCHMARK(filter_PiecesByACurve)->Apply(set_Sizes);
BENCHMARK(cut_Inside)->Apply(set_Sizes);

}  // namespace

BENCHMARK_MAIN();
