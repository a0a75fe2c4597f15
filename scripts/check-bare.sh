#!/usr/bin/env bash
# Checks that the module alone builds with a compiler, CMake, llvm-rc, libcurl and the headers of XCB: configures it with
# every other part left out, builds it, and looks what was asked for on the way.
set -euo pipefail
cd "$(dirname "$0")/.."
readonly build=build/bare

# Prints what differs from what is expected. expect WHAT EXPECTED ACTUAL
expect() {
  [[ "$2" == "$3" ]] && return
  printf '%s of the bare module differ:\n' "$1" >&2
  diff <(echo "$2") <(echo "$3") >&2
}

rm -rf $build
mkdir -p $build
cmake -S . -B $build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DNV_SERVICE=OFF -DNV_EXAMPLES=OFF -DNV_TOOLS=OFF -DNV_QT=OFF -DBUILD_TESTING=OFF \
  --trace-format=json-v1 --trace-redirect=$build/trace.json >/dev/null
asked_for() {
  grep -F "\"file\":\"$PWD/" $build/trace.json | grep -oP "\"args\":\[\"\K[^\"]+(?=.*\"cmd\":\"$1\")" | sort -u
}
expect "packages" "$(printf '%s\n' CURL PkgConfig Threads)" "$(asked_for find_package)"
expect "programs" NV_LLVM_RC "$(asked_for find_program)"

cmake --build $build
headers=$(ninja -C $build -t deps | sed -n 's/^  *\(\/.*\)/\1/p' | sort -u | grep -vE "^$PWD/|\.(so[.0-9]*|a|o)$" | xargs realpath)
expect "packages with headers" "$(printf '%s\n' libc6-dev libcurl4-openssl-dev libgcc-dev libstdc++-dev libxcb-cursor-dev libxcb1-dev linux-libc-dev)" \
  "$(xargs dpkg -S <<<"$headers" | sed 's/:.*//; s/-[0-9]*-dev/-dev/' | sort -u)"
scripts/check-exports.sh $build/nvsupport{,-web}.so
