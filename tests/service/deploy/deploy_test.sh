#!/usr/bin/env bash
# Starts one of the configurations that operators get, as installed, with paths and ports of the test's own: a search,
# all account operations and the account page have to go through it, none without TLS, and no log holds a secret.
#
# deploy_test.sh BUILD-FOLDER SOURCE-FOLDER lighttpd|nginx
set -euo pipefail
readonly build=$1 source=$2 server=$3
PATH=$PATH:/usr/sbin

root=$(mktemp -d)
servers=()
finish() {
  ((${#servers[@]})) && kill -- "${servers[@]/#/-}" 2>/dev/null # each with its children
  wait
  rm -rf "$root"
}
trap finish EXIT
fail() { echo "$server: $*" >&2; tail -n 20 "$root"/logs/* >&2; exit 1; }

cmake --install "$build" --component service --prefix "$root/usr" >/dev/null
mkdir "$root/state" "$root/logs" "$root/run" "$root/etc" "$root/etc/tls"
cp "$source/service/data/products.tsv" "$root/etc"
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=service.norvane.example \
  -addext subjectAltName=DNS:service.norvane.example -keyout "$root/etc/tls/server.key" -out "$root/etc/tls/server.pem" \
  2>"$root/logs/openssl"

# An installed file with the test's paths for the operators' own, and two ports.
adapt() {
  sed -e "s|/usr/local/|$root/usr/|g" -e "s|/etc/nvservice|$root/etc|g" -e "s|/var/lib/nvservice|$root/state|g" \
    -e "s|/var/log/nvservice|$root/logs|g" -e "s|/run/nvservice|$root/run|g" \
    -e "s|0\.0\.0\.0|127.0.0.1|" -e "s|http_port = 80|http_port = $http|" -e "s|https_port = \"443\"|https_port = \"$https\"|" \
    -e "s|listen 80;|listen 127.0.0.1:$http;|" -e "s|listen 443 ssl;|listen 127.0.0.1:$https ssl;|" \
    "$root/usr/share/nvservice/deploy/$1"
}
command_of() { adapt "$1" | sed -n 's/^ExecStart=//p'; }

start_lighttpd() {
  adapt lighttpd.conf >"$root/etc/lighttpd.conf"
  # shellcheck disable=SC2046
  setsid $(command_of nvservice-lighttpd.service) >>"$root/logs/lighttpd" 2>&1 &
  servers+=($!)
}
start_nginx() {
  rm -f "$root/run/cgi.socket"
  # What the socket unit does: the listening socket is the standard input.
  # shellcheck disable=SC2046
  python3 - "$root/run/cgi.socket" "$root/logs/fcgiwrap" $(command_of nvservice-cgi.service) <<'PYTHON' &
import os, socket, sys
listening = socket.socket(socket.AF_UNIX)
listening.bind(sys.argv[1])
listening.listen(1024)
os.dup2(listening.fileno(), 0)
os.setsid()
log = os.open(sys.argv[2], os.O_WRONLY | os.O_CREAT)
os.dup2(log, 1)
os.dup2(log, 2)
os.execv(sys.argv[3], sys.argv[3:])
PYTHON
  servers+=($!)
  {
    ((EUID == 0)) && echo "user root;"
    echo "daemon off; pid $root/run/nginx.pid; events {} http {"
    for area in client_body proxy fastcgi uwsgi scgi; do echo "${area}_temp_path $root/run/$area;"; done
    adapt nginx.conf
    echo "}"
  } >"$root/etc/nginx.conf"
  setsid nginx -e "$root/logs/nginx" -c "$root/etc/nginx.conf" -p "$root" >>"$root/logs/nginx" 2>&1 &
  servers+=($!)
}

# Posts an example of the protocol page; prints the reply as one line of hexadecimal digits.
example() { awk -v name="\`\`\`hex $1" '$0 == name { on = 1; next } /^```/ { on = 0 } on { sub("#.*", ""); printf "%s", $0 }' \
  "$source/docs/service_protocol.md" | tr -d ' '; }
get() {
  curl -sS --max-time 60 --cacert "$root/etc/tls/server.pem" \
    --connect-to "service.norvane.example:80:127.0.0.1:$http" --connect-to "service.norvane.example:443:127.0.0.1:$https" \
    "$@" 2>>"$root/logs/curl"
}
post() {
  example "$2 request" | xxd -r -p >"$root/request"
  get -H 'Content-Type:' --data-binary "@$root/request" "$1://service.norvane.example/cgi-bin/$3" | xxd -p | tr -d '\n'
}

for ((try = 0; try < 5; ++try)); do
  http=$((10000 + RANDOM % 20000)) https=$((http + 1))
  "start_$server"
  for ((i = 0; i < 300; ++i)); do
    [[ $(post http search mapstore2.cgi) == "$(example 'search reply')" ]] && break 2
    kill -0 "${servers[-1]}" 2>/dev/null || break # another program has the port
    sleep 0.1
  done
done
[[ $(post http search mapstore2.cgi) == "$(example 'search reply')" ]] || fail "no answer to a search"
for operation in create-account sign-in name-computer; do
  [[ $(post https $operation svcapp.cgi) == "$(example "$operation reply")" ]] || fail "no answer to $operation"
done
[[ $(post http sign-in svcapp.cgi) == 01000000 ]] || fail "an account operation without TLS is not refused"
[[ $(stat -c %a "$root/state/accounts.sqlite") == 600 ]] || fail "others can read the accounts"
token=$(post https session-token svcapp.cgi | cut -c 17- | sed -E 's/(..)../\1/g' | xxd -r -p)
[[ ${#token} == 19 ]] || fail "no session token"
get "https://service.norvane.example/cgi-bin/svcuser.cgi?session=$token" | grep -q 'Desk at home' || fail "no account page"
# The log is written behind the replies.
for ((i = 0; i < 300; ++i)); do
  grep -q "GET /cgi-bin/svcuser.cgi 200" "$root/logs/access.log" && break
  sleep 0.1
done
grep -q "POST /cgi-bin/svcapp.cgi 200" "$root/logs/access.log" || fail "the log does not tell of the sign-in"
grep -rq -e "$token" -e [Ss]ecret "$root/logs" && fail "a log holds a secret"
exit 0
