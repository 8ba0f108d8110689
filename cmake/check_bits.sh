#!/usr/bin/env bash
# Results must be the same bits in every build: hashes of the results of one program, built without
# and with optimisation by both compilers, and with several numbers of threads, are compared. The
# release build is gcc at -O3, the sanitizers' clang at -O1.
set -euo pipefail
cd "$(dirname "$0")/.."

hashes() {  # name, compiler, flags
  cmake -S . -B "build/bits-$1" -G Ninja -DCMAKE_CXX_COMPILER="$2" -DCMAKE_BUILD_TYPE=None \
    -DCMAKE_CXX_FLAGS="$3" -DUNDERCUT_HOST=OFF >"build/bits-$1.log"
  cmake --build "build/bits-$1" --target bits >>"build/bits-$1.log" ||
    { cat "build/bits-$1.log" >&2; return 1; }
  "build/bits-$1/tests/bits" >"build/bits-$1.txt"
}

hashes gcc-O0 g++ -O0
hashes clang-O3 clang++ -O3
build/release/tests/bits >build/bits-gcc-O3.txt
LSAN_OPTIONS=suppressions=$PWD/cmake/leaks.supp:print_suppressions=0 \
  build/asan/tests/bits >build/bits-clang-O1.txt
for threads in 1 2 3 4 8 16; do
  OMP_NUM_THREADS=$threads build/release/tests/bits >"build/bits-threads-$threads.txt"
done

cat build/bits-gcc-O0.txt
for name in gcc-O3 clang-O1 clang-O3 threads-{1,2,3,4,8,16}; do
  diff "build/bits-gcc-O0.txt" "build/bits-$name.txt" || { echo "$name differs from gcc -O0"; exit 1; }
done
echo "the same bits in four builds and for 1 to 16 threads"
