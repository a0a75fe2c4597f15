#!/usr/bin/env bash
# Builds the smallest host beside an installed library, by pkg-config and by find_package, and runs both.
#
# try_host.sh SOURCES [PREFIX]   SOURCES: the folder examples/minimal; PREFIX: where the library is, unless the system
#                                finds it by itself
set -euo pipefail
readonly sources=$1 prefix=${2:-}
if [[ -n $prefix ]]; then
  PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name nvsupport.pc)")
  export PKG_CONFIG_PATH CMAKE_PREFIX_PATH=$prefix
fi
unset LD_LIBRARY_PATH
# No server is there: this is about hosts that start.
export NV_CONNECT_TO=service.norvane.example:80:127.0.0.1:1

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
runs() {
  "$1" | grep -q "no products" || { echo "the host built by $2 does not run" >&2; exit 1; }
  echo "the host built by $2 runs"
}

read -ra flags <<<"$(pkg-config --cflags --libs nvsupport)"
cc -Wall -Wextra -Wpedantic -Werror "$sources/minimal.c" "${flags[@]}" -o "$work/by_pkg_config"
runs "$work/by_pkg_config" pkg-config

cmake -S "$sources" -B "$work/build" >/dev/null
cmake --build "$work/build" >/dev/null
runs "$work/build/minimal" find_package
cmake --install "$work/build" --prefix "$work/host" >/dev/null
runs "$work/host/bin/minimal" "find_package and installed"
