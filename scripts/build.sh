#!/usr/bin/env bash
# build.sh: installs what the build needs and builds the program at build/release/ostrel.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build
build release ostrel
printf '\nBuilt build/release/ostrel\n'
