#!/usr/bin/env bash
# Gets a session token through the library's dialogs, for scripts/demo.sh: on the screen of who runs it, else on a
# virtual screen with a played user, who makes an account and names the computer by keyboard alone.
#
# demo-account.sh NVHOST PRODUCT
set -euo pipefail
readonly nvhost=$1 product=$2
source "$(dirname "${BASH_SOURCE[0]}")/virtual_screen.sh"

token() { "$nvhost" token --product "$product"; }

if [[ -t 0 && -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
  echo "Please make an account in the window that opens; it lives in a temporary folder."
  token
  exit
fi

work=$(mktemp -d)
screen_pid='' host_pid=''
finish() {
  end_program "$host_pid"
  end_program "$screen_pid"
  rm -rf "$work"
}
trap finish EXIT

open_screen "$work"
export LC_ALL=C.UTF-8 # the user looks for English titles

token >"$work/token" &
host_pid=$!
makes_account
wait $host_pid || { host_pid=; exit 1; }
host_pid=
cat "$work/token"
