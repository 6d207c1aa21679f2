#!/usr/bin/env bash
# sign.sh APP [OPTION...]: signs Ostrel.app and what is embedded in it, with the certificate $OSTREL_SIGNING_IDENTITY or,
# without one, ad hoc. The OPTIONs go to codesign.
set -euo pipefail
(($# >= 1)) || { sed -n '2,3s/^# //p' "$0" >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
app=$1
shift
sign() { codesign --force --sign "${OSTREL_SIGNING_IDENTITY:--}" "$@"; }

# From the inside out: a signature covers what lies within it, so whatever is signed later must not change what was
# signed before. Helpers of the framework keep their own entitlements.
framework=$app/Contents/Frameworks/Sparkle.framework
if [ -d "$framework" ]; then
  for helper in XPCServices/Installer.xpc XPCServices/Downloader.xpc Autoupdate Updater.app; do
    [ -e "$framework/Versions/Current/$helper" ] || continue
    sign "$@" --preserve-metadata=entitlements "$framework/Versions/Current/$helper"
  done
  sign "$@" "$framework"
fi
# The entitlements switch the sandbox off: a sandboxed application gets neither an active event tap nor other
# applications' windows, and both are all that Ostrel does. They ask for no exception to the hardened runtime. (The reason
# stands here because the system refuses entitlements with comments in them.)
sign "$@" --entitlements "$here/Ostrel.entitlements" "$app"
