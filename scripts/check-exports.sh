#!/usr/bin/env bash
# Checks that a built module exports exactly the ten names of the public header.
# usage: scripts/check-exports.sh MODULE
set -euo pipefail

module=${1:?usage: scripts/check-exports.sh MODULE}
header=$(dirname "$0")/../include/nvsupport/nvsupport.h

expected=$(grep -A1 '^NVSUPPORT_API' "$header" | grep -oE '\b(x[0-9a-f]{8}|NS[A-Za-z]+)\(' | tr -d '(' | sort)
case $module in
  *.dll) actual=$(x86_64-w64-mingw32-objdump -p "$module" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' |
    awk '/\[ *[0-9]+\]/ {print $NF}' | sort) ;;
  *) actual=$(nm -D --defined-only "$module" | awk '{print $NF}' | sort) ;;
esac

if [[ "$expected" != "$actual" ]]; then
  printf '%s: exports differ from the header\n' "$module" >&2
  diff <(echo "$expected") <(echo "$actual") >&2 || true
  exit 1
fi
printf '%s: exports exactly the %s names of the header\n' "$module" "$(echo "$expected" | wc -l)"
