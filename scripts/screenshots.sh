#!/usr/bin/env bash
# screenshots.sh: draws the pictures of the interface in docs/pictures anew, light and dark, at twice the size.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build desktop pictures
build release ostrel_pictures
mkdir -p docs/pictures
for scheme in light dark; do
  say "$scheme"
  GTK_THEME=Adwaita:$scheme QT_SCALE_FACTOR=2 build/release/ostrel_pictures docs/pictures -$scheme </dev/null
done
ls docs/pictures
