#!/usr/bin/env bash
# test.sh [CTEST-ARGUMENT...]: builds everything and runs all tests; -L unit, for example, runs one kind alone.
source "$(dirname "$0")/lib.sh"
scripts/setup.sh build desktop test
build release
ctest --test-dir build/release --output-on-failure --no-tests=error --timeout 120 --parallel "$(processors)" "$@" </dev/null
