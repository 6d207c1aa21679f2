#!/usr/bin/env bash
# test.sh [CTEST-ARGUMENT...]: builds everything and runs all tests; with -L desktop only those on real desktops. On a
# Mac these are the tests on the simulated desktop, and with OSTREL_PRESET=clicks those of the application itself, which take
# the mouse. OSTREL_PRESET names another configuration to test than release.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build desktop test
if on_mac; then preset=${OSTREL_PRESET:-simulated}; else preset=${OSTREL_PRESET:-release}; fi
build "$preset"
ctest --test-dir "build/$preset" --output-on-failure --no-tests=error --timeout 120 --parallel "$(processors)" "$@" </dev/null
