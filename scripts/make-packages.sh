#!/usr/bin/env bash
# Makes the source package and the Debian packages, debug symbols in packages of their own, into build/packages.
#
# make-packages.sh                  on this machine
# make-packages.sh --bare RELEASE   in a root that holds the base of a release of Debian and what debian/control asks for
set -euo pipefail
cd "$(dirname "$0")/.."
[[ ${1:-} != --bare ]] || release=$2
source scripts/bare_root.sh

number=$(sed -n 's/^#define NVSUPPORT_VERSION_[A-Z]* //p' include/nvsupport/nvsupport.h | paste -sd .)
version=$(dpkg-parsechangelog -S Version)
[[ ${version%-*} == "$number" ]] || { echo "debian/changelog begins with $version, the header has $number" >&2; exit 1; }

# The sources as a release has them, without debian/, which comes apart.
readonly packages=$PWD/build/packages name=nvsupport-$number
rm -rf "$packages"
mkdir -p "$packages/$name"
git ls-files -z -co --exclude-standard | xargs -0 cp -P --parents -t "$packages/$name"
tar -C "$packages" --exclude="$name/debian" --sort=name --owner=0 --group=0 --numeric-owner --mode=go=rX,u+w \
  --mtime="@$(dpkg-parsechangelog -S Timestamp)" -cJf "$packages/nvsupport_$number.orig.tar.xz" "$name"

if (($#)); then
  (cd "$packages/$name" && dpkg-buildpackage --build=source -us -uc -d)
  make_work
  make_root "$work/root" build-essential
  mkdir "$work/root/build"
  cp "$packages"/nvsupport_* "$work/root/build"
  within "$work/root" /build sh -euc '
    apt-get build-dep -q -y ./*.dsc >/dev/null
    dpkg-source -x ./*.dsc source
    cd source
    dpkg-buildpackage -us -uc'
  cp "$work"/root/build/*.* "$packages"
else
  # A compiler cache with a base folder would name the sources relative to it.
  (cd "$packages/$name" && CCACHE_BASEDIR='' dpkg-buildpackage -us -uc)
fi
rm -r "${packages:?}/$name"
ls "$packages"
