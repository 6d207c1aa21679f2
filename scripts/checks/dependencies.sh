#!/usr/bin/env bash
# The folders depend on each other in one direction only.
source "$(dirname "$0")/lib.sh"

include='^[[:space:]]*#[[:space:]]*(include|import)[[:space:]]*'
sources_of() { files_of "$1*.cpp" "$1*.h" "$1*.mm"; }

sources_of Ostrel/
# Standard headers have neither a dot nor a slash in their names; sys/types.h names processes on every system.
others=$(grep -nHE "$include" -- "${files[@]}" /dev/null |
  grep -vE '(<[a-z0-9_]+>|<sys/types\.h>|"Ostrel/[A-Za-z]+\.h"|"platform/[A-Za-z]+\.h")[[:space:]]*(//.*)?$' || true)
if [ -n "$others" ]; then
  printf 'Ostrel/ includes only the standard library, Ostrel/ and platform/*.h:\n%s\n' "$others"
  failed=1
fi
forbid 'Ostrel/ has no conditional compilation:' '^[[:space:]]*#[[:space:]]*(if|elif|else)' "${files[@]}"

sources_of platform/
forbid 'platform/ knows nothing of the application, the tests or the benchmarks:' "$include\"(Ostrel|tests|bench)/" "${files[@]}"
sources_of platform/portable/
forbid 'platform/portable/ knows no backing:' "$include\"platform/(linux|macos|simulated)/" "${files[@]}"
sources_of platform/linux/
forbid 'A backing includes no other backing:' "$include\"platform/(macos|simulated)/" "${files[@]}"
sources_of platform/macos/
forbid 'A backing includes no other backing:' "$include\"platform/(linux|simulated)/" "${files[@]}"
sources_of platform/simulated/
forbid 'A backing includes no other backing:' "$include\"platform/(linux|macos)/" "${files[@]}"
files_of 'platform/*.h' ':!platform/*/*'
forbid 'The interface knows no backing:' "$include\"platform/(linux|macos|simulated)/" "${files[@]}"
exit $failed
