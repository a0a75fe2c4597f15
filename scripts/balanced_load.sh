#!/usr/bin/env bash
# Puts load on two web servers, lighttpd and nginx as installed, behind a balancer and with the PostgreSQL database that
# NV_SERVICE_DATABASE names, which is to be empty. Meanwhile four guessers are held back, the servers are restarted and
# reloaded in turn, their logs are rotated and backups are made. Fails if a request is not answered or if something that
# was acknowledged is missing. service_load.sh runs it. With NV_OLDER_PROGRAMS, a folder with those of an older version,
# the web server nginx has these: the upgrade of one server after the other.
#
# balanced_load.sh BUILD-FOLDER REQUESTS AT-A-TIME
set -euo pipefail
cd "$(dirname "$0")/.."
readonly build=$1 requests=$2 at_a_time=$3
source scripts/installed_service.sh

work=$(mktemp -d)
chmod 711 "$work"
declare -A http_ports=() processes=()
# shellcheck disable=SC2086
finish() {
  signal TERM ${processes[*]}
  wait
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# A port that nobody has asked the kernel for.
random_port() { echo $((10000 + RANDOM % 20000)); }

# start_server lighttpd|nginx: anew if it runs; as installed, knowing the balancer.
start_server() {
  root=$work/$1 http=${http_ports[$1]} https=$((${http_ports[$1]} + 1)) servers=()
  start_programs
  "start_$1"
  processes[$1]=${servers[*]}
  for ((i = 0; i < 100; ++i)); do
    curl -s -o /dev/null "http://127.0.0.1:$http/health/live" && return
    sleep 0.1
  done
  echo "$1 does not answer" >&2
  exit 1
}
signal() { # SIGNAL PROCESS...: to each with its children
  local -r name=$1
  shift
  kill -"$name" -- "${@/#/-}" 2>/dev/null || true
}
# shellcheck disable=SC2086
restart_server() {
  signal TERM ${processes[$1]}
  wait ${processes[$1]} || true
  start_server "$1"
}
web_server() { echo "${processes[$1]##* }"; } # the last that was started
reload_server() { kill -"$([[ $1 == nginx ]] && echo HUP || echo USR1)" "$(web_server "$1")"; }
rotate_logs() {
  mv "$work/$1/logs/access.log" "$work/$1/logs/access.log.$SECONDS"
  kill -"$([[ $1 == nginx ]] && echo USR1 || echo HUP)" "$(web_server "$1")"
}
backup() {
  local -r file=$work/backup.$SECONDS
  "$work/lighttpd/usr/sbin/nvservice" backup "$file" >/dev/null
  "$work/lighttpd/usr/sbin/nvservice" check "$file" >/dev/null
}

start_balancer() {
  root=$work/balancer http=${http_ports[balancer]} https=$((${http_ports[balancer]} + 1))
  mkdir "$root" "$root/logs" "$root/run" "$root/etc"
  run_nginx <<NGINX
upstream servers { server 127.0.0.1:${http_ports[lighttpd]} max_fails=0; server 127.0.0.1:${http_ports[nginx]} max_fails=0; }
access_log off;
error_log $root/logs/error.log;
server {
    listen 127.0.0.1:$http;
    listen 127.0.0.1:$https ssl;
    ssl_certificate $work/nginx/etc/tls/server.pem;
    ssl_certificate_key $work/nginx/etc/tls/server.key;
    proxy_set_header Host \$host;
    proxy_set_header X-Forwarded-For \$proxy_add_x_forwarded_for;
    proxy_set_header X-Forwarded-Proto \$scheme;
    location / { proxy_pass http://servers; }
}
NGINX
  processes[balancer]=${servers[-1]}
}

# lighttpd that is stopped in the middle of a reload stops late and drops what it had: here it has some time for it.
readonly steps=("restart_server lighttpd" backup "reload_server lighttpd" "rotate_logs nginx" "restart_server nginx"
  "rotate_logs lighttpd" "reload_server nginx")
# shellcheck disable=SC2034
more_settings=(NV_SERVICE_DATABASE="$NV_SERVICE_DATABASE" NV_TRUSTED_PROXIES=127.0.0.1)
for name in lighttpd nginx balancer; do http_ports[$name]=$(random_port); done
for name in lighttpd nginx; do
  root=$work/$name
  mkdir "$root"
  install_service "$build"
done
[[ -z ${NV_OLDER_PROGRAMS:-} ]] || cp "$NV_OLDER_PROGRAMS"/*.cgi "$work/nginx/usr/lib/nvservice/cgi-bin/"
sed -i 's|var.proxies = ()|var.proxies = ("127.0.0.1" => "trust")|' "$work/lighttpd/usr/share/nvservice/deploy/lighttpd.conf"
sed -i 's|# set_real_ip_from 192.0.2.7|set_real_ip_from 127.0.0.1|' "$work/nginx/usr/share/nvservice/deploy/nginx.conf"
start_server lighttpd
start_server nginx
start_balancer
NV_CONNECT_TO=service.norvane.example:80:127.0.0.1:$http,service.norvane.example:443:127.0.0.1:$https \
  SSL_CERT_FILE=$work/nginx/etc/tls/server.pem "$build/nvservice-load" 0 "$requests" "$at_a_time" 0 4 &
readonly load=$!
for ((step = 0; ; ++step)); do
  sleep 2
  kill -0 $load 2>/dev/null || break
  ${steps[step % ${#steps[@]}]}
done
echo "  meanwhile $step steps, in turn $(printf '%s, ' "${steps[@]}")and so on"
wait $load
