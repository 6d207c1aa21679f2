# What the scripts share; sourced, not run. Leaves the caller at the repository's root.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '\n== %s\n' "$*"; }

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

processors() { getconf _NPROCESSORS_ONLN; }

on_mac() { [ "$(uname)" = Darwin ]; }

# configure PRESET: the first time only; the build configures again by itself when a CMake file changes. A Mac's command
# line tools bring make, not the ninja of the presets, and its tests are builds of their own: "simulated" and "clicks".
configure() {
  [ ! -f "build/$1/CMakeCache.txt" ] || return 0
  if command -v ccache >/dev/null; then export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}; fi
  # A hosted runner's compiler is known; anybody else's may warn of more.
  local strict=${CI:+-DCMAKE_COMPILE_WARNING_AS_ERROR=ON}
  case $(uname)-$1 in
    Darwin-simulated) cmake -S . -B build/simulated -DCMAKE_BUILD_TYPE=Release -DOSTREL_SIMULATED=ON $strict ;;
    Darwin-clicks) cmake -S . -B build/clicks -DCMAKE_BUILD_TYPE=Release -DOSTREL_BUILD_TESTS=ON $strict ;;
    Darwin-*) cmake -S . -B "build/$1" -DCMAKE_BUILD_TYPE=Release ;;
    *) cmake --preset "$1" ;;
  esac
}

# build PRESET [TARGET...]: builds the targets, all of them when none is named.
build() {
  local preset=$1
  shift
  configure "$preset"
  cmake --build "build/$preset" --parallel "$(processors)" ${1:+--target "$@"}
}
