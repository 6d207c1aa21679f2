# What the scripts share; sourced, not run. Leaves the caller at the repository's root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\n== %s\n' "$*"; }

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

processors() { getconf _NPROCESSORS_ONLN; }

# build PRESET [TARGET...]: configures the preset once and builds the targets (all of them when none is named).
# ninja configures again by itself when a CMake file changes.
build() {
  local preset=$1
  shift
  if [ ! -f "build/$preset/build.ninja" ]; then
    if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}; fi
    cmake --preset "$preset"
  fi
  cmake --build "build/$preset" ${1:+--target "$@"}
}
