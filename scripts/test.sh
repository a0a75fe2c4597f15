#!/usr/bin/env bash
# Installs what is missing, then builds and tests everything, step by step. A step that fails does not hold up those
# behind it; a table of all steps comes at the end, with what a step left out because this machine gives no right to it.
# The exit code is 0 when none has failed.
#
# test.sh           all steps
# test.sh NAME...   only these
# test.sh --list    the names
set -euo pipefail
cd "$(dirname "$0")/.."

# Some steps compile the same sources alike, each in a folder of its own.
export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache CCACHE_DIR=$PWD/build/ccache

check_format() {
  git ls-files '*.h' '*.cpp' '*.c' | xargs clang-format-19 --dry-run --Werror
}

build_release() {
  cmake --preset release >/dev/null
  cmake --build --preset release
  scripts/check-exports.sh build/release/nvsupport{,-web,-qt}.so
}

test_threads() {
  cmake --preset tsan >/dev/null
  cmake --build --preset tsan --target nv_thread_tests nv_web_thread_tests
  ctest --preset tsan -L threads
}

test_all() {
  cmake --preset dev >/dev/null
  cmake --build --preset dev
  ctest --preset dev -j2
}

# Name and command of each step, in the order in which they run. One with a & runs beside those behind it: it leaves a
# processor idle for much of its time, and shares no folder with them but the compiler's cache.
readonly steps=(
  "format check_format"                 # every source as clang-format leaves it
  "lint scripts/lint.sh --fast"         # clang-tidy, where it is fast
  "release build_release"               # optimised build of everything, with the module's exports
  "packages & scripts/test_packages.sh" # the Debian packages, tried in a root of their own; the library's twice
  "soak scripts/soak.sh 0.3 1"          # the module against a server that spoils its replies, 18 seconds
  "model scripts/service_model.sh 5 1"  # the account service against a model, over both databases
  "windows scripts/test_windows.sh"     # cross build of the DLL, and the trial of it in Wine
  "bare scripts/check-bare.sh"          # the module alone, and what its build asks for
  "documents scripts/check-docs.sh"     # spelling, links, and manuals against the programs
  "install scripts/test_install.sh"     # an installation, with hosts built against it
  "threads test_threads"                # what has threads, under ThreadSanitizer
  "tests test_all"                      # every test, under AddressSanitizer and UndefinedBehaviorSanitizer
  "fuzz scripts/fuzz.sh 3"              # every fuzz target, three seconds each
)

names() { printf '%s\n' "${steps[@]%% *}"; }
case ${1:-} in
-h | --help) sed -n '2,8s/^# \?//p' "$0"; exit ;;
--list) names; exit ;;
esac
for name in "$@"; do
  names | grep -qxF -e "$name" || { printf 'no step "%s"; there are: %s\n' "$name" "$(names | xargs)" >&2; exit 2; }
done
is_wanted() {
  local -r name=$1
  shift
  (($# == 0)) || [[ " $* " == *" $name "* ]]
}

# Runs a step and writes its line of the table.
run_step() {
  local -r name=$1 command=$2 started=$SECONDS
  local status result left_out
  export NV_LEFT_OUT=$results/$name.left_out
  printf '\n== %s\n' "$name"
  # Not as a condition: within one, a function goes on behind a command that failed.
  set +e
  (set -e && $command)
  status=$?
  set -e
  case $status in
  0) result=passed ;;
  77) result=skipped ;;
  *)
    result=FAILED
    touch "$results/failed"
    printf '== %s FAILED\n' "$name"
    ;;
  esac
  left_out=$(cat "$NV_LEFT_OUT" 2>/dev/null || true)
  printf '%-10s %-8s %7d%s\n' "$name" $result $((SECONDS - started)) "${left_out:+  skipped: $left_out}" >"$results/$name"
}

scripts/install-packages.sh test

results=$(mktemp -d) beside=''
trap '[[ ! $beside ]] || kill -- "-$beside" 2>/dev/null; rm -rf "$results"' EXIT
for entry in "${steps[@]}"; do
  read -r name command <<<"$entry"
  is_wanted "$name" "$@" || continue
  if [[ $command == '& '* ]]; then
    set -m # in a process group of its own, which ends with this script
    run_step "$name" "${command#& }" </dev/null >"$results/log" 2>&1 &
    set +m
    beside=$!
  else
    run_step "$name" "$command"
  fi
done
if [[ $beside ]]; then
  wait "$beside"
  beside=''
  cat "$results/log"
fi
printf '\n%-10s %-8s %7s\n' step result seconds
for name in $(names); do
  ! is_wanted "$name" "$@" || cat "$results/$name"
done
[[ ! -e $results/failed ]]
