#!/usr/bin/env bash
# Every source is formatted by clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format --dry-run --Werror
