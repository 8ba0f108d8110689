#!/usr/bin/env bash
# clang-tidy over the library and the command, with the settings of .clang-tidy and the compile
# commands of the release build.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files 'src/*.cpp' 'host/*.cpp' |
  xargs -P "$(nproc)" -n 4 clang-tidy -p build/release --quiet \
    --extra-arg=-Wno-unknown-warning-option 2>/dev/null
