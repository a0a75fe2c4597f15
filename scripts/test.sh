#!/usr/bin/env bash
# Installs what is missing, builds everything and runs all tests.
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh test
cmake --preset dev
cmake --build --preset dev
ctest --preset dev -j2
