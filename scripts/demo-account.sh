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

sees() {
  echo "  the user sees \"$1\""
  look_for "$1"
}

token >"$work/token" &
host_pid=$!
sees "Sign in to Your Account"
xdotool key shift+Tab space # from the user ID back to "Create Account"
sees "Create an Online Account"
types "Demo User"
types "secret 7"
types "secret 7"
types "A Demo User"
types ""
types "demo@norvane.example"
xdotool key Return
sees "Give your Computer a Name"
xdotool key Return # the name that is proposed
wait $host_pid || { host_pid=; exit 1; }
host_pid=
cat "$work/token"
