#!/usr/bin/env bash
# package-macos.sh: on a Mac, builds a universal Ostrel.app, signs and notarises it and puts it on a disk image. All of it
# is optional; without a certificate the application is signed ad hoc, and opens on other Macs only against a warning.
#
#   OSTREL_SIGNING_IDENTITY="Developer ID Application: …"   certificate in the keychain (security find-identity)
#   OSTREL_NOTARY_PROFILE=…                                 profile stored by xcrun notarytool store-credentials
#   OSTREL_UPDATE_FRAMEWORK=…/Sparkle.framework             embeds the update framework, then also
#   OSTREL_UPDATE_PUBLIC_KEY=… OSTREL_UPDATE_FEED=https://…
#   OSTREL_BUILD_NUMBER=…                                   1 by default
source "$(dirname "$0")/lib.sh"

on_mac || die "this needs a Mac"
for tool in cmake xcrun codesign hdiutil spctl; do
  command -v "$tool" >/dev/null || die "$tool is missing; install the Xcode command line tools and CMake"
done
identity=${OSTREL_SIGNING_IDENTITY:-}
profile=${OSTREL_NOTARY_PROFILE:-}
framework=${OSTREL_UPDATE_FRAMEWORK:-}
if [ -n "$identity" ]; then
  security find-identity -v -p codesigning | grep -qF "$identity" || die "no valid certificate '$identity' in the keychain"
elif [ -n "$profile" ]; then
  die "notarising needs OSTREL_SIGNING_IDENTITY, a Developer ID Application certificate"
fi
if [ -n "$framework" ]; then
  [ -d "$framework" ] || die "no update framework at $framework"
  [ -n "${OSTREL_UPDATE_PUBLIC_KEY:-}" ] || die "the update framework needs OSTREL_UPDATE_PUBLIC_KEY"
  [ -n "${OSTREL_UPDATE_FEED:-}" ] || die "the update framework needs OSTREL_UPDATE_FEED"
fi

# notarise FILE: has Apple check it. A refusal says why.
notarise() {
  local answer status
  answer=$(xcrun notarytool submit "$1" --keychain-profile "$profile" --wait --output-format json)
  status=$(plutil -extract status raw -o - - <<<"$answer")
  [ "$status" != Accepted ] || return 0
  xcrun notarytool log "$(plutil -extract id raw -o - - <<<"$answer")" --keychain-profile "$profile" >&2
  die "$(basename "$1") is not notarised: $status"
}

say "Building for arm64 and x86_64"
build=build/package
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64" \
  "-DOSTREL_BUILD_NUMBER=${OSTREL_BUILD_NUMBER:-1}" "-DOSTREL_UPDATE_FRAMEWORK=$framework" \
  "-DOSTREL_UPDATE_PUBLIC_KEY=${OSTREL_UPDATE_PUBLIC_KEY:-}" ${OSTREL_UPDATE_FEED:+"-DOSTREL_UPDATE_FEED=$OSTREL_UPDATE_FEED"}
cmake --build "$build" --parallel "$(processors)" --target ostrel
app=$build/Ostrel.app
lipo "$app/Contents/MacOS/Ostrel" -verify_arch arm64 x86_64

say "Signing"
if [ -n "$identity" ]; then
  packaging/macos/sign.sh "$app" --options runtime --timestamp
else
  echo "No OSTREL_SIGNING_IDENTITY: it stays signed ad hoc."
fi
codesign --verify --deep --strict --verbose=2 "$app"

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
if [ -n "$profile" ]; then
  say "Notarising the application"
  ditto -c -k --keepParent "$app" "$stage/Ostrel.zip"
  notarise "$stage/Ostrel.zip"
  # Before it goes onto the image, so that a copy of it opens without asking Apple, too.
  xcrun stapler staple "$app"
fi

say "Disk image"
version=$(/usr/libexec/PlistBuddy -c "Print :CFBundleShortVersionString" "$app/Contents/Info.plist")
mkdir "$stage/image"
cp -R "$app" "$stage/image/"
ln -s /Applications "$stage/image/Applications"
image=$build/Ostrel-$version.dmg
hdiutil create -volname Ostrel -srcfolder "$stage/image" -fs HFS+ -format UDZO -ov "$image"
[ -z "$identity" ] || codesign --timestamp --sign "$identity" "$image"

if [ -n "$profile" ]; then
  say "Notarising the image"
  notarise "$image"
  xcrun stapler staple "$image"
  spctl --assess --type open --context context:primary-signature --verbose=2 "$image"
fi
printf '\nMade %s\n' "$image"
