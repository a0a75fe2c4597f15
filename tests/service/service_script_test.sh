#!/usr/bin/env bash
# service.sh holds keys and accounts, and people eval what it prints: it works in no folder that others can reach, and
# prints nothing that a file of it could slip in.
#
# service_script_test.sh SERVICE.SH
set -euo pipefail
readonly script=$1

root=$(mktemp -d)
finish() {
  "$script" stop "$root/own"
  rm -rf "$root"
}
trap finish EXIT
fail() { echo "$*" >&2; exit 1; }

while read -r folder; do
  ((EUID == 0)) || [[ $folder != *chown* ]] || continue # only root can give a folder away
  mkdir "$root/case"
  (cd "$root/case" && eval "$folder")
  status=0
  "$script" start "$root/case/nv" 2>/dev/null || status=$?
  ((status == 1)) || fail "service.sh works behind $folder"
  [[ -z $(ls -A "$root/case/nv/") ]] || fail "service.sh leaves files behind $folder"
  rm -r "$root/case"
done <<'CASES'
mkdir -m 755 nv
mkdir -m 770 nv
mkdir -m 777 open; ln -s open nv
mkdir -m 700 nv; chown daemon nv
mkdir -m 700 closed; ln -s closed nv; chown -h daemon nv
CASES

"$script" start "$root/own" >/dev/null
for ports in '80 443; touch /tmp/x' $'80 443\ntouch x' ''; do
  echo "$ports" >"$root/own/ports"
  status=0
  printed=$("$script" env "$root/own" 2>/dev/null) || status=$?
  [[ $status == 1 && -z $printed ]] || fail "service.sh prints what a file holds: $printed"
done
