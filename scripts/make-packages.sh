#!/usr/bin/env bash
# Builds the Debian packages, with debug symbols in packages of their own, into build/packages.
set -euo pipefail
cd "$(dirname "$0")/.."

cmake --preset package >/dev/null
cmake --build --preset package --target programs
rm -rf build/packages
cpack --config build/package/CPackConfig.cmake -B build/packages >build/package/cpack.log ||
  { cat build/package/cpack.log; exit 1; }
rm -rf build/packages/_CPack_Packages
ls build/packages
