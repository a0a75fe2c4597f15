#!/usr/bin/env bash
# Installs the release build to a prefix of its own, builds and runs a host there, and removes it as the README says.
set -euo pipefail
cd "$(dirname "$0")/.."

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install build/release --prefix "$prefix/nvsupport" >/dev/null
mv "$prefix/nvsupport" "$prefix/moved" # an installation can be moved
scripts/try_host.sh examples/minimal "$prefix/moved"
mv "$prefix/moved" "$prefix/nvsupport"
"$prefix"/nvsupport/bin/nvhost --version

xargs rm <build/release/install_manifest.txt
left=$(find "$prefix" -not -type d)
[[ -z $left ]] || { printf 'left behind:\n%s\n' "$left" >&2; exit 1; }
