#!/usr/bin/env bash
# Runs a command beside a PostgreSQL server of its own, whose address it finds in NV_SERVICE_DATABASE. The server lives
# in a temporary folder, listens on a socket there and on no port, and ends with the command. Root runs it as the user
# nobody, since the server refuses root.
#
# private_postgres.sh COMMAND [ARGUMENT]...
set -euo pipefail

(($#)) || { sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2; }
for programs in /usr/lib/postgresql/*/bin; do :; done # the newest
[[ -x $programs/initdb ]] || { echo "PostgreSQL is missing; scripts/install-packages.sh test installs it" >&2; exit 1; }

dir=$(mktemp -d)
as_plain_user=()
if ((EUID == 0)); then
  chown nobody "$dir"
  as_plain_user=(setpriv --reuid nobody --regid nogroup --clear-groups)
fi
server() { (cd / && "${as_plain_user[@]}" "$programs/$@") >>"$dir/output" 2>&1; }
finish() {
  server pg_ctl -D "$dir/data" -w -m fast stop || true
  rm -rf "$dir"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

if ! { server initdb -D "$dir/data" -U nv --auth trust -E UTF8 --locale C --no-sync &&
  server pg_ctl -D "$dir/data" -l "$dir/log" -w start \
    -o "-c listen_addresses='' -c unix_socket_directories='$dir'"; }; then
  cat "$dir/output" "$dir/log" >&2
  exit 1
fi
NV_SERVICE_DATABASE="postgresql:///postgres?host=$dir&user=nv" "$@"
