#!/usr/bin/env bash
# Checks the words in documents and comments, the links between documents, the files that the architecture page names,
# and that the manuals know every option and exit code of the programs.
# usage: scripts/check-docs.sh [BUILD]   BUILD: where the programs are, else build/release
set -euo pipefail
cd "$(dirname "$0")/.."
readonly build=${1:-build/release}
failed=0
complain() { printf '%s\n' "$*" >&2; failed=1; }

git ls-files | grep -vE '\.png$|catalogues/|^fuzz/corpus/' | xargs codespell --ignore-words-list=caf,pressenter,uper || failed=1

git ls-files -z '*.md' | xargs -0 scripts/check-links.sh || failed=1

files=$(git ls-files src tests)
for file in $(grep -oP '`\K[a-z_/]+\.(cpp|h|rc|sh)(?=`)' docs/architecture.md | sort -u); do
  grep -qE "(^|/)$file\$" <<<"$files" || complain "docs/architecture.md: there is no $file"
done

for package in $(sed -n '/^Build-Depends/,/^Standards/s/^ \([a-z0-9.+-]*\).*/\1/p' debian/control); do
  [[ $package == debhelper-compat || $package == dh-* ]] || grep -qF "\`$package\`" docs/dependencies.md ||
    complain "docs/dependencies.md lacks $package"
done

# The options and exit codes that a program's help tells.
for program in nvhost nvcatalogue; do
  manual=$(<"docs/man/$program.1")
  help=$("$build/$program" --help)
  for command in $(sed -n '/^Subcommands:/,/^$/s/^  \([a-z0-9-]*\) .*/\1/p' <<<"$help"); do
    grep -q "^\.It Cm $command\b" <<<"$manual" || complain "docs/man/$program.1 lacks $command"
    help+=$'\n'$("$build/$program" "$command" --help)
  done
  for option in $(grep -oE -e '--[a-z]+' <<<"$help" | sort -u); do
    grep -qE "Fl -?(.*\| )?-${option#--}\b" <<<"$manual" || complain "docs/man/$program.1 lacks $option"
  done
  for code in $(sed -nE 's/^  ([0-9]+)  .*/\1/p' <<<"$help"); do
    grep -qx ".It $code" <<<"$manual" || complain "docs/man/$program.1 lacks exit code $code"
  done
done
for function in $(grep -oE '\b(x[0-9a-f]{8}|NS[A-Z][A-Za-z]+)\(' include/nvsupport/nvsupport.h | tr -d '(' | sort -u); do
  grep -qE "^\.F[no] $function\b" docs/man/nvsupport.3 || complain "docs/man/nvsupport.3 lacks $function"
done
exit $failed
