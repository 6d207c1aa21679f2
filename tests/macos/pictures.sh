#!/usr/bin/env bash
# pictures.sh PROGRAM FOLDER: a picture of the screen with each tab of the settings, light and dark.
set -euo pipefail
program=$1 folder=$2
mkdir -p "$folder"
running=
trap '[ -z "$running" ] || kill "$running"' EXIT
for look in Light Dark; do
  "$program" -AppleInterfaceStyle $look &
  running=$!
  for tab in general displays exclude about; do
    # The first may come before the application listens: then it opens the settings of its own and stays.
    for _ in {1..50}; do
      "$program" accessibility status >/dev/null || true
      "$program" doctor | grep -q '^Ostrel  *running$' && break
      sleep 0.2
    done
    "$program" settings $tab
    sleep 1 # for the window to come up and fade in
    screencapture -x "$folder/$tab-$look.png"
  done
  kill "$running"
  wait "$running" || true
  running=
done
