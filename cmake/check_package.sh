#!/usr/bin/env bash
# Installs the release build and builds the first programs against the installed package, as a host's
# author does: by CMake and by pkg-config, with both compilers, as C11 and C++17, without warnings.
set -euo pipefail
cd "$(dirname "$0")/.."
prefix=$PWD/build/prefix
rm -rf "$prefix" build/examples
cmake --install build/release --prefix "$prefix" >/dev/null

cmake -S examples -B build/examples -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_FLAGS="-Wall -Wextra -Wpedantic -Werror" \
  -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Werror" >/dev/null
cmake --build build/examples
build/examples/first_c
build/examples/first_cpp

pc=$(find "$prefix" -name undercut.pc -printf '%h')
flags=$(PKG_CONFIG_PATH=$pc pkg-config --define-prefix --cflags --libs undercut)
libs=$(dirname "$pc")
for cc in gcc clang; do
  # shellcheck disable=SC2086
  $cc -std=c11 -Wall -Wextra -Wpedantic -Werror examples/first.c $flags -lm -o build/examples/first_pc
  LD_LIBRARY_PATH=$libs build/examples/first_pc >/dev/null
done
for cxx in g++ clang++; do
  # shellcheck disable=SC2086
  $cxx -std=c++17 -Wall -Wextra -Wpedantic -Werror examples/first.cpp $flags -o build/examples/first_pc
  LD_LIBRARY_PATH=$libs build/examples/first_pc >/dev/null
done
"$prefix/bin/undercut" --version
echo "the installed package serves C and C++"
