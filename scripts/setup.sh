#!/usr/bin/env bash
# setup.sh [GROUP...]: installs what is missing of the named groups of packages.txt (default: build), asking nobody.
# The one place that knows how this system gets its packages.
source "$(dirname "$0")/lib.sh"
[ $# -gt 0 ] || set -- build
if on_mac; then
  xcode-select -p >/dev/null 2>&1 || die "the Xcode command line tools are missing: xcode-select --install"
  command -v cmake >/dev/null || die "CMake is missing: install it from cmake.org or with your package manager"
  exit 0
fi

packages_of() {
  awk -v group="[$1]" '/^\[/ { inside = $0 == group; next } inside && NF && !/^#/' scripts/packages.txt
}

missing=()
for group in "$@"; do
  packages=$(packages_of "$group")
  [ -n "$packages" ] || die "packages.txt has no group '$group'"
  for package in $packages; do
    status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
  done
done
[ ${#missing[@]} -gt 0 ] || exit 0

say "Installing ${missing[*]}"
command -v apt-get >/dev/null || die "this system has no apt-get; install these by hand: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || die "neither root nor sudo here; as root: apt-get install ${missing[*]}"
  as_root=(sudo)
fi
apt() { "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y "$@" </dev/null; }
apt update
apt install --no-install-recommends "${missing[@]}"
