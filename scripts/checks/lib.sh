# What the house rules share; sourced, not run.
source "$(dirname "${BASH_SOURCE[0]}")/../lib.sh"

# forbid MESSAGE PATTERN FILE...: prints the lines of the files that match the extended regular expression, and fails
# when there is one.
forbid() {
  local message=$1 pattern=$2
  shift 2
  [ $# -gt 0 ] || return 0
  local found status=0
  found=$(grep -nHIE -e "$pattern" -- "$@") || status=$?
  [ $status -le 1 ] || die "grep failed"
  [ $status -eq 0 ] || return 0
  printf '%s\n%s\n' "$message" "$found"
  failed=1
}
failed=0

# files_of PATHSPEC...: sets the array `files` to the tracked files that match.
files_of() { mapfile -d '' -t files < <(git ls-files -z -- "$@"); }
