#!/usr/bin/env bash
# changelog.sh VERSION: prints what CHANGELOG.md tells of a version.
source "$(dirname "$0")/lib.sh"
[ $# -eq 1 ] || die "which version?"
section=$(awk -v title="## [$1]" '/^## / { inside = index($0, title) == 1; next } inside' CHANGELOG.md)
[ -n "$section" ] || die "CHANGELOG.md tells nothing of $1"
printf '%s\n' "$section" | sed '/./,$!d'
