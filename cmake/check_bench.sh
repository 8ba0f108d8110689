#!/usr/bin/env bash
# The benchmarks build and start; figures are taken by hand, on an idle machine.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release -DUNDERCUT_BENCH=ON >build/bench.log
mapfile -t names < <(basename -s .cpp bench/*_bench.cpp)
cmake --build --preset release --target "${names[@]}"
for name in "${names[@]}"; do
  build/release/bench/"$name" --benchmark_list_tests >/dev/null
  build/release/bench/"$name" --benchmark_filter='20000(/|$)' --benchmark_min_time=0.01
done
