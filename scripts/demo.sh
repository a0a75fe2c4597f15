#!/usr/bin/env bash
# Shows the library at work on a bare Debian 12: builds it, starts the local service, and runs the example host.
set -euo pipefail
cd "$(dirname "$0")/.."

readonly build=build/release
readonly service_host=service.norvane.example
readonly package_path=/files/packages/alps.nvpkg
readonly range_offset=1048576
readonly range_length=64

step() { printf '\n\033[1m%s\033[0m\n' "$*"; }
if [[ ! -t 1 ]]; then step() { printf '\n%s\n' "$*"; }; fi
# Shows a command as a user would type it, then runs it.
run() {
  printf '$ %s\n' "${*/#$build\//}"
  "$@"
}

work=
finish() {
  [[ -n $work ]] || return 0
  service/service.sh stop "$work/service"
  rm -rf "$work"
  work=
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

work=$(mktemp -d)

step "Packages"
scripts/install-packages.sh build
echo "all there"

step "Build"
cmake --preset release >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; exit 1; }
cmake --build --preset release --target programs

step "Local service (lighttpd on loopback, throw-away certificates)"
# Slow enough to see the download at work.
environment=$(NV_BUILD_DIR=$build NV_SERVICE_KBYTES_PER_SECOND=4096 service/service.sh start "$work/service")
echo "$environment"
eval "$environment"

step "Which maps are there for the area around Mont Blanc?"
run $build/nvhost search 45.8,6.8 46.0,7.0

step "The same for a program"
run $build/nvhost search --json 45.8,6.8 46.0,7.0

step "Download the package"
run $build/nvhost download $service_host $package_path "$work/alps.nvpkg"

step "Read $range_length bytes from the middle of it, without downloading it"
printf '$ nvhost read %s %s %s %s | od -A d -t x1\n' $service_host $package_path $range_offset $range_length
$build/nvhost read $service_host $package_path $range_offset $range_length >"$work/range"
od -A d -t x1 "$work/range"
cmp "$work/range" <(tail -c +$((range_offset + 1)) "$work/alps.nvpkg" | head -c $range_length)
echo "the same bytes as in the downloaded file"

# The settings of this session's product go to the temporary folder, too.
export XDG_DATA_HOME=$work/data
step "Make an account, name the computer and get a session token, through the library's dialogs"
printf '$ nvhost token --product Demo\n'
scripts/demo-account.sh $build/nvhost Demo
echo "good for an hour at https://$service_host/cgi-bin/svcuser.cgi?session=..."
run $build/nvhost whoami --product Demo

step "Done; the service ends now."
