#!/usr/bin/env bash
# Gets a session token through the library's dialogs, for scripts/demo.sh: on the screen of who runs it, else on a
# virtual screen with a played user, who makes an account and names the computer by keyboard alone.
#
# demo-account.sh NVHOST PRODUCT
set -euo pipefail
readonly nvhost=$1 product=$2
readonly screen_seconds=10 window_seconds=20

token() { "$nvhost" token --product "$product"; }

if [[ -t 0 && -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
  echo "Please make an account in the window that opens; it lives in a temporary folder."
  token
  exit
fi

work=$(mktemp -d)
screen_pid='' host_pid=''
finish() {
  local pid
  for pid in $host_pid $screen_pid; do
    kill "$pid" 2>/dev/null || continue
    wait "$pid" 2>/dev/null || true
  done
  rm -rf "$work"
}
trap finish EXIT

mkfifo "$work/number"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/number" >/dev/null 2>&1 &
screen_pid=$!
read -r -t $screen_seconds number <"$work/number" || { echo "no virtual screen" >&2; exit 1; }
unset WAYLAND_DISPLAY
export DISPLAY=:$number QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$work

# Waits for a dialog and gives it the keyboard, as a window manager would.
look_for() {
  echo "  the user sees \"$1\""
  local window
  window=$(timeout $window_seconds xdotool search --sync --onlyvisible --name "^$1\$" | tail -1) ||
    { echo "\"$1\" did not open" >&2; exit 1; }
  xdotool windowfocus --sync "$window"
  sleep 0.3 # the dialog takes the keyboard
}
types() {
  xdotool type --delay 20 "$1"
  xdotool key Tab
}

token >"$work/token" &
host_pid=$!
look_for "Sign in to Your Account"
xdotool key shift+Tab space # from the user ID back to "Create Account"
look_for "Create an Online Account"
types "Demo User"
types "secret 7"
types "secret 7"
types "A Demo User"
types ""
types "demo@norvane.example"
xdotool key Return
look_for "Give your Computer a Name"
xdotool key Return # the name that is proposed
wait $host_pid || { host_pid=; exit 1; }
host_pid=
cat "$work/token"
