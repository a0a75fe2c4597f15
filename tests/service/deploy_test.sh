#!/usr/bin/env bash
# Starts one of the configurations that operators get, as installed, with paths and ports of the test's own: the
# examples of the protocol page and the account page have to go through it, no account operation without TLS, and neither
# logs nor accounts hold a secret, whatever fails. Last come requests to a program by CGI that web servers would not let
# through.
#
# deploy_test.sh BUILD-FOLDER SOURCE-FOLDER lighttpd|nginx
set -euo pipefail
readonly build=$1 source=$2 server=$3
case $server in
lighttpd)
  readonly unit=nvservice-lighttpd.service
  reload=$(sed -n 's|^ExecReload=/bin/kill -\([A-Z0-9]*\) .*|\1|p' "$source/service/deploy/$unit")
  ;;
nginx) readonly unit=nginx.service reload=HUP ;; # as Debian's own unit does it
esac
# shellcheck source=scripts/installed_service.sh
source "$source/scripts/installed_service.sh"

root=$(mktemp -d)
trap 'stop; rm -rf "$root"' EXIT
fail() { echo "$server: $*" >&2; tail -n 20 "$root"/logs/* >&2; exit 1; }
install_service "$build"

# The units keep what they run away from the rest of the machine.
cp "$root/usr/lib/systemd/system/nvservice@.service" "$root/nvservice@svcapp.service"
for path in "$root/nvservice@svcapp.service" "$root"/usr/lib/systemd/system/nvservice-*.service; do
  systemd-analyze security --offline=true --no-pager --threshold=20 "$path" >"$root/logs/units" || fail "$path keeps too little away"
done

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
  ((try > 0)) || start_programs
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

# While it is reloaded and its logs are rotated, by what the units and logrotate are told, no request is lost.
mkdir "$root/bin"
cat >"$root/bin/systemctl" <<SYSTEMCTL
#!/bin/sh
case \$* in *" $unit") kill -\${3#--signal=} ${servers[-1]} ;; esac
SYSTEMCTL
chmod +x "$root/bin/systemctl"
adapt share/nvservice/deploy/logrotate.conf >"$root/etc/logrotate"
for ((i = 0; i < 60; ++i)); do http_status http://service.norvane.example/health/live || true; done >"$root/answers" & asking=$!
for ((round = 0; round < 3; ++round)); do
  sleep 0.2
  kill -"$reload" "${servers[-1]}"
  sleep 0.2
  PATH=$root/bin:$PATH logrotate --force --state "$root/rotated" "$root/etc/logrotate"
done
wait $asking
[[ $(sed 's/200/./g' "$root/answers" | tr -d '.') == '' ]] || fail "a request is lost in a reload: $(<"$root/answers")"
http_status "http://service.norvane.example/metrics" >"$root/answers"
until [[ -s $root/logs/access.log ]]; do sleep 0.1; done # lighttpd writes now and then
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
grep -q '^nvservice: ' "$root/logs/tool" || fail "the tool does not tell why not"
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
if [[ $server == nginx ]]; then
  # Of the 100 at once, some may still be taken by the requests before.
  answers=$(get -o "$root/page" -w '%{http_code}\n' 'http://service.norvane.example/index.htm?[1-400]' | sort | uniq -c)
  [[ $answers =~ ([0-9]+)\ 200.*\ 429 && ${BASH_REMATCH[1]} -ge 50 ]] || fail "one address is not limited: $answers"
  sleep 1
fi
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
grep -q 'not understood$' "$root/logs/svcapp" || fail "the log does not tell why a request is refused"
reply=$(svcapp REQUEST_METHOD=POST HTTPS=on CONTENT_LENGTH=48 NV_SERVICE_DATABASE=/nowhere/accounts.sqlite)
[[ $reply == 'Status: 503'*'Retry-After: 2'*$'\r\n\r\n\24' ]] || fail "another answer without accounts"
grep -q /nowhere/accounts.sqlite "$root/logs/svcapp" || fail "the log does not tell what is wrong with the accounts"
# shellcheck disable=SC2046
env $(adapt share/nvservice/deploy/settings | grep -v '^#') NV_SERVICE_PROCESSES=0 spawn-fcgi -n -s "$root/run/none" \
  -- "$root/usr/lib/nvservice/cgi-bin/svcapp.cgi" 2>"$root/logs/svcapp" && fail "a setting of 0 is taken"
grep -q 'svcapp: NV_SERVICE_PROCESSES is to be above 0' "$root/logs/svcapp" || fail "the log does not tell which setting is wrong"
