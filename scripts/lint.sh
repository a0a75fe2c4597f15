#!/usr/bin/env bash
# Runs clang-tidy with the checks of .clang-tidy over the sources that the dev preset builds.
#
# lint.sh             everything (some minutes)
# lint.sh PATTERN     only sources whose path below this tree begins so, for example src/wire
# lint.sh --fast      the library's own logic, without the checks that follow every path
set -euo pipefail
cd "$(dirname "$0")/.."

pattern=${1:-(src|service|examples|tools|tests)/}
options=()
if [[ $pattern == --fast ]]; then
  pattern='src/(base|core|wire|storage|account|mapshop|webfile|language|ui)/'
  options=('-checks=-clang-analyzer-*')
fi
# A deprecated call that the standard library of g++ 12 makes itself.
options+=(-extra-arg=-Wno-deprecated-declarations)
scripts/install-packages.sh test
cmake --preset dev >/dev/null
# A source that the build makes.
[[ ${1:-} == --fast ]] || cmake --build --preset dev --target tools/catalogue/source_texts.inc >/dev/null
run-clang-tidy-19 -quiet -p build/dev "${options[@]}" "$PWD/$pattern" 2>/dev/null
echo "clang-tidy: nothing found"
