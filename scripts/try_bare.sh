#!/usr/bin/env bash
# Tries the commands of the README on a bare machine: makes a root with Debian's base and git, and nothing else, in a
# temporary folder, clones what is committed here into it, runs them there and removes it. Needs root and the packages
# debootstrap and git.
#
# try_bare.sh                the commands of the README (an hour or more on two cores)
# try_bare.sh COMMAND...     this command instead, in the clone, for example `scripts/install-packages.sh test`
set -euo pipefail
cd "$(dirname "$0")/.."

((EUID == 0)) || { echo "only root makes such a root" >&2; exit 1; }
command -v debootstrap >/dev/null || { echo "debootstrap is missing" >&2; exit 1; }

readonly release=bookworm
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $release" | head -1)
[[ -n $mirror ]] || { echo "the package sources of this machine name no $release" >&2; exit 1; }

work=$(mktemp -d)
readonly root=$work/root
# Everything is mounted for the programs below alone, and they and their mounts end with them: nothing but files is left
# to remove.
trap 'rm -rf --one-file-system "$work"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
apart() { unshare --mount --pid --fork --kill-child "$@"; }

printf '== A bare root from %s\n' "$mirror"
apart debootstrap --variant=minbase --include=git "$release" "$root" "$mirror" >"$work/log" 2>&1 ||
  { tail -20 "$work/log" >&2; exit 1; }
# A package that is installed there starts no service here.
printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
chmod +x "$root/usr/sbin/policy-rc.d"
git clone -q --no-hardlinks . "$root/root/nvsupport"

within() {
  printf '== %s\n' "$*"
  apart bash -euc '
    root=$1
    shift
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
    mount -t tmpfs tmpfs "$root/dev/shm"
    exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root TERM="${TERM:-dumb}" \
      chroot "$root" sh -c "cd /root/nvsupport && exec \"\$@\"" sh "$@"' bash "$root" "$@"
}

if (($#)); then
  within "$@"
else
  within scripts/demo.sh
  within scripts/test.sh
fi
