#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over every source that the dev preset builds (some minutes).
# usage: scripts/lint.sh [PATTERN]   PATTERN: only sources whose path below this tree begins so, e.g. src/wire
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh test
cmake --preset dev >/dev/null
run-clang-tidy -quiet -p build/dev "$PWD/${1:-(src|service|examples|tools|tests)/}" 2>/dev/null
echo "clang-tidy: nothing found"
