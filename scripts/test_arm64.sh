#!/usr/bin/env bash
# Cross builds the module and its plugins for 64-bit ARM and runs the unit tests of wire, settings, catalogue and search
# there under emulation. All of it in a root of its own, since nobody wants libraries of another architecture on a machine;
# so it takes long and is no step of test.sh. Needs root and the packages mmdebstrap and git.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/bare_root.sh

readonly plugins=(nvsupport-web nvsupport-qt)
readonly tests=(nv_wire_tests nv_storage_tests language_tests nv_mapshop_tests)
# These start programs, which the emulator does not follow.
readonly left_out=OpenDocument.*:CollectTexts.*:WorkFile.IsReplacedWholeWithItsMode:MultiByteText.FollowsTheCodePage*
readonly tools=cmake,crossbuild-essential-arm64,libcli11-dev,llvm,ninja-build,nlohmann-json3-dev,qemu-user,qt6-base-dev
readonly libraries=(libcurl4-openssl-dev libfcgi-dev libgtest-dev libpq-dev libsodium-dev libsqlite3-dev libssl-dev
  libx11-dev libxcb-cursor-dev libxcb-xfixes0-dev libxcb1-dev pkg-config qt6-base-dev)

make_work
make_root "$work/root" "$tools,$(printf '%s:arm64,' "${libraries[@]}")" --architectures=amd64,arm64
git clone -q --no-hardlinks . "$work/root/root/nvsupport"
within "$work/root" /root/nvsupport sh -euc '
  cmake -G Ninja -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo --toolchain cmake/aarch64-linux-gnu.cmake >/dev/null
  left_out=$1
  shift
  cmake --build build --target nvsupport "$@"
  scripts/check-exports.sh build/nvsupport.so
  readelf -h build/*.so | grep AArch64
  export LC_ALL=C.UTF-8 no_proxy=*
  for test in $(find build/tests -type f -name "*_tests" -executable); do
    echo "$test"
    qemu-aarch64 "$test" --gtest_brief=1 --gtest_filter="-$left_out"
  done' sh "$left_out" "${plugins[@]}" "${tests[@]}"
