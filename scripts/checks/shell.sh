#!/usr/bin/env bash
# Every script parses, is executable when it is meant to be run, and does not hide failures.
source "$(dirname "$0")/lib.sh"
files_of '*.sh' .ci/run
for file in "${files[@]}"; do
  bash -n "$file" || failed=1
  case $file in */lib.sh) continue ;; esac
  [ -x "$file" ] || { echo "$file is not executable" && failed=1; }
  grep -qE '^(source .*lib\.sh"|set -euo pipefail)' "$file" || { echo "$file does not stop at a failure" && failed=1; }
done
exit $failed
