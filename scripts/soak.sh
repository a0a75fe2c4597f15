#!/usr/bin/env bash
# Calls a module from several threads against a server that derives every reply from its request and spoils many, and
# looks at each answer: the right one or a failure, never another's. What fails is told with its seed and the last events.
#
# soak.sh [MINUTES: 1] [SEED: the time] [MODULE: built by the preset `release`]
set -euo pipefail
case ${1:-} in -h | --help) sed -n '2,5s/^# \?//p' "$0"; exit ;; esac
cd "$(dirname "$0")/.."
minutes=${1:-1} seed=${2:-$(date +%s)} module=${3:-$PWD/build/release/nvsupport.so}

cmake --preset release >/dev/null
targets=(soak_host)
(($# == 3)) || targets+=(programs)
cmake --build --preset release --target "${targets[@]}" >/dev/null
work=$(mktemp -d)
trap 'exec {server[1]}>&-; rm -rf "$work"' EXIT

make_certificate() { # NAME PREFIX
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj "/CN=$1" \
    -addext "subjectAltName=DNS:$1" -keyout "$work/$2key.pem" -out "$work/$2certificate.pem" 2>/dev/null
}
make_certificate service.norvane.example ""
make_certificate foreign.norvane.example foreign_
cp "$work/certificate.pem" "$work/own.pem"
cat "$work"/foreign_certificate.pem "$work"/foreign_certificate.pem >"$work/foreign.pem"

coproc server { exec python3 fuzz/soak/server.py "$seed" "$work" 2>"$work/server.log"; }
read -r plain moved secure <&"${server[0]}"
seconds=$(awk "BEGIN { print int($minutes * 60) }")
echo "seed $seed, $seconds s"
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM -u http_proxy -u https_proxy -u SSL_CERT_DIR \
  HOME="$work" XDG_DATA_HOME="$work/data" XDG_CONFIG_HOME="$work/config" SSL_CERT_FILE="$work/trust.pem" \
  build/release/soak_host "$module" "$seed" "$seconds" "$work" "$plain" "$moved" "$secure" 2>"$work/told" || {
  echo "FAILED; again with: scripts/soak.sh $minutes $seed"
  exit 1
}
