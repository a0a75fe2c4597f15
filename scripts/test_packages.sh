#!/usr/bin/env bash
# Makes the Debian packages, those of the library twice to see the same bytes, looks at them with lintian, installs them in
# a root of their own, runs the tests that come with the source package there, removes them and looks what is left. Goes
# on through sudo when not root, once the packages are made.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/bare_root.sh

if [[ ${1:-} != --made ]]; then
  scripts/make-packages.sh
  # No bug of a tracker asks for these packages.
  lintian --fail-on error,warning --suppress-tags initial-upload-closes-no-bugs build/packages/*.changes

  # Those of the library once more: another path, time, zone and mask of modes, and no objects from a cache.
  make_work
  mkdir "$work/else"
  dpkg-source -x build/packages/*.dsc "$work/else/where" >/dev/null
  (cd "$work/else/where" && umask 027 &&
    export TZ=Asia/Kathmandu CCACHE_DISABLE=1 DEB_BUILD_PROFILES=pkg.nvsupport.library &&
    dpkg-buildpackage --build=binary -us -uc >"$work/log" 2>&1) || { tail -n 40 "$work/log"; exit 1; }
  for package in "$work"/else/*.deb; do
    cmp "$package" "build/packages/${package##*/}"
  done

  for package in build/packages/*.deb; do
    dpkg-deb -x "$package" "$work/installed"
  done
  find "$work/installed/usr/share/doc" -name '*.md' -print0 | xargs -0 scripts/check-links.sh
  rm -rf "$work"
  ask=(-n) # nobody answers a question of what runs in the background
  [[ ! -t 0 ]] || ask=()
  ((EUID == 0)) || ! command -v sudo >/dev/null || exec sudo "${ask[@]}" "$PWD/scripts/test_packages.sh" --made
fi

needs_own_root
make_work
readonly root=$work/root
# libcurl, which cmake brings along, and nginx keep ca-certificates and ssl-cert, which they can use. Systemd, which the
# service's package asks for its users and folders, leaves files of its own.
make_root "$root" "ca-certificates,ssl-cert,systemd,$(sed -n 's/^Depends: @, //p' debian/tests/control | paste -sd , | tr -d ' ')"
mkdir "$root/trial" "$root/trial/files"
cp build/packages/*.deb "$root/trial"
dpkg-source -x build/packages/*.dsc "$root/trial/source" >/dev/null

# The user of a service stays by Debian's custom, and so do former versions of the lists of users.
state() {
  (cd "$root" && find . -path ./trial -prune -o -path './var/*' -prune -o -path './run/*' -prune -o \
    -path './etc/*-' -prune -o -print | sort)
}
install() {
  within "$root" /trial sh -c "apt-get install -q -y --no-install-recommends $1 >log 2>&1 || { cat log; exit 1; }"
}
test_from_source() { within "$root" /trial/source env HOME=/trial AUTOPKGTEST_TMP=/trial/files "debian/tests/$1"; }
before=$(state)
install './libnvsupport1_*.deb ./libnvsupport-dev_*.deb'
test_from_source host # hosts make the folder for documents
! within "$root" / dpkg-query -W '*qt6*' >/dev/null 2>&1 || { echo "the module wants Qt" >&2; exit 1; }
install './*.deb'
test_from_source service
within "$root" / nvcatalogue --version
within "$root" / sh -c 'apt-get purge -q -y --autoremove "*nvsupport*" >/dev/null 2>&1'
diff <(echo "$before") <(state) || { echo "the packages leave this behind" >&2; exit 1; }
echo "nothing is left of the packages"
