#!/usr/bin/env bash
# Builds everything and runs all tests.
set -eu
cd "$(dirname "$0")/.."
cmake --preset dev
cmake --build --preset dev
ctest --preset dev -j2
