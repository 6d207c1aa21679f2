#!/usr/bin/env bash
# check-bundle-macos.sh APP [universal]: on a Mac, checks a built Ostrel.app: its signature, what it needs of the system,
# and that it starts, stays, and leaks nothing when its settings are opened again and again. Ostrel must not run yet.
source "$(dirname "$0")/lib.sh"
on_mac || die "this needs a Mac"
[ $# -ge 1 ] || die "which application?"
app=$1
program=$app/Contents/MacOS/Ostrel
! pgrep -x Ostrel >/dev/null || die "quit Ostrel first"

say "Signature"
codesign --verify --deep --strict --verbose=2 "$app"
signature=$(codesign --display --verbose=2 "$app" 2>&1)
identifier=$(plutil -extract CFBundleIdentifier raw "$app/Contents/Info.plist")
grep -qx "Identifier=$identifier" <<<"$signature" || die "signed as something else: $signature"
grep -q 'Sealed Resources' <<<"$signature" || die "the resources are not sealed: $signature"
plutil -lint "$app/Contents/Info.plist"

say "What it needs"
architectures=$(lipo -archs "$program")
echo "$architectures"
[ "${2:-}" != universal ] || lipo "$program" -verify_arch arm64 x86_64
for architecture in $architectures; do
  oldest=$(vtool -arch "$architecture" -show-build "$program" | awk '$1 == "minos" { print $2 }')
  [ "$oldest" = 13.0 ] || die "$architecture needs macOS $oldest"
done
others=$(otool -L "$program" | awk '/^\t/ && $1 !~ "^(/System/Library|/usr/lib)/" { print $1 }')
[ -z "$others" ] || die "linked with what the system does not bring: $others"

say "Life"
reports() { find "$HOME/Library/Logs/DiagnosticReports" -name 'Ostrel*' 2>/dev/null | sort; }
former_reports=$(reports)
open "$app"
pid=
for _ in {1..100}; do
  pid=$(pgrep -x Ostrel) && break
  sleep 0.1
done
[ -n "$pid" ] || die "it does not start"
trap 'kill "$pid"' EXIT
sleep 5
kill -0 "$pid" || die "it did not live for five seconds"
kind=$(lsappinfo info -only ApplicationType "$pid")
[[ $kind == *UIElement* ]] || die "it is no accessory: $kind"

# What the frameworks keep from the first opening is theirs; what grows with each is ours.
open_settings() {
  local tab
  for tab in general displays exclude about general displays exclude about general displays; do "$program" settings $tab; done
}
leaks_found() { leaks "$pid" | sed -n 's/^Process [0-9]*: \([0-9]*\) leaks\{0,1\} for .*/\1/p' || true; }
open_settings
first=$(leaks_found)
open_settings
second=$(leaks_found)
[ -n "$first" ] && [ -n "$second" ] || die "leaks says nothing"
echo "$first leaks after ten openings of the settings, $second after twenty"
[ "$second" -le "$first" ] || { leaks "$pid" || true; die "it leaks"; }
[ "$(reports)" = "$former_reports" ] || die "it has crashed: $(reports)"
say "The bundle is whole"
