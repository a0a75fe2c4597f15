#!/usr/bin/env bash
# Takes the pictures in docs/pictures anew: every dialog in every language, a message box, the example host with a
# window, and the account dialog in dark colours and on a screen too small for it. A played user makes an account in each
# language on a virtual screen, against the local service.
#
# screenshots.sh [FOLDER]         FOLDER: where the pictures go, else docs/pictures
# screenshots.sh --looks FOLDER   instead every dialog in every font, style and language that the tests measure
#
# Needs a release build, and the packages imagemagick, openbox and x11-utils beside those of install-packages.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/virtual_screen.sh

if [[ ${1:-} == --looks ]]; then
  mkdir -p "${2:?a folder for the pictures}"
  cmake --preset dev >/dev/null
  cmake --build --preset dev --target nv_dialog_look_tests
  NV_PICTURES=$(realpath "$2") GTEST_FILTER='*.AreWhole*' ctest --preset dev -R DialogLooks
  exit
fi

readonly pictures=${1:-docs/pictures}
readonly build=build/release
readonly catalogues=src/resources/catalogues

for program in openbox xprop xwininfo import convert; do
  command -v $program >/dev/null || { echo "$program is missing" >&2; exit 1; }
done

work=$(mktemp -d)
screen_pid='' manager_pid='' host_pid=''
finish() {
  end_program "$host_pid"
  end_program "$manager_pid"
  end_program "$screen_pid"
  service/service.sh stop "$work/service"
  rm -rf "$work"
}
trap finish EXIT

# The text as the user of this run sees it.
text() {
  [[ $language == English ]] && { echo "$1"; return; }
  awk -F '\t' -v key="$1" '$1 == key { print $2 }' "$catalogues/nvsupport.$language.txt"
}

# Takes a picture of what the screen shows of `window` with its frame. Few colours keep the file small.
take_picture() {
  local -r file=$pictures/$1.png
  local x y width height left right top bottom
  read -r x y width height < <(LC_ALL=C xwininfo -id "$window" |
    awk '/Absolute upper-left|Width:|Height:/ { printf "%s ", $NF } END { print "" }')
  IFS=', ' read -r left right top bottom < <(xprop -id "$window" _NET_FRAME_EXTENTS | sed 's/.* = //')
  import -window root "$work/shot.png"
  convert "$work/shot.png" \
    -crop "$((width + left + right))x$((height + top + bottom))+$((x - left))+$((y - top))" +repage -strip +dither \
    -colors 255 -define png:exclude-chunks=date,time -define png:compression-level=9 "PNG8:$file"
  echo "$file"
}

# A user who has never signed in, with the language chosen.
begin() {
  language=$1
  export XDG_CONFIG_HOME=$work/$1/config XDG_DATA_HOME=$work/$1/data
  mkdir -p "$XDG_CONFIG_HOME/norvane"
  printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Norvane]\n"Language"="%s"\n' "$1" >"$XDG_CONFIG_HOME/norvane/registry.reg"
}

# From the open sign-in dialog to the token. make_account USER [PICTURE-SUFFIX]
make_account() {
  local -r user=$1 suffix=${2:-}
  xdotool key shift+Tab space # from the user ID back to "Create Account"
  look_for "$(text "Create an Online Account")"
  types "$user"
  types "secret 7"
  types "secret 7"
  types "$user"
  types ""
  xdotool type --delay 20 "${user#Demo }@norvane.example"
  [[ -z $suffix ]] || take_picture "create_account.$suffix"
  xdotool key Return
  look_for "$(text "Give your Computer a Name")"
  xdotool key ctrl+a
  xdotool type --delay 20 "Desk"
  [[ -z $suffix ]] || take_picture "computer_name.$suffix"
  xdotool key Return
}

picture_dialogs() {
  begin "$1"
  "$build/nvhost" token --product Pictures >/dev/null &
  host_pid=$!
  look_for "$(text "Sign in to Your Account")"
  take_picture "sign_in.$language"
  if [[ $language == English ]]; then picture_refusal message.English; fi
  make_account "Demo $language" "$language"
  wait "$host_pid"
  host_pid=
}

# Signs in with a user ID that nobody has, and takes a picture of the message alone or of window WINDOW behind it.
# picture_refusal PICTURE [WINDOW]
picture_refusal() {
  types "Nobody"
  xdotool type "secret 7"
  xdotool key Return
  look_for "$(text "Account Manager")"
  window=${2:-$window} take_picture "$1"
  xdotool key Return
  look_for "$(text "Sign in to Your Account")"
  xdotool key ctrl+a BackSpace Tab ctrl+a BackSpace shift+Tab # both fields as they were, with the keyboard in the user ID
}

picture_window() {
  begin English
  rm -rf "$XDG_DATA_HOME"
  "$build/nvhost" gui --product Pictures &
  host_pid=$!
  look_for nvhost
  local -r main=$window
  xdotool key alt+s alt+t # search, then ask for a token
  look_for "Sign in to Your Account"
  window=$main take_picture sign_in_window
  picture_refusal nvhost_refused "$main"
  make_account "Demo Window"
  window=$main
  sleep 8 # the token, which takes its time on a busy machine
  take_picture nvhost_gui
}

# A screen with a window manager. new_screen FOLDER SERVER-OPTION...
new_screen() {
  end_program "$manager_pid"
  end_program "$screen_pid"
  mkdir -p -m 700 "$1"
  open_screen "$@"
  openbox --sm-disable >/dev/null 2>&1 &
  manager_pid=$!
  # A window manager that starts up misses the windows that open meanwhile.
  until xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; do sleep 0.1; done
}

# The account dialog alone. picture_account PICTURE
picture_account() {
  begin English
  rm -rf "$XDG_DATA_HOME"
  "$build/nvhost" token --product Pictures >/dev/null &
  host_pid=$!
  look_for "Sign in to Your Account"
  xdotool key shift+Tab space
  look_for "Create an Online Account"
  take_picture "$1"
  xdotool key Escape
  look_for "Sign in to Your Account"
  xdotool key Escape
  wait "$host_pid" || true
  host_pid=
}

# The colours of a desktop as it tells them to Qt.
picture_dark() {
  mkdir -p "$work/English/config"
  printf '[Colors:%s]\nBackgroundNormal=%s\nForegroundNormal=252,252,252\n' \
    Window 32,35,38 Button 49,54,59 View 20,22,24 \
    >"$work/English/config/kdeglobals"
  XDG_CURRENT_DESKTOP=KDE KDE_SESSION_VERSION=5 picture_account create_account.dark
  rm "$work/English/config/kdeglobals"
}

mkdir -p "$pictures"
eval "$(NV_BUILD_DIR=$build service/service.sh start "$work/service")"
new_screen "$work/screen" -dpi 96
for language in English Deutsch Francais Nederlands; do picture_dialogs "$language"; done
picture_window
picture_dark
new_screen "$work/small_screen" -dpi 96 -screen 0 1024x600x24
QT_FONT_DPI=144 picture_account create_account.small
