#!/usr/bin/env bash
# A file stays readable in one sitting, and the tests stay in proportion.
source "$(dirname "$0")/lib.sh"

longest=600
files_of '*.cpp' '*.h' '*.mm' '*.sh' '*.py'
for file in "${files[@]}"; do
  lines=$(wc -l <"$file")
  if [ "$lines" -gt $longest ]; then
    echo "$file has $lines lines; at most $longest: is it one subject?"
    failed=1
  fi
done

lines_of() { git ls-files -z -- "$@" | xargs -0 -r cat | wc -l; }
tests=$(lines_of 'tests/*')
code=$(lines_of '*.cpp' '*.h' '*.mm' '*.sh' '*.py' '*.cmake' 'CMakeLists.txt' '*/CMakeLists.txt')
share=$((tests * 100 / code))
echo "Tests are $share % of all code ($tests of $code lines)."
if [ $share -lt 22 ] || [ $share -gt 38 ]; then
  echo "Wanted is a quarter to a third."
  failed=1
fi
exit $failed
