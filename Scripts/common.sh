# Sourced by every script of the project, from the project's root.
# shellcheck shell=bash

set -euo pipefail

if [ "$(uname -s)" = Darwin ]; then
  export LC_ALL=en_US.UTF-8
  # Homebrew keeps this Qt out of the compiler's way: one path for Intel, one for Apple silicon.
  export CMAKE_PREFIX_PATH="/usr/local/opt/qt@5:/opt/homebrew/opt/qt@5${CMAKE_PREFIX_PATH:+:$CMAKE_PREFIX_PATH}"
  export PKG_CONFIG_PATH="/usr/local/opt/qt@5/lib/pkgconfig:/opt/homebrew/opt/qt@5/lib/pkgconfig"
  export PATH="$PATH:/usr/local/opt/llvm/bin:/opt/homebrew/opt/llvm/bin"
else
  export LC_ALL=C.UTF-8
fi

jobs=$(nproc 2>/dev/null || getconf _NPROCESSORS_ONLN)

# Without a home of one's own (some containers) the compiler cache lives in the tree.
if [ -z "${CCACHE_DIR:-}" ] && [ ! -w "${HOME:-/nowhere}" ]; then
  export CCACHE_DIR="$PWD/build/ccache"
fi

Step()
{
  printf '==> %s\n' "$*" >&2
}

Fail()
{
  printf '\n%s: %s\n' "$(basename -- "$0")" "$1" >&2
  shift
  [ $# -eq 0 ] || printf '    %s\n' "$@" >&2
  exit 1
}

# Configure PRESET: does nothing when the build tree is up to date; the build itself looks at the CMake lists.
Configure()
{
  local tree="build/$1" cache="build/$1/CMakeCache.txt"
  if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    Step "$tree belongs to another folder; starting it afresh"
    rm -rf "$tree"
  fi
  [ "$tree/build.ninja" -nt CMakePresets.json ] && return
  Step "Configuring ($1)"
  cmake --preset "$1" || Fail "CMake could not configure the preset $1." "Its messages above name the cause."
}

# Build PRESET [TARGET...]
Build()
{
  local preset=$1
  shift
  Configure "$preset"
  Step "Building ($preset)"
  cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} ||
    Fail "The build of the preset $preset failed." "The compiler's messages above name the place."
}

# Test PRESET [CTEST ARGUMENTS...]
Test()
{
  local preset=$1
  shift
  Step "Testing ($preset)"
  # Most tests wait for processes and timers: more of them than cores run well side by side.
  ctest --preset "$preset" --parallel $((jobs * 3)) "$@"
}
