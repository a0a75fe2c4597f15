#!/usr/bin/env bash
# Checks that something is where the links of documents lead.
# usage: scripts/check-links.sh DOCUMENT...
set -euo pipefail
failed=0
complain() { printf '%s\n' "$*" >&2; failed=1; }

# The headings of a document as links name them.
headings() {
  sed -n 's/^#\+ //p' "$1" | tr '[:upper:] ' '[:lower:]-' | sed 's/[^[:alnum:]_-]//g'
}
while IFS=: read -r document link; do
  target=$(realpath -m "$(dirname "$document")/${link%%#*}")
  [[ $link == \#* ]] && target=$document
  if [[ ! -e $target ]]; then
    complain "$document: nothing is at $link"
  elif [[ $link == *\#* ]] && ! headings "$target" | grep -qxF -e "${link#*#}"; then
    complain "$document: no heading is at $link"
  fi
done < <(grep -HoP '\]\(\K[^)]+(?=\))' "$@" | grep -vE ':(https?|mailto):')
exit $failed
