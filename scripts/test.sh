#!/usr/bin/env bash
# Installs what is missing, builds every preset and runs all tests: the whole suite under AddressSanitizer and
# UndefinedBehaviorSanitizer, what has threads under ThreadSanitizer, the cross build for Windows, the optimised
# build with its programs.
set -euo pipefail

if [[ "${1-}" == "-h" || "${1-}" == "--help" ]]; then
  sed -n '2,4s/^# //p' "$0"
  echo "usage: scripts/test.sh"
  exit 0
fi

cd "$(dirname "$0")/.."
scripts/install-packages.sh test

step() { printf '\n== %s\n' "$*"; }

step "Format"
git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format --dry-run --Werror

step "Windows cross build"
cmake --preset windows >/dev/null
cmake --build --preset windows
scripts/check-exports.sh build/windows/nvsupport.dll

step "Optimised build"
cmake --preset release >/dev/null
cmake --build --preset release --target programs nvsupport-bench
scripts/check-exports.sh build/release/nvsupport.so

step "ThreadSanitizer"
cmake --preset tsan >/dev/null
cmake --build --preset tsan --target nv_thread_tests
ctest --preset tsan -L threads

step "AddressSanitizer and UndefinedBehaviorSanitizer: all tests"
cmake --preset dev >/dev/null
cmake --build --preset dev
ctest --preset dev -j2
