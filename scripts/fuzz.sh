#!/usr/bin/env bash
# Builds the fuzz targets by the preset `fuzz` and runs each of them, or those that are named, two at a time. Prints what
# failed and where the input lies that did it; new inputs are kept below build/fuzz/ and used again.
set -euo pipefail

if [[ "${1-}" == "-h" || "${1-}" == "--help" ]]; then
  sed -n '2,3s/^# //p' "$0"
  echo "usage: scripts/fuzz.sh [SECONDS FOR EACH TARGET: 5] [TARGET...]"
  exit 0
fi

cd "$(dirname "$0")/.."
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target nvfuzz

# In memory: some targets write files and wait for the disk, which would be most of their time.
home=$(mktemp -d -p /dev/shm 2>/dev/null || mktemp -d)
trap 'rm -rf "$home"' EXIT
export SECONDS_EACH=${1:-5} TMPDIR=$home HOME=$home XDG_DATA_HOME=$home/data XDG_CONFIG_HOME=$home/config
export XDG_DOCUMENTS_DIR=$home/documents

# Leaks are looked for at the end of each run only: behind each input, where threads come and go, that takes all the time.
run() {
  local new=build/fuzz/inputs/$1 log=build/fuzz/$1.log
  mkdir -p "$new"
  if build/fuzz/nvfuzz -max_total_time="$SECONDS_EACH" -timeout=10 -rss_limit_mb=1024 -max_len=65536 -close_fd_mask=3 \
    -detect_leaks=0 -print_final_stats=1 -artifact_prefix="$new-" "$new" "fuzz/corpus/$1" >"$log" 2>&1; then
    printf '%-16s %s runs, %s edges\n' "$1" "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
      "$(sed -n 's/.* cov: \([0-9]*\) .*/\1/p' "$log" | tail -n 1)"
  else
    tail -n 40 "$log"
    echo "$1 FAILED"
    return 1
  fi
}
export -f run

shift $(($# > 0))
targets=("${@:-$(ls fuzz/corpus)}")
printf '%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -c 'run {}'
