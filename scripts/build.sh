#!/usr/bin/env bash
# build.sh: installs what the build needs and builds the program at build/release/ostrel (on a Mac, Ostrel.app there).
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build
build release ostrel
if on_mac; then program=Ostrel.app; else program=ostrel; fi
printf '\nBuilt build/release/%s\n' "$program"
