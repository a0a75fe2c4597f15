#!/usr/bin/env bash
# Tries the commands of the README on a bare machine: makes a root with Debian's base and git, and nothing else, in a
# temporary folder, clones what is committed here into it, runs them there and removes it. Needs root and the packages
# mmdebstrap and git.
#
# try_bare.sh [RELEASE]              the commands of the README (half an hour on two cores), on bookworm, trixie or what
#                                    this machine has
# try_bare.sh [RELEASE] COMMAND...   this command instead, in the clone, for example `scripts/install-packages.sh test`
set -euo pipefail
cd "$(dirname "$0")/.."
case ${1:-} in bookworm | trixie) release=$1 && shift ;; esac
source scripts/bare_root.sh

make_work
make_root "$work/root" git
git clone -q --no-hardlinks . "$work/root/root/nvsupport"
if (($#)); then
  within "$work/root" /root/nvsupport "$@"
else
  for command in scripts/demo.sh scripts/test.sh; do
    printf '== %s\n' "$command"
    within "$work/root" /root/nvsupport $command
  done
fi
