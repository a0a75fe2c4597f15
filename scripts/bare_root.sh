# A root of Debian's base alone, for scripts that source this file and try something on a machine with nothing else.
# Needs root and the package mmdebstrap. The caller may set `release`; else it is this machine's own.
this_release=$(. /etc/os-release && echo "$VERSION_CODENAME")
: "${release:=$this_release}"

# Ends a script that this machine gives no right to go on; scripts/test.sh shows the reason.
skip() {
  echo "skipped: $*"
  echo "$*" >"${NV_LEFT_OUT:-/dev/null}"
  exit 77
}

# Ends a script that cannot have a root of its own.
needs_own_root() {
  ((EUID == 0)) || skip "what needs a root of its own: this is not the user root"
  unshare --mount --pid --fork true 2>/dev/null || skip "what needs a root of its own: no mounts of one's own are allowed here"
}

# Runs a command that sees its own mounts and processes; they end with it, and nothing but files is left to remove.
apart_pid=
apart() {
  unshare --mount --pid --fork --kill-child "$@" &
  apart_pid=$!
  wait $apart_pid # not in the foreground, where a signal to this script would wait for the command's end
}

# Makes `work`, a folder that goes with the script, whatever ends it.
make_work() {
  work=$(mktemp -d)
  trap 'kill -KILL $apart_pid 2>/dev/null || true; rm -rf --one-file-system "$work"' EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
}

# make_root FOLDER PACKAGES [OPTION...]: packages separated by commas, beside Debian's base; options are mmdebstrap's.
make_root() {
  local mirror
  needs_own_root
  command -v mmdebstrap >/dev/null || { echo "mmdebstrap is missing" >&2; exit 1; }
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $this_release" | head -1)
  [[ -n $mirror ]] || { echo "the package sources of this machine name no $this_release" >&2; exit 1; }
  printf '== A bare root of %s from %s\n' "$release" "$mirror"
  apart mmdebstrap --mode=root --variant=minbase --skip=cleanup/apt/lists --dpkgopt=force-unsafe-io --include="$2" \
    "${@:3}" "$release" "$1" "$mirror" >"$1.log" 2>&1 ||
    { tail -20 "$1.log" >&2; exit 1; }
  # A package that is installed there starts no service here.
  printf '#!/bin/sh\nexit 101\n' >"$1/usr/sbin/policy-rc.d"
  chmod +x "$1/usr/sbin/policy-rc.d"
}

# within FOLDER DIRECTORY COMMAND...: runs a command in a directory of the root.
within() {
  apart bash -euc '
    mount --bind "$1" "$1"
    cd "$1"
    mount -t proc proc proc
    mount --rbind /dev dev
    mount -t tmpfs tmpfs dev/shm
    exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM="${TERM:-dumb}" DEBIAN_FRONTEND=noninteractive \
      chroot . sh -c "cd \"\$0\" && exec \"\$@\"" "${@:2}"' bash "$@"
}
