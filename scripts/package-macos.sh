#!/usr/bin/env bash
# package-macos.sh: on a Mac, builds a universal Ostrel.app, signs and notarises it and puts it on a disk image.
#
#   OSTREL_SIGNING_IDENTITY="Developer ID Application: …"   certificate in the keychain (security find-identity)
#   OSTREL_NOTARY_PROFILE=…                                 profile stored by xcrun notarytool store-credentials
#   OSTREL_UPDATE_FRAMEWORK=…/Sparkle.framework             optional: embeds the update framework, then also
#   OSTREL_UPDATE_PUBLIC_KEY=… OSTREL_UPDATE_FEED=https://…
#   OSTREL_BUILD_NUMBER=…                                   optional, 1 by default
source "$(dirname "$0")/lib.sh"

[ "$(uname)" = Darwin ] || die "this needs a Mac"
for tool in cmake xcrun codesign hdiutil spctl; do
  command -v "$tool" >/dev/null || die "$tool is missing; install the Xcode command line tools and CMake"
done
identity=${OSTREL_SIGNING_IDENTITY:-}
profile=${OSTREL_NOTARY_PROFILE:-}
framework=${OSTREL_UPDATE_FRAMEWORK:-}
[ -n "$identity" ] || die "set OSTREL_SIGNING_IDENTITY to a Developer ID Application certificate"
[ -n "$profile" ] || die "set OSTREL_NOTARY_PROFILE to a profile of xcrun notarytool"
security find-identity -v -p codesigning | grep -qF "$identity" || die "no valid certificate '$identity' in the keychain"
if [ -n "$framework" ]; then
  [ -d "$framework" ] || die "no update framework at $framework"
  [ -n "${OSTREL_UPDATE_PUBLIC_KEY:-}" ] || die "the update framework needs OSTREL_UPDATE_PUBLIC_KEY"
  [ -n "${OSTREL_UPDATE_FEED:-}" ] || die "the update framework needs OSTREL_UPDATE_FEED"
fi

say "Building for arm64 and x86_64"
build=build/package
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64" -DCMAKE_OSX_DEPLOYMENT_TARGET=13.0 \
  "-DOSTREL_BUILD_NUMBER=${OSTREL_BUILD_NUMBER:-1}" "-DOSTREL_UPDATE_FRAMEWORK=$framework" \
  "-DOSTREL_UPDATE_PUBLIC_KEY=${OSTREL_UPDATE_PUBLIC_KEY:-}" ${OSTREL_UPDATE_FEED:+"-DOSTREL_UPDATE_FEED=$OSTREL_UPDATE_FEED"}
cmake --build "$build" --target ostrel
app=$build/Ostrel.app
lipo "$app/Contents/MacOS/Ostrel" -verify_arch arm64 x86_64

# From the inside out: a signature covers what lies within it, so whatever is signed later must not change what was
# signed before. Helpers of the framework keep their own entitlements.
say "Signing"
sign() { codesign --force --options runtime --timestamp --sign "$identity" "$@"; }
embedded=$app/Contents/Frameworks/Sparkle.framework
if [ -d "$embedded" ]; then
  for helper in XPCServices/Installer.xpc XPCServices/Downloader.xpc Autoupdate Updater.app; do
    [ -e "$embedded/Versions/Current/$helper" ] || continue
    sign --preserve-metadata=entitlements "$embedded/Versions/Current/$helper"
  done
  sign "$embedded"
fi
sign --entitlements packaging/macos/Ostrel.entitlements "$app"
codesign --verify --deep --strict --verbose=2 "$app"

say "Disk image"
version=$(/usr/libexec/PlistBuddy -c "Print :CFBundleShortVersionString" "$app/Contents/Info.plist")
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cp -R "$app" "$stage/"
ln -s /Applications "$stage/Applications"
image=$build/Ostrel-$version.dmg
hdiutil create -volname Ostrel -srcfolder "$stage" -fs HFS+ -format UDZO -ov "$image"
codesign --timestamp --sign "$identity" "$image"

say "Notarising"
xcrun notarytool submit "$image" --keychain-profile "$profile" --wait
xcrun stapler staple "$image"
spctl --assess --type open --context context:primary-signature --verbose=2 "$image"
printf '\nMade %s\n' "$image"
