#!/usr/bin/env bash
# Installs the Debian packages that are missing, through sudo when not root. Does nothing when all are there.
#
# install-packages.sh build   what building and the demo need
# install-packages.sh test    that, and what the tests and the other builds need
set -euo pipefail

readonly build_packages=(
  ca-certificates cmake g++ llvm ninja-build pkg-config
  libbenchmark-dev libcli11-dev libcurl4-openssl-dev libfcgi-dev libgtest-dev libpq-dev libsodium-dev libsqlite3-dev
  libssl-dev nlohmann-json3-dev
  libx11-dev libxcb-cursor-dev libxcb-xfixes0-dev libxcb1-dev qt6-base-dev
  fonts-dejavu-core lighttpd lighttpd-mod-openssl openssl xdotool xvfb
)
readonly test_packages=(
  build-essential ccache clang clang-format-19 clang-tidy-19 codespell curl debhelper dpkg-dev file
  g++-mingw-w64-i686 g++-mingw-w64-x86-64 iproute2 libclang-rt-dev lintian locales logrotate mmdebstrap nginx openbox
  postgresql python3 spawn-fcgi systemd wine wine64 xxd
  fonts-cantarell fonts-liberation fonts-noto-cjk fonts-noto-core qt6-translations-l10n x11-xserver-utils
)

case ${1:-} in
build) wanted=("${build_packages[@]}") ;;
test) wanted=("${build_packages[@]}" "${test_packages[@]}") ;;
*)
  echo "usage: install-packages.sh build|test" >&2
  exit 2
  ;;
esac

is_installed() { [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]; }

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done
((${#missing[@]})) || exit 0

as_root=()
if ((EUID != 0)); then
  command -v sudo >/dev/null || { echo "missing packages, and no sudo to install them: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi

# Some packages start a server of their own, now and at every boot; only the programs are wanted.
readonly servers=(lighttpd.service nginx.service postgresql.service)
readonly policy=/usr/sbin/policy-rc.d # asked before a package starts a server
if [[ ! -e $policy ]]; then
  trap '"${as_root[@]}" rm -f "$policy"' EXIT
  printf '#!/bin/sh\nexit 101\n' | "${as_root[@]}" install -m 755 /dev/stdin "$policy"
fi
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
for server in "${servers[@]}"; do
  if [[ " ${missing[*]} " == *" ${server%.*} "* && -d /run/systemd/system ]]; then
    "${as_root[@]}" systemctl disable "$server" || true
  fi
done
