#!/usr/bin/env bash
# Runs the local account and map shop service behind a real web server, for the demo, tests and experiments.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
PATH=$PATH:/usr/sbin:/sbin

readonly service_host=${NV_SERVICE_HOST:-service.norvane.example}
readonly web_host=${NV_WEB_HOST:-www.norvane.example}
readonly session_seconds=${NV_SERVICE_SESSION_SECONDS:-3600}
readonly kbytes_per_second=${NV_SERVICE_KBYTES_PER_SECOND:-0}
readonly processes=${NV_SERVICE_PROCESSES:-4}
readonly accounts_per_address=${NV_SERVICE_ACCOUNTS_PER_ADDRESS:-20}
readonly certificate_days=2
readonly start_tries=20    # of finding two free ports
readonly answer_tries=100  # tenths of a second
readonly stop_tries=100    # tenths of a second

usage() {
  cat <<TEXT
Usage: service.sh start DIR   start the service; keep everything it needs and writes in DIR
       service.sh env DIR     print the environment for programs that are to use the running service
       service.sh stop DIR    end the service and wait until it has ended; DIR stays for you to look at or delete
       service.sh --help

"start" prints the environment, too:  eval "\$(service/service.sh start /tmp/nv)"
Starting a running service and stopping one that does not run do nothing. The service listens on loopback only, on
free ports of its own choosing, and needs no root. DIR is made if it is missing; it has to be yours and closed to
others (mode 0700), because it holds keys and accounts, and what "env" prints is made from it.

In DIR: ca.pem (throw-away certificate authority, made anew at each start, its key not kept), accounts.sqlite (the
accounts), www/ (pages and files), log/ (access.log, error.log, cgi.log), run/ (sockets, counters), lighttpd.conf, pid.

Environment:
  NV_BUILD_DIR                  build tree with service/cgi-bin/svcapp.cgi (else build/release, build/dev)
  NV_SERVICE_HOST               name of the service host (now $service_host)
  NV_WEB_HOST                   name of the host of the vendor's pages (now $web_host)
  NV_SERVICE_DATABASE           where the accounts are (else accounts.sqlite in DIR)
  NV_SERVICE_PRODUCTS           the products on offer (else service/data/products.tsv)
  NV_SERVICE_PORTS              the two ports of HTTP and HTTPS (else free ones of its own choosing)
  NV_SERVICE_SESSION_SECONDS    for how long a session token is good (now $session_seconds)
  NV_SERVICE_KBYTES_PER_SECOND  most that a connection gets, to have time to watch; 0: no limit (now $kbytes_per_second)
  NV_SERVICE_ACCOUNTS_PER_ADDRESS  new accounts from an address in a quarter of an hour (now $accounts_per_address)
  NV_SERVICE_PROCESSES          processes of each program, which answer as many requests at a time (now $processes)

Exit code: 0 done, 1 failed, 2 wrong arguments, 3 the service does not run ("env").
TEXT
}

fail() { echo "service.sh: $*" >&2; exit 1; }

# The process in the pid file, if it is still our server: a process number can have gone to another program.
running_pid() {
  local pid
  pid=$(cat "$dir/pid" 2>/dev/null) || return 1
  [[ $pid =~ ^[0-9]+$ ]] || return 1
  tr '\0' '\n' 2>/dev/null <"/proc/$pid/cmdline" | grep -qxF "$dir/lighttpd.conf" || return 1
  echo "$pid"
}

find_cgi_bin() {
  local build
  for build in ${NV_BUILD_DIR:+"$NV_BUILD_DIR"} "$here/../build/release" "$here/../build/dev" "$here/.."; do
    [ -x "$build/service/cgi-bin/svcapp.cgi" ] || continue
    (cd "$build/service/cgi-bin" && pwd)
    return
  done
  fail "no build tree with service/cgi-bin/svcapp.cgi; build first, or set NV_BUILD_DIR"
}

make_certificates() {
  rm -rf "$dir/tls" && mkdir "$dir/tls"
  local -r tls=$dir/tls
  local -r key=(-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes)
  {
    openssl req -x509 "${key[@]}" -keyout "$tls/ca.key" -out "$dir/ca.pem" -days $certificate_days \
      -subj "/CN=Throw-away authority of a local service" -addext "keyUsage=critical,keyCertSign"
    openssl req "${key[@]}" -keyout "$tls/server.key" -out "$tls/server.csr" -subj "/CN=$service_host"
    openssl x509 -req -in "$tls/server.csr" -CA "$dir/ca.pem" -CAkey "$tls/ca.key" -days $certificate_days \
      -set_serial "0x$(openssl rand -hex 8)" -out "$tls/server.pem" \
      -extfile <(printf 'subjectAltName=DNS:%s,DNS:%s\nbasicConstraints=critical,CA:FALSE\n' "$service_host" "$web_host")
  } 2>"$dir/log/openssl.log" || fail "cannot make certificates; see $dir/log/openssl.log"
  rm "$tls/ca.key" "$tls/server.csr"
}

# The pages, and a file for each product. The files' bytes look random and are the same on every machine.
make_www() {
  mkdir -p "$dir/www"
  cp -R "$here/pages/." "$dir/www/"
  local number file kibibytes path
  while IFS=$'\t' read -r number _ _ file kibibytes _; do
    [[ $number == \#* ]] && continue
    path=$dir/www/$file
    [ -e "$path" ] && continue
    mkdir -p "${path%/*}"
    head -c $((kibibytes * 1024)) /dev/zero |
      openssl enc -aes-128-ctr -nopad -K "$(printf '%032d' 0)" -iv "$(printf '%032d' "$number")" -out "$path"
  done <"$here/data/products.tsv"
}

# The operators' configuration, with our own values at its top.
write_configuration() {
  local -r cgi_bin=$1 http_port=$2 https_port=$3
  local program
  {
    cat <<CONFIGURATION
server.breakagelog = "$dir/log/cgi.log"
var.spool = "$dir/run"
var.logs = "$dir/log"
var.pages = "$dir/www"
var.certificate = "$dir/tls/server.pem"
var.key = "$dir/tls/server.key"
var.address = "127.0.0.1"
var.http_port = $http_port
var.https_port = "$https_port"
var.kbytes_per_second = $kbytes_per_second
var.proxies = ()
var.monitors = "^127\.0\.0\.1$"
CONFIGURATION
    for program in svcapp svcuser mapstore2; do # here the server starts them
      echo "var.$program = ((\"bin-path\" => \"$cgi_bin/$program.cgi\", \"socket\" => \"$dir/run/$program.socket\"," \
        '"max-procs" => 1, "listen-backlog" => 1024, "check-local" => "disable"))'
    done
    sed '1,/^$/d' "$here/deploy/lighttpd.conf"
  } >"$dir/lighttpd.conf"
}

# True once the map shop program answers by HTTP (a GET is refused with 405, by the program itself) and a page
# arrives over TLS with a certificate that ca.pem vouches for.
answers() {
  local -r http_port=$1 https_port=$2
  local line
  { exec 3<>"/dev/tcp/127.0.0.1/$http_port"; } 2>/dev/null || return 1
  printf 'GET /cgi-bin/mapstore2.cgi HTTP/1.0\r\nHost: %s\r\n\r\n' "$service_host" >&3
  IFS= read -r -t 5 line <&3 || line=
  exec 3>&-
  [[ $line == *" 405 "* ]] || return 1
  printf 'GET /forgot.htm HTTP/1.0\r\nHost: %s\r\n\r\n' "$service_host" |
    timeout 5 openssl s_client -connect "127.0.0.1:$https_port" -servername "$service_host" \
      -verify_hostname "$service_host" -CAfile "$dir/ca.pem" -verify_return_error -quiet 2>/dev/null |
    grep -q '^HTTP/1.. 200 '
}

# A port below the range that the kernel takes ports from, so that it has given this one to nobody.
random_port() { echo $((10000 + RANDOM % 20000)); }

# Starts the server on two ports; fails if one of them is taken, so that another pair can be tried.
launch() {
  local -r http_port=$1 https_port=$2
  local i
  # A session of its own: closing the terminal or Ctrl-C in it does not end the service.
  setsid lighttpd -D -f "$dir/lighttpd.conf" </dev/null >>"$dir/log/lighttpd.log" 2>&1 9>&- &
  local -r pid=$!
  echo "$pid" >"$dir/pid"
  for ((i = 0; i < answer_tries; ++i)); do
    if ! kill -0 "$pid" 2>/dev/null; then
      wait "$pid" || true
      rm -f "$dir/pid"
      return 1
    fi
    if answers "$http_port" "$https_port"; then
      echo "$http_port $https_port" >"$dir/ports"
      return 0
    fi
    sleep 0.1
  done
  end "$pid"
  fail "the server does not answer; see $dir/log/"
}

# Ends the server and waits for its end. If it does not react, it is killed after half of the time.
end() {
  local i
  kill -TERM "$1" 2>/dev/null || true
  for ((i = 0; i < stop_tries; ++i)); do
    running_pid >/dev/null || break
    ((i == stop_tries / 2)) && kill -KILL "$1" 2>/dev/null
    sleep 0.1
  done
  rm -f "$dir/pid"
}

print_environment() {
  [[ $(<"$dir/ports") =~ ^([0-9]{1,5})\ ([0-9]{1,5})$ ]] || fail "$dir/ports does not hold two port numbers"
  local -r http_port=${BASH_REMATCH[1]} https_port=${BASH_REMATCH[2]}
  local host connect_to=()
  for host in "$service_host" "$web_host"; do
    connect_to+=("$host:80:127.0.0.1:$http_port" "$host:443:127.0.0.1:$https_port")
  done
  printf "export NV_CONNECT_TO='%s'\n" "$(IFS=,; echo "${connect_to[*]}")"
  printf "export SSL_CERT_FILE='%s'\n" "$dir/ca.pem"
}

start() {
  running_pid >/dev/null && { print_environment; return; }
  for program in lighttpd openssl; do
    command -v $program >/dev/null || fail "$program is missing; scripts/install-packages.sh installs it"
  done
  local cgi_bin http_port https_port try program
  cgi_bin=$(find_cgi_bin)
  mkdir -p "$dir/log" "$dir/run"
  make_certificates
  make_www
  # For the programs, which get the server's environment.
  export NV_SERVICE_PROCESSES=$processes NV_SERVICE_SESSION_SECONDS=$session_seconds \
    NV_SERVICE_ACCOUNTS_PER_ADDRESS=$accounts_per_address NV_SERVICE_DATABASE=${NV_SERVICE_DATABASE:-$dir/accounts.sqlite} \
    NV_SERVICE_PRODUCTS=${NV_SERVICE_PRODUCTS:-$here/data/products.tsv} NV_SERVICE_PRODUCTS_INDEX=$dir/products.index \
    NV_SERVICE_COUNTERS=$dir/run/counters
  for ((try = 0; try < start_tries; ++try)); do
    read -r http_port https_port <<<"${NV_SERVICE_PORTS:-$(random_port) $(random_port)}"
    [ "$http_port" != "$https_port" ] || continue
    write_configuration "$cgi_bin" "$http_port" "$https_port"
    launch "$http_port" "$https_port" && { print_environment; return; }
  done
  fail "the server does not start; see $dir/log/"
}

# If others could write to the folder, they could put their keys there, or make us end another program.
refuse_what_others_can_reach() {
  local owner mode
  for owner in "$(stat -c %u "${1%/}")" "$(stat -L -c %u "$1")"; do # of a symbolic link, and of the folder
    [[ $owner == "$EUID" ]] || fail "$1 is not yours"
  done
  mode=$(stat -L -c %a "$1")
  [[ $mode == *00 ]] || fail "$1 is open to others (mode $mode); chmod 700 closes it"
}

[[ ${1:-} == --help || ${1:-} == -h ]] && { usage; exit; }
[[ $# == 2 && $1 =~ ^(start|env|stop)$ ]] || { usage >&2; exit 2; }
umask 077
if [[ $1 == start ]]; then mkdir -p "$2"; fi
[ -d "$2" ] || { [[ $1 == stop ]] && exit 0; echo "service.sh: $2 is no folder" >&2; exit 3; }
refuse_what_others_can_reach "$2"
dir=$(cd "$2" && pwd)
[[ $dir$here == *[\"\'\\]* || $dir$here == *$'\n'* ]] && fail "the names of the folders cannot hold \" ' \\ or a line feed"
[[ $service_host$web_host =~ ^[A-Za-z0-9.-]+$ ]] || fail "NV_SERVICE_HOST and NV_WEB_HOST are no host names"
[[ $session_seconds$kbytes_per_second$processes$accounts_per_address =~ ^[0-9]+$ ]] ||
  fail "a variable that takes a number holds none"

# One start or stop at a time.
exec 9>"$dir/lock"
flock 9

case $1 in
start) start ;;
env) running_pid >/dev/null || { echo "service.sh: no service runs in $dir" >&2; exit 3; }; print_environment ;;
stop) if pid=$(running_pid); then end "$pid"; else rm -f "$dir/pid"; fi ;;
esac
