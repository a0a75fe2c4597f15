#!/usr/bin/env bash
# Builds the DLL, for 32 bits too, and tries the one of 64 bits in Wine, on a virtual screen: the example hosts search,
# download, read and get tokens from the local service over TLS, the dialogs by keyboard, 200 loads and unloads; then
# some 150 cases are played to the DLL and to the module of Linux, and compared.
#
# The DLL asks the real names of the service at their real ports, so all of this happens in a network of its own, with a
# host table and a trust store of its own. Where the machine allows no such network, what needs the service is left out.
# Wine's folder is build/windows/wine; a picture of the sign-in dialog goes to build/windows/sign-in.png.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/virtual_screen.sh

readonly build=$PWD/build/windows
readonly dll=$build/nvsupport.dll
readonly host=$build/nv_module_host.exe
readonly seconds=300 # for a program in Wine

if [[ ${1:-} != in-own-network ]]; then
  cmake --preset windows >/dev/null
  cmake --build --preset windows --target nvsupport nvsupport_catalogues nvhost minimal nv_module_host nv_paired_host nv_unit_tests
  scripts/check-exports.sh "$dll"
  cmake --preset windows32 >/dev/null
  cmake --build --preset windows32 --target nvsupport minimal
  scripts/check-exports.sh build/windows32/nvsupport.dll
  cmake --preset release >/dev/null
  cmake --build --preset release --target svcapp svcuser mapstore2 nvsupport nvsupport-web nvsupport-qt nv_paired_host
  own_network=(unshare --map-current-user --keep-caps --net --mount)
  "${own_network[@]}" true 2>/dev/null && exec "${own_network[@]}" scripts/test_windows.sh in-own-network
  echo "what needs the service: no network of one's own is allowed here" | tee "${NV_LEFT_OUT:-/dev/null}"
fi
readonly network=${1:-}

work=$(mktemp -d)
screen_pid='' host_pid=''
finish() {
  end_program "$host_pid"
  wineserver -k || true # there may be none
  wineserver -w
  end_program "$screen_pid"
  service/service.sh stop "$work/service"
  rm -rf "$work"
}
trap finish EXIT
fail() { echo "test_windows.sh: $*" >&2; exit 1; }
step() { printf -- '-- %s\n' "$*"; }
# Whether both numbers of a certificate's signature have all of their bytes: Wine takes no signature of which one begins
# with a zero byte, as in one of 128.
is_for_wine() {
  local -r signature=$(openssl asn1parse -in "$1" | awk -F: 'END { print $1 }')
  (($(openssl asn1parse -in "$1" -strparse "$signature" | grep -cE 'INTEGER +:[0-9A-F]{64}$') == 2))
}

export WINEPREFIX=$build/wine/prefix HOME=$build/wine/home WINEDEBUG=-all
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d' # nothing that asks for downloads
mkdir -p "$WINEPREFIX" "$HOME"
open_screen "$work"
wineserver --persistent # what starts with it stays for all programs
if [[ ! -e $build/wine/made ]]; then
  step "Wine's folder, once"
  timeout "$seconds" wineboot --init >/dev/null 2>&1
  touch "$build/wine/made"
fi

if [[ $network ]]; then
  ip link set lo up
  echo "127.0.0.1 localhost $(uname -n) service.norvane.example www.norvane.example web.example" >"$work/hosts"
  mount --bind "$work/hosts" /etc/hosts
  export NV_BUILD_DIR=build/release NV_SERVICE_PORTS="80 443"
  while service/service.sh start "$work/service" >/dev/null || fail "no service"
    ! is_for_wine "$work/service/ca.pem" || ! is_for_wine "$work/service/tls/server.pem"; do
    service/service.sh stop "$work/service"
  done
  mount --bind "$work/service/ca.pem" /etc/ssl/certs/ca-certificates.crt
fi

# nvhost in Wine, in a folder of its own; what it prints goes to $work/output.
nvhost() {
  (cd "$work" && exec timeout "$seconds" wine "$build/nvhost.exe" "$@") >"$work/output"
}
# Fails unless the last program has printed these lines and no others.
printed() { diff <(printf '%s\n' "$@") <(tr -d '\r' <"$work/output") >&2 || fail "it printed something else"; }
fails_with() {
  local code=0
  nvhost "${@:2}" || code=$?
  ((code == $1)) || fail "nvhost ${*:2} ended with $code, not with $1"
}
# Asks for a token while a user does what follows.
asks_for_token() {
  nvhost token --product "$1" &
  host_pid=$!
}
ends_with() {
  local code=0
  wait "$host_pid" || code=$?
  host_pid=
  ((code == $1)) || fail "nvhost token ended with $code, not with $1"
}

# Without a window manager, Wine would wait two seconds for one whenever a window closes.
wine reg add 'HKCU\Software\Wine\X11 Driver' /v Managed /d N /f >/dev/null

# Wine's desktop goes with its last window and has ten seconds to come, too few on a busy machine: so it is held.
tries=0
until exec 4< <(wine "$host" hold-screen) && read -r _ <&4; do
  ((++tries < 10)) || fail "no screen in Wine"
done

set_language() { wine reg add 'HKCU\Software\Norvane' /v Language /d "$1" /f >/dev/null; }
set_language English # whatever an earlier run left

step "Unit tests"
timeout "$seconds" wine "$build/nv_unit_tests.exe" --gtest_brief=1 --gtest_filter=-TypeFile.TurnsBad* >"$work/output" 2>&1 ||
  { cat "$work/output"; fail "unit tests failed"; }
grep PASSED "$work/output" || fail "no unit test ran"

step "200 loads and unloads"
timeout "$seconds" wine "$host" cycle "$dll" 200 >"$work/output"
printed "a load leaves 0 bytes, 0 handles"

step "Sign-in dialog, ended by Esc"
asks_for_token Nobody
sees "Sign in to Your Account"
command -v import >/dev/null && import -window "$window" "$build/sign-in.png"
xdotool key Escape
ends_with 8

step "The same in German"
set_language Deutsch
asks_for_token Nobody
sees "$(awk -F '\t' '$1 == "Sign in to Your Account" { print $2 }' src/resources/catalogues/nvsupport.Deutsch.txt)"
xdotool key Escape
ends_with 8
set_language English

if [[ $network ]]; then
  step "The minimal example"
  timeout "$seconds" wine "$build/minimal.exe" >"$work/output"
  printed "Chamonix and Mont Blanc: files/maps/chamonix.nvmap" "Package: The Alps: files/packages/alps.nvpkg"

  step "Search, download, read"
  readonly package=/files/packages/alps.nvpkg service=service.norvane.example
  nvhost search 45.8,6.8 46.0,7.0
  printed "     TITLE                    SHORT TEXT                 FILE                       FIRST  SECOND" \
    "     Chamonix and Mont Blanc  Hiking 1:25 000            files/maps/chamonix.nvmap    111     256" \
    "pkg  The Alps                 Hiking 1:50 000, complete  files/packages/alps.nvpkg    112   20480" \
    "2 products, closing value 38"
  nvhost download "$service" "$package" whole.nvpkg
  cmp "$work/service/www$package" "$work/whole.nvpkg"
  fails_with 7 download "$service" /missing missing
  nvhost read "$service" "$package" 1048576 64
  cmp <(tail -c +1048577 "$work/whole.nvpkg" | head -c 64) "$work/output"

  step "Account and computer name, made in the dialogs"
  readonly product="Atlas $$"
  asks_for_token "$product"
  makes_account
  ends_with 0

  step "Sign-in that saves the password"
  asks_for_token "$product"
  sees "Sign in to Your Account"
  types "secret 7"
  xdotool key space Return
  ends_with 0

  step "Token with the saved password"
  nvhost token --product "$product"
  grep -q '[^[:space:]]' "$work/output" || fail "no token"
  nvhost whoami --product "$product"
  grep -q '^user ID  *Demo User' "$work/output" || fail "another user"

  step "Side by side with the module of Linux"
  service/service.sh stop "$work/service" # whose ports and certificate come to serve a server of the cases
  compare=(build/release/nv_paired_host build/release/nvsupport.so "$build/nv_paired_host.exe" "$dll")
  timeout "$seconds" python3 fuzz/side_by_side/compare.py "${compare[@]}" "$work/service/tls" || fail "they differ"
fi
