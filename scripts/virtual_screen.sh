# A virtual screen and a played user before it, for scripts that source this file. Needs Xvfb and xdotool; what is
# waited for comes within the seconds below, or the script ends with a message.
readonly screen_seconds=120 window_seconds=120

# Starts an X server on a free display and sends all programs there. open_screen FOLDER [SERVER-OPTION...]: sockets of
# the programs go to FOLDER. Sets screen_pid, for the caller to end.
open_screen() {
  local number
  mkfifo "$1/number"
  Xvfb -displayfd 3 -nolisten tcp -screen 0 1024x768x24 "${@:2}" 3>"$1/number" >/dev/null 2>&1 &
  screen_pid=$!
  read -r -t $screen_seconds number <"$1/number" || { echo "no virtual screen" >&2; exit 1; }
  unset WAYLAND_DISPLAY
  export DISPLAY=:$number QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$1
}

# Ends a program of the caller's, if there is one, and waits for its end.
end_program() {
  [[ -n $1 ]] && kill "$1" 2>/dev/null || return 0
  wait "$1" 2>/dev/null || true
}

# Waits for the window with this title and sets `window` to it, with the keyboard given to it.
look_for() {
  # The search takes a pattern, and knows no letters beyond ASCII. It fails when a window goes while it looks.
  local -r pattern="^${1//[^ a-zA-Z0-9]/.*}\$" deadline=$((SECONDS + window_seconds))
  until window=$(xdotool search --onlyvisible --name "$pattern" 2>/dev/null | tail -1) && [[ -n $window ]]; do
    ((SECONDS < deadline)) || { echo "\"$1\" did not open" >&2; exit 1; }
    sleep 0.1
  done
  xdotool windowfocus --sync "$window"
  sleep 0.3 # the dialog takes the keyboard
}

# Fills a field and goes on to the next.
types() {
  xdotool type --delay 20 "$1"
  xdotool key Tab
}

# Waits for a dialog and says so.
sees() {
  echo "   the user sees \"$1\""
  look_for "$1"
}

# Makes an account and names the computer by keyboard alone, from the sign-in dialog on.
makes_account() {
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
}
