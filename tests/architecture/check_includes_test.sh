#!/usr/bin/env bash
# Plants what the include check must see, one after the other, in a copy of the tree.
# usage: check_includes_test.sh SOURCE_FOLDER
set -euo pipefail
copy=$(mktemp -d)
trap 'rm -r "$copy"' EXIT
mkdir "$copy/docs"
cp -r "$1/src" "$1/include" "$copy"

while IFS=';' read -r file line complaint; do
  cp "$1/docs/architecture.md" "$copy/docs"
  sed -i "1i $line" "$copy/$file"
  if found=$("$1/scripts/check-includes.sh" "$copy") || [[ $found != *"$complaint"* ]]; then
    echo "not seen in $file: $line" >&2
    exit 1
  fi
  sed -i 1d "$copy/$file"
done <<'PLANTED'
src/base/ascii.h;#include "../ui/dialog.h";src/base/ascii.h may not include src/ui/dialog.h
src/base/ascii.h;# include <nvsupport/nvsupport.h>;src/base/ascii.h may not include include/nvsupport/nvsupport.h
src/ui/dialog.h;#include "trace.h";src/ui/dialog.h may not include src/platform/linux/trace.h
src/ui/dialog.h;#include "ui/dialogue.h";src/ui/dialog.h: #include "ui/dialogue.h" is not found
src/ui/dialog.h;#include ANYTHING;src/ui/dialog.h: #include ANYTHING names no file
docs/architecture.md;| `base/` | | `ui/` |;nothing needs
PLANTED
