#!/usr/bin/env bash
# Every source is as clang-format 14 would write it (other versions differ in details).
source "$(dirname "$0")/../lib.sh"
git ls-files -z -- '*.cpp' '*.h' '*.mm' | xargs -0 -r clang-format-14 --dry-run --Werror
