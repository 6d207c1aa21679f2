#!/usr/bin/env bash
# bench.sh [NAME...]: builds and runs the measurements (default: all): classify, click_latency, minimise_latency,
# idle_cost, settings_window. Each prints ratios against a reference that was measured in the same run, or the figure
# that is aimed at. Takes about four minutes; the machine should have nothing else to do.
source "$(dirname "$0")/lib.sh"
[ $# -gt 0 ] || set -- classify click_latency minimise_latency idle_cost settings_window
scripts/setup.sh build desktop test
build release ostrel
cmake -DOSTREL_BUILD_BENCHMARKS=ON build/release >/dev/null
build release "${@/#/bench_}"
for name in "$@"; do
  say "$name"
  timeout 300 "build/release/bench_$name" </dev/null
done
