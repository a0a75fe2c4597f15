#!/usr/bin/env bash
# Starts one of the configurations that operators get, as installed, with paths and ports of the test's own: the
# examples of the protocol page and the account page have to go through it, no account operation without TLS, and neither
# logs nor accounts hold a secret, whatever fails. Last come requests to a program by CGI that web servers would not let
# through.
#
# deploy_test.sh BUILD-FOLDER SOURCE-FOLDER lighttpd|nginx
set -euo pipefail
readonly build=$1 source=$2 server=$3
PATH=$PATH:/usr/sbin

root=$(mktemp -d)
servers=()
stop() {
  ((${#servers[@]} == 0)) || kill -- "${servers[@]/#/-}" 2>/dev/null || true # each with its children
  servers=()
  wait
}
trap 'stop; rm -rf "$root"' EXIT
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
    -e "s|/var/log/nvservice|$root/logs|g" -e "s|/run/nvservice|$root/run|g" -e "s|/var/spool|$root/run|g" \
    -e "s|0\.0\.0\.0|127.0.0.1|" -e "s|http_port = 80|http_port = $http|" -e "s|https_port = \"443\"|https_port = \"$https\"|" \
    -e "s|listen 80;|listen 127.0.0.1:$http;|" -e "s|listen 443 ssl;|listen 127.0.0.1:$https ssl;|" \
    "$root/usr/share/nvservice/deploy/$1"
}
start() { setsid "$@" >>"$root/logs/servers" 2>&1 & servers+=($!); }
unit_command() { adapt "$1" | sed -n 's/^ExecStart=//p'; }
start_lighttpd() {
  adapt lighttpd.conf >"$root/etc/lighttpd.conf"
  # shellcheck disable=SC2046
  start $(unit_command nvservice-lighttpd.service)
}
start_nginx() {
  local program command
  for program in svcapp svcuser mapstore2; do
    rm -f "$root/run/$program.socket"
    command=$(unit_command nvservice@.service)
    # The socket unit opens the socket elsewhere. shellcheck disable=SC2046
    start env $(adapt settings | grep -v '^#') spawn-fcgi -n -s "$root/run/$program.socket" -- "${command//%i/$program}"
  done
  {
    ((EUID == 0)) && echo "user root;"
    echo "daemon off; pid $root/run/nginx.pid; events {} http {"
    for area in client_body proxy fastcgi uwsgi scgi; do echo "${area}_temp_path $root/run/$area;"; done
    adapt nginx.conf
    echo "}"
  } >"$root/etc/nginx.conf"
  start nginx -e "$root/logs/nginx" -c "$root/etc/nginx.conf" -p "$root"
}

# An example of the protocol page as one line of hexadecimal digits, and the reply to one.
example() { sed -n "/^\`\`\`hex $1\$/,/^\`\`\`\$/{/^\`/!{s/#.*//;p}}" "$source/docs/service_protocol.md" | tr -d ' \n'; }
get() {
  curl -sS --max-time 60 --cacert "$root/etc/tls/server.pem" \
    --connect-to "service.norvane.example:80:127.0.0.1:$http" --connect-to "service.norvane.example:443:127.0.0.1:$https" \
    "$@" 2>>"$root/logs/curl"
}
post() {
  example "$2 request" | xxd -r -p >"$root/request"
  get -H 'Content-Type:' --data-binary "@$root/request" "$1://service.norvane.example/cgi-bin/$3" | xxd -p | tr -d '\n'
}
expect() { [[ $(post "$1" "$2" "$3") == "$4" ]] || fail "another answer to $2 by $1"; }

for ((try = 0; try < 5; ++try)); do
  http=$((10000 + RANDOM % 20000)) https=$((http + 1))
  "start_$server"
  for ((i = 0; i < 300; ++i)); do
    [[ $(post http search mapstore2.cgi) == 00* ]] && break 2
    kill -0 "${servers[-1]}" 2>/dev/null || break # another program has the port
    sleep 0.1
  done
done
expect http search mapstore2.cgi "$(example 'search reply')"
for operation in create-account sign-in name-computer; do
  expect https $operation svcapp.cgi "$(example "$operation reply")"
done
expect https sign-in svcapp.cgi 0000000000000000 # the computer has a name now
expect http sign-in svcapp.cgi 01000000
http_status() { get -o "$root/page" -w "%{http_code}${2:+ $2}" "${@:3}" "$1"; }
for path in health/live health/write metrics; do
  [[ $(http_status "http://service.norvane.example/$path") == 200 ]] || fail "no answer from /$path"
done
grep -qx 'nvservice_requests_total{program="svcapp",status="403"} 1' "$root/page" || fail "requests are not counted"
[[ $(stat -c %a "$root"/state/accounts.sqlite*) == 600$'\n'600 ]] || fail "others can read the accounts"
token=$(post https session-token svcapp.cgi | cut -c 17- | sed -E 's/(..)../\1/g' | xxd -r -p)
[[ ${#token} == 19 ]] || fail "no session token"
page() { get -w ' %{http_code}' "${@:2}" "$1://service.norvane.example/cgi-bin/svcuser.cgi?session=$token"; }
[[ $(page https) == *'<b>Zoë Map</b>'*'<li>Desk &lt;A &amp; B&gt;</li>'*' 200' ]] || fail "no account page"
[[ $(page http -d '') == *' 403' ]] || fail "the account page opens without TLS"
headers=$(page https -I)
for header in "Content-Security-Policy: .*frame-ancestors 'none'" 'X-Content-Type-Options: nosniff' \
  'Referrer-Policy: no-referrer' 'Cache-Control: no-store'; do
  grep -qi "^$header" <<<"$headers" || fail "the account page lacks $header"
done
[[ $(page https -i -X PUT | tr -d '\0') == *'Allow: GET, HEAD, POST'*' 405' ]] || fail "the account page answers to PUT"
tool() { NV_SERVICE_DATABASE=${database:-$root/state/accounts.sqlite} "$root/usr/sbin/nvservice" "$@" 2>>"$root/logs/tool"; }
[[ $(tool backup "$root/backup" && tool check "$root/backup" && tool check) == '1 accounts'*'1 accounts'*'1 accounts' ]] ||
  fail "no backup"
[[ $(stat -c %a "$root/backup") == 600 ]] || fail "others can read the backup"
tool backup "$root/backup" && fail "a backup is written over"
tool expire && tool show zomap | grep -qx 'name: Zoë' || fail "the account is not shown"
if ((EUID == 0)); then
  chmod 711 "$root"
  install -d -o daemon -g daemon "$root/restored"
  # No look for leaks, which a process with another user may not take.
  ASAN_OPTIONS=detect_leaks=0 database=$root/restored/accounts.sqlite tool restore "$root/backup" >/dev/null || fail "the backup is not restored"
  [[ $(stat -c %U%a "$root"/restored/* | sort -u) == daemon600 ]] || fail "the service cannot use what is restored"
fi
[[ $(page https -d '') == *'All sessions have ended'*' 200' ]] || fail "the sessions are not ended"
[[ $(page https) == *'This session has ended'*' 403' ]] || fail "the account page opens after the end of the session"
python3 -c 'import sqlite3, sys, time
sqlite3.connect(sys.argv[1]).execute("BEGIN EXCLUSIVE"); print(flush=True); time.sleep(60)' "$root/state/accounts.sqlite" \
  >"$root/locked" & locker=$!
until [[ -s $root/locked ]]; do sleep 0.1; done
for address in http://service.norvane.example/health/write \
  https://service.norvane.example/cgi-bin/{svcapp,svcuser}.cgi?session="$token"; do
  [[ $(http_status "$address" '%{time_total}' --data-binary "@$root/request") == 503\ [01].* ]] ||
    fail "$address waits for a locked database"
done
[[ $(post https sign-in svcapp.cgi) == 14000000 ]] || fail "another status when the database is locked"
expect http search mapstore2.cgi "$(example 'search reply')"
kill $locker
rm "$root"/run/svcuser.socket*
[[ $(page https) == *' 50'? ]] || fail "the account page opens without its program"
stop # and so write the logs
grep -q "GET /cgi-bin/svcuser.cgi 200" "$root/logs/access.log" || fail "the log does not tell of the account page"
status=0
grep -rqi -e "$token" -e secret "$root/logs" "$root/state" || status=$?
((status == 1)) || fail "a log or the accounts hold a secret, or cannot be read"

svcapp() {
  example 'sign-in request' | xxd -r -p | env -i "$@" "$root/usr/lib/nvservice/cgi-bin/svcapp.cgi" 2>"$root/logs/svcapp" |
    tr -d '\0'
}
while read -r status method https length; do
  [[ $(svcapp REQUEST_METHOD="$method" HTTPS="$https" CONTENT_LENGTH="$length") == "Status: $status"*$'\r\n\r\n\1' ]] ||
    fail "another answer to $method, TLS $https, length $length"
done <<CASES
405 GET on 48
403 POST off 48
411 POST on
411 POST on -1
411 POST on 48x
411 POST on 99999999999999999999x
413 POST on 99999999999999999999
413 POST on 16385
400 POST on 49
CASES
reply=$(svcapp REQUEST_METHOD=POST HTTPS=on CONTENT_LENGTH=48 NV_SERVICE_DATABASE=/nowhere/accounts.sqlite)
[[ $reply == 'Status: 503'*'Retry-After: 2'*$'\r\n\r\n\24' ]] || fail "another answer without accounts"
grep -q /nowhere/accounts.sqlite "$root/logs/svcapp" || fail "the log does not tell what is wrong with the accounts"
