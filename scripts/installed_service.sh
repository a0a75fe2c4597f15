# shellcheck shell=bash disable=SC2154
# The service as it is installed, on loopback ports and in folders of a script's own, for scripts that source this file.
# The caller sets `root` (an empty folder), `http` and `https` (ports), may set `more_settings` (NAME=value...), and in
# the end calls stop.
PATH=$PATH:/usr/sbin
servers=()
more_settings=()
without_ipv6=
grep -qs ' lo$' /proc/net/if_inet6 || without_ipv6='/\[::1\]/d'

# install_service BUILD-FOLDER: what operators install and bring along, the certificate among it.
install_service() {
  cmake --install "$1" --component service --prefix "$root/usr" >/dev/null
  mkdir "$root/state" "$root/logs" "$root/run" "$root/etc" "$root/etc/tls"
  cp "$root/usr/share/nvservice/data/products.tsv" "$root/etc"
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj /CN=service.norvane.example \
    -addext subjectAltName=DNS:service.norvane.example -keyout "$root/etc/tls/server.key" \
    -out "$root/etc/tls/server.pem" 2>"$root/logs/openssl"
}

# An installed file with the script's paths for the operators' own, and two ports.
adapt() {
  sed -e "s|/etc/nvservice|$root/etc|g" -e "s|/var/lib/nvservice|$root/state|g" \
    -e "s|/var/log/nvservice|$root/logs|g" -e "s|/run/nvservice|$root/run|g" -e "s|/var/spool|$root/run|g" \
    -e "s|0\.0\.0\.0|127.0.0.1|" -e "s|http_port = 80|http_port = $http|" -e "s|https_port = \"443\"|https_port = \"$https\"|" \
    -e "s|listen 80;|listen 127.0.0.1:$http;|" -e "s|listen 443 ssl;|listen 127.0.0.1:$https ssl;|" \
    -e "s|\[::\]:80|[::1]:$http|" -e "s|\[::\]:443|[::1]:$https|" -e "$without_ipv6" "$root/usr/$1"
}
start() { setsid "$@" </dev/null >>"$root/logs/servers" 2>&1 & servers+=($!); }
unit_command() { adapt "lib/systemd/system/$1" | sed -n 's/^ExecStart=//p'; }

# The socket unit opens the sockets elsewhere.
start_programs() {
  local program command
  for program in svcapp svcuser mapstore2; do
    rm -f "$root/run/$program.socket"
    command=$(unit_command nvservice@.service)
    # shellcheck disable=SC2046
    start env $(adapt share/nvservice/deploy/settings | grep -v '^#') "${more_settings[@]}" \
      spawn-fcgi -n -s "$root/run/$program.socket" -- "${command//%i/$program}"
  done
}

start_lighttpd() {
  adapt share/nvservice/deploy/lighttpd.conf >"$root/etc/lighttpd.conf"
  # shellcheck disable=SC2046
  start $(unit_command nvservice-lighttpd.service)
}

# run_nginx: with the configuration that comes from standard input for the http block.
run_nginx() {
  {
    ((EUID == 0)) && echo "user root;"
    echo "daemon off; pid $root/run/nginx.pid; events { worker_connections 4096; } http {"
    for area in client_body proxy fastcgi uwsgi scgi; do echo "${area}_temp_path $root/run/$area;"; done
    cat
    echo "}"
  } >"$root/etc/nginx.conf"
  start nginx -e "$root/logs/nginx" -c "$root/etc/nginx.conf" -p "$root"
}
start_nginx() { run_nginx < <(adapt share/nvservice/deploy/nginx.conf); }

# Ends what has been started, each with its children.
stop() {
  ((${#servers[@]} == 0)) || kill -- "${servers[@]/#/-}" 2>/dev/null || true
  servers=()
  wait
}
