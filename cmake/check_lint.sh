#!/usr/bin/env bash
# clang-tidy with the settings of .clang-tidy and the compile commands of the release build.
#   check_lint.sh       over the library
#   check_lint.sh all   over the library and the command, which takes twice the time
set -euo pipefail
cd "$(dirname "$0")/.."
sources=('src/*.cpp')
if [ "${1-}" = all ]; then sources+=('host/*.cpp'); fi
git ls-files "${sources[@]}" |
  xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet \
    --extra-arg=-Wno-unknown-warning-option 2>/dev/null
