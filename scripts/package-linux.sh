#!/usr/bin/env bash
# package-linux.sh [--twice]: makes build/package/ostrel_…deb of what is committed, for the Debian release that this is, and
# beside it an archive of the same files, to unpack into /usr/local. With --twice both are made again, in the same place,
# and have to come out the same to the byte.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build package
out=$PWD/build/package
commit=$(git rev-parse HEAD)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct "$commit")
export SOURCE_DATE_EPOCH
release=$(. /etc/os-release && echo "$VERSION_ID")
version=$(sed -n 's/^project(Ostrel VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
architecture=$(dpkg --print-architecture)
if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}; fi

# The tilde puts it before a package of the same version that a distribution makes itself, and 12's before 13's.
make_package() {
  local folder=$out/source
  rm -rf "$folder"
  git clone -q . "$folder"
  git -C "$folder" -c advice.detachedHead=false checkout -q "$commit"
  cp -r packaging/linux/debian "$folder/debian"
  # What is beside the sources is no change of them.
  echo /debian/ >>"$folder/.git/info/exclude"
  printf '/obj-*/\n' >>"$folder/.git/info/exclude"
  cat >"$folder/debian/changelog" <<EOF
ostrel ($version~deb$release) unstable; urgency=medium

  * See changelog.gz for what is new in $version.

 -- The Ostrel authors <ostrel@ostrel.example>  $(date -uRd "@$SOURCE_DATE_EPOCH")
EOF
  (cd "$folder" && DEB_BUILD_OPTIONS="parallel=$(processors) noautodbgsym" dpkg-buildpackage --build=binary -us -uc -d)
  local root=$folder/debian/ostrel
  tar --sort=name --mtime="@$SOURCE_DATE_EPOCH" --owner=0 --group=0 --numeric-owner --transform='s,^\./usr,.,' \
    -C "$root" -c ./usr | zstd -19 -q -f -o "$out/ostrel-$version-debian$release-$architecture.tar.zst"
}

package=ostrel_$version~deb${release}_$architecture.deb
files=("$package" "ostrel-$version-debian$release-$architecture.tar.zst")
say "Package of $version at ${commit::10}"
mkdir -p "$out"
make_package
program=$out/source/debian/ostrel/usr/bin/ostrel
if strings "$program" | grep -F "$out"; then die "the program knows where it was built"; fi

if [ "${1:-}" = --twice ]; then
  say "Once more"
  rm -rf "$out/first"
  mkdir "$out/first"
  (cd "$out" && mv "${files[@]}" first/)
  CCACHE_DISABLE=1 make_package
  for file in "${files[@]}"; do
    cmp "$out/first/$file" "$out/$file" || die "$file came out different"
  done
  rm -r "$out/first"
  echo "The same to the byte."
fi

say "Hardening"
# Debian 12 does not have control flow integrity among all its flags.
if [ "$release" -gt 12 ]; then hardening-check "$program"; else hardening-check --nocfprotection "$program"; fi
say "Lintian"
lintian --allow-root --fail-on error,warning --info "$out/$package"
echo "Nothing found."
printf '\nMade'
printf ' build/package/%s' "${files[@]}"
printf '\n'
