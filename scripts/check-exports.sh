#!/usr/bin/env bash
# Checks that a built module exports exactly the ten names of the public header, and that a plugin of it exports the one
# name of its version script.
# usage: scripts/check-exports.sh FILE...
set -euo pipefail
: "${1:?usage: scripts/check-exports.sh FILE...}"
tree=$(dirname "$0")/..

for file; do
  case $file in
    *nvsupport-*.so) plugin=${file##*nvsupport-}
      expected=$(sed -n 's/.*global: \(.*\);/\1/p' "$tree/src/platform/linux/${plugin%.so}/exports.map") ;;
    *) expected=$(grep -A1 '^NVSUPPORT_API' "$tree/include/nvsupport/nvsupport.h" |
      grep -oE '\b(x[0-9a-f]{8}|NS[A-Za-z]+)\(' | tr -d '(' | sort) ;;
  esac
  case $file in
    *.dll) actual=$(x86_64-w64-mingw32-objdump -p "$file" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' |
      awk '/\[ *[0-9]+\]/ {print $NF}' | sort) ;;
    *) actual=$(nm -D --defined-only "$file" | awk '{print $NF}' | sort) ;;
  esac
  if [[ "$expected" != "$actual" ]]; then
    printf '%s: other exports than expected\n' "$file" >&2
    diff <(echo "$expected") <(echo "$actual") >&2 || true
    exit 1
  fi
  printf '%s: exports exactly what it should, %s name(s)\n' "$file" "$(wc -l <<<"$expected")"
done
