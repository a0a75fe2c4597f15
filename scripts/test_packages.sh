#!/usr/bin/env bash
# Makes the Debian packages, looks at them with lintian, installs them in a root of their own, builds and runs a host
# there, removes them and looks what is left. Goes on through sudo when not root, once the packages are made.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/bare_root.sh

if [[ ${1:-} != --made ]]; then
  scripts/make-packages.sh
  lintian --fail-on error,warning build/packages/*.deb
  ((EUID == 0)) || exec sudo "$PWD/scripts/test_packages.sh" --made
fi

make_work
readonly root=$work/root
make_root "$root" ca-certificates,cmake,gcc,libc6-dev,make,pkg-config
mkdir "$root/trial"
cp build/packages/*.deb examples/minimal/* scripts/try_host.sh "$root/trial"

state() { (cd "$root" && find . -path ./trial -prune -o -path './var/*' -prune -o -path './run/*' -prune -o -print | sort); }
install() {
  within "$root" /trial sh -c "apt-get install -q -y --no-install-recommends $1 >log 2>&1 || { cat log; exit 1; }"
}
before=$(state)
install './libnvsupport1_*.deb ./libnvsupport-dev_*.deb'
within "$root" /trial env HOME=/trial ./try_host.sh . # hosts make the folder for documents
! within "$root" / dpkg-query -W '*qt6*' >/dev/null 2>&1 || { echo "the module wants Qt" >&2; exit 1; }
install './*.deb'
within "$root" / env HOME=/trial nvhost --version
within "$root" / nvcatalogue --version
within "$root" / sh -c 'apt-get purge -q -y --autoremove "*nvsupport*" >/dev/null 2>&1'
diff <(echo "$before") <(state) || { echo "the packages leave this behind" >&2; exit 1; }
echo "nothing is left of the packages"
