#!/usr/bin/env bash
# screenshots.sh: draws the pictures of the interface in docs/pictures anew, light and dark, at twice the size.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build pictures
build release ostrel_pictures
mkdir -p docs/pictures
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for scheme in light dark; do
  say "$scheme"
  # A configuration of its own, so that neither the person's consent nor their theme is in the picture.
  XDG_CONFIG_HOME=$folder DBUS_SESSION_BUS_ADDRESS=disabled: GTK_THEME=Adwaita:$scheme QT_SCALE_FACTOR=2 \
    QT_QPA_PLATFORM=offscreen build/release/ostrel_pictures docs/pictures -$scheme </dev/null
done
ls docs/pictures
