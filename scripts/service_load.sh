#!/usr/bin/env bash
# Puts load on the service: searches, new accounts, sign-ins, tokens and account pages, many at a time. First on the
# local service, with the accounts in SQLite and in PostgreSQL, at peace and with two processes a second killed in the
# middle of their work. Then on two web servers, lighttpd and nginx as installed, behind a balancer and with one
# PostgreSQL, while four guessers are held back, the servers are restarted and reloaded in turn, their logs are rotated
# and backups are made. Shows how many were answered, and fails if one was not or if something that was acknowledged is
# missing.
#
# service_load.sh [REQUESTS [AT-A-TIME]]   1000 of each kind and 200 at a time unless told
set -euo pipefail
cd "$(dirname "$0")/.."

readonly requests=${1:-1000} at_a_time=${2:-200}
[[ $requests$at_a_time =~ ^[0-9]+$ && $# -le 2 ]] || { sed -n '2,9s/^# \{0,1\}//p' "$0" >&2; exit 2; }
readonly build=build/release

cmake --preset release >/dev/null
cmake --build --preset release --target svcapp svcuser mapstore2 nvservice nvservice-load

work=$(mktemp -d)
finish() {
  service/service.sh stop "$work/service"
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Against an empty database: the file or the server that NV_SERVICE_DATABASE names.
load() {
  local environment status=0
  environment=$(NV_BUILD_DIR=$build NV_SERVICE_ACCOUNTS_PER_ADDRESS=$((10 * requests)) \
    service/service.sh start "$work/service")
  (
    eval "$environment"
    "$build/nvservice-load" "$(<"$work/service/pid")" "$requests" "$at_a_time" "$1"
  ) || status=$?
  service/service.sh stop "$work/service"
  rm -rf "$work/service"
  return $status
}

export -f load
export build work requests at_a_time

result=0
for kills in 0 2; do
  ((kills)) && how="$kills processes a second are killed" || how="at peace"
  echo "SQLite, $how"
  NV_SERVICE_DATABASE=$work/service/accounts.sqlite load $kills || result=1
  echo "PostgreSQL, $how"
  scripts/private_postgres.sh bash -euc "load $kills" || result=1
done
echo "PostgreSQL, two web servers behind a balancer, restarted and reloaded, with guessers"
scripts/private_postgres.sh scripts/balanced_load.sh "$build" "$requests" "$at_a_time" || result=1
exit $result
