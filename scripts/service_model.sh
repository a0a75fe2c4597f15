#!/usr/bin/env bash
# Lets clients use the account service at random while its processes, its database and its disk fail, and compares each
# answer with a model: what was acknowledged is there, what was refused is not. Over SQLite, then over PostgreSQL.
#
# service_model.sh [SECONDS FOR EACH DATABASE: 10] [SEED: the time]
set -euo pipefail
case ${1:-} in -h | --help) sed -n '2,5s/^# \?//p' "$0"; exit ;; esac
cd "$(dirname "$0")/.."

own_disk=(unshare --map-current-user --keep-caps --mount)
if [[ ${1:-} == play ]]; then
  work=$(mktemp -d)
  trap 'service/service.sh stop "$work"; umount "$work/disk" 2>/dev/null || true; rm -rf "$work"' EXIT
  mkdir "$work/disk"
  if [[ ! ${NV_SERVICE_DATABASE:-} ]]; then
    export NV_SERVICE_DATABASE=$work/disk/accounts.sqlite
    mount -t tmpfs -o size=1m tmpfs "$work/disk" 2>/dev/null || echo "no disk of one's own is allowed here: none is filled"
  fi
  NV_BUILD_DIR=build/release NV_SERVICE_ACCOUNTS_PER_ADDRESS=1000000 service/service.sh start "$work" >/dev/null
  python3 fuzz/service_model/play.py "$2" "$3" "$work"
  exit
fi
seconds=${1:-10} seed=${2:-$(date +%s)}
cmake --preset release >/dev/null
cmake --build --preset release --target svcapp svcuser mapstore2 nvservice >/dev/null
"${own_disk[@]}" true 2>/dev/null || own_disk=()
play() { # DATABASE [COMMAND IN FRONT]...
  echo "$1, seed $seed, $seconds s"
  "${@:2}" scripts/service_model.sh play "$seconds" "$seed" && return
  echo "FAILED; again with: scripts/service_model.sh $seconds $seed"
  exit 1
}
unset NV_SERVICE_DATABASE
play SQLite "${own_disk[@]}"
play PostgreSQL scripts/private_postgres.sh
