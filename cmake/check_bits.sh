#!/usr/bin/env bash
# Results must be the same bits in every build: hashes of the results of one program, built without
# and with optimisation by both compilers, are compared.
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
hashes gcc-O2 g++ -O2
hashes gcc-O3 g++ "-O3 -DNDEBUG"
hashes clang-O0 clang++ -O0
hashes clang-O3 clang++ "-O3 -DNDEBUG"

cat build/bits-gcc-O0.txt
for name in gcc-O2 gcc-O3 clang-O0 clang-O3; do
  diff "build/bits-gcc-O0.txt" "build/bits-$name.txt" || { echo "$name differs from gcc -O0"; exit 1; }
done
OMP_NUM_THREADS=1 build/bits-gcc-O3/tests/bits | diff build/bits-gcc-O0.txt -
echo "the same bits in five builds"
