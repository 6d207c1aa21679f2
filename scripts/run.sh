#!/usr/bin/env bash
# run.sh [ARGUMENT...]: builds Ostrel and runs it, with these arguments, on the desktop it is called from. Where there is
# no display it shows itself on a desktop of its own instead: real applications, real clicks, a picture of each step.
source "$(dirname "$0")/lib.sh"
if on_mac; then
  scripts/build.sh
  # One that runs already is the old build, and opening the application would only bring that forward.
  if pkill -x -U "$(id -u)" Ostrel; then
    for _ in {1..50}; do
      pgrep -x -U "$(id -u)" Ostrel >/dev/null || break
      sleep 0.1
    done
  fi
  # Through Launch Services, so that the permission is asked for Ostrel and not for the terminal.
  exec open build/release/Ostrel.app --args "$@"
fi
if [ -n "${DISPLAY:-}" ]; then
  scripts/build.sh
  exec build/release/ostrel "$@"
fi
[ $# -eq 0 ] || die "no display here; without arguments this shows Ostrel on a desktop of its own"
scripts/setup.sh build desktop
build release ostrel ostrel_demo
say "No display here, so this is a desktop of its own"
exec timeout 120 build/release/ostrel_demo build/demo </dev/null
