#!/usr/bin/env bash
# Installs the release build to a prefix of its own, builds and runs hosts there, removes it as the README says, and
# builds the library as a part of another project.
set -euo pipefail
cd "$(dirname "$0")/.."

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install build/release --prefix "$prefix/nvsupport" >/dev/null
mv "$prefix/nvsupport" "$prefix/moved" # an installation can be moved
readonly examples=$prefix/moved/share/doc/nvsupport/examples
scripts/try_host.sh "$examples/minimal" "$prefix/moved"
cmake -G Ninja -S "$examples/host" -B "$prefix/host" -DCMAKE_PREFIX_PATH="$prefix/moved" >/dev/null
cmake --build "$prefix/host" >/dev/null
XDG_DATA_HOME=$prefix "$prefix/host/nvhost" whoami --product Trial # loads the module
"$prefix/host/nvhost-gui" --help >/dev/null
rm -r "$prefix/host"
mv "$prefix/moved" "$prefix/nvsupport"
"$prefix"/nvsupport/bin/nvhost --version

xargs rm <build/release/install_manifest.txt
left=$(find "$prefix" -not -type d)
[[ -z $left ]] || { printf 'left behind:\n%s\n' "$left" >&2; exit 1; }

# No server is there: this is about hosts that start.
export NV_CONNECT_TO=service.norvane.example:80:127.0.0.1:1
for way in add_subdirectory FetchContent; do
  cmake -G Ninja -S tests/subproject -B "$prefix/$way" -DWAY=$way >/dev/null
  cmake --build "$prefix/$way" >"$prefix/log" || { cat "$prefix/log"; exit 1; }
  "$prefix/$way/minimal" | grep -q "no products" || { echo "the host built by $way does not run" >&2; exit 1; }
  cmake --install "$prefix/$way" --prefix "$prefix/parent" >/dev/null
  [[ $(find "$prefix/parent" -type f -printf '%P\n') == bin/minimal ]] || { echo "$way installs too much" >&2; exit 1; }
  echo "the library is built by $way"
done
