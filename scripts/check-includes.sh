#!/usr/bin/env bash
# Prints every include of src/ that the table of docs/architecture.md does not allow, and all that the table allows and
# nothing needs.
# usage: scripts/check-includes.sh SOURCE_FOLDER
set -euo pipefail
cd "$1"

awk '
function report(text) { print text; failed = 1 }

# The file that an include leads to, looked for where the compilers look; none for a header of the system.
function included_by(file, name, quoted,   path, at) {
  folders[0] = file
  sub(/[^\/]*$/, "", folders[0])
  for (at = quoted ? 0 : 1; at <= 4; ++at) {
    path = folders[at] name
    while (sub(/[^\/]+\/\.\.\//, "", path) || sub(/\/\.\//, "/", path)) {}
    if (path in files) return path
  }
  return ""
}

function is_allowed(file, included,   folder, rule, parts, found) {
  match(file, /^src\/[a-z]+\//)
  folder = substr(file, 1, RLENGTH)
  found = index(included, folder) == 1
  for (rule in needed) {
    split(rule, parts)
    if (parts[1] == folder && index(included, parts[2]) == 1) found = needed[rule] = 1
  }
  return found
}

BEGIN { split("src/ include/ src/platform/linux/ src/platform/windows/", folders) }
FILENAME == ARGV[1] { files[$0]; next }

FILENAME == ARGV[2] {
  if (split($0, cells, "|") < 5 || cells[2] !~ /^ `[a-z]+\/` $/) next
  gsub(/[ `]/, "", cells[2])
  for (; match(cells[4], /`[^`]+`/); cells[4] = substr(cells[4], RSTART + RLENGTH)) {
    allowed = substr(cells[4], RSTART + 1, RLENGTH - 2)
    needed["src/" cells[2] " " (allowed ~ /^include/ ? "" : "src/") allowed] = 0
  }
  next
}

{
  file = substr($0, 1, index($0, ":") - 1)
  line = substr($0, length(file) + 2)
  if (!match(line, /["<][^">]+[">]/)) report(file ": " line " names no file")
  name = substr(line, RSTART + 1, RLENGTH - 2)
  quoted = substr(line, RSTART, 1) == "\""
  included = included_by(file, name, quoted)
  if (included == "" && quoted) report(file ": " line " is not found")
  if (included != "" && !is_allowed(file, included)) report(file " may not include " included)
}

END {
  for (rule in needed) {
    if (!needed[rule]) report("nothing needs the rule that lets the first include the second: " rule)
  }
  exit failed
}' <(find src include -type f) docs/architecture.md \
  <(grep -rHE '^\s*#\s*include' --include='*.h' --include='*.cpp' --include='*.rc' src)
