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

case $PWD in
  *'"'*) Fail "CMake cannot build in a folder whose path contains a double quote: $PWD" "Move the clone elsewhere." ;;
esac

# Configure PRESET: does nothing when the build tree is up to date; the build itself looks at the CMake lists.
# ./run sets withoutTests, because the packages of the tests may be missing; the others then configure its tree again.
Configure()
{
  local tree="build/$1" cache="build/$1/CMakeCache.txt" lacksTests=
  if [ -f "$cache" ] && ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    Step "$tree belongs to another folder; starting it afresh"
    rm -rf "$tree"
  fi
  if [ "$1" = dev ] && [ -z "${withoutTests:-}" ]; then
    lacksTests=$(grep -sxF TAVRIK_BUILD_TESTS:BOOL=OFF "$cache" || true)
  fi
  [ "$tree/build.ninja" -nt CMakePresets.json ] && [ -z "$lacksTests" ] && return
  Step "Configuring ($1)"
  cmake --preset "$1" ${withoutTests:+-D TAVRIK_BUILD_TESTS=OFF} ||
    Fail "CMake could not configure the preset $1." "Its messages above name the cause."
}

# Build PRESET [TARGET...]
Build()
{
  local preset=$1
  shift
  Configure "$preset"
  Step "Building ($preset)"
  cmake --build --preset "$preset" --parallel "$jobs" ${1:+--target "$@"} ||
    Fail "The build of the preset $preset failed." "The messages of the step after FAILED, above, name the cause."
}

# Filters the lines of ctest: of tests that passed or were skipped at most 100 columns, of others all but the dots. The
# start of a test has no line.
ShortenTestLines()
{
  local line name longest=54 start='^ +Start +[0-9]+: '
  local result='^( *[0-9]+/[0-9]+ Test +#[0-9]+: )(.*[^ ]) \.+ *((Passed|\*\*\*[A-Z]).*)$'
  while IFS= read -r line || [ -n "$line" ]; do
    if [[ $line =~ $result ]]; then
      name=${BASH_REMATCH[2]%%"  # GetParam() = "*}
      case ${BASH_REMATCH[3]} in
        Passed* | \*\*\*Skipped*)
          [ ${#name} -le "$longest" ] || name="..${name: $((2 - longest))}"
          printf '%s%-*s %s\n' "${BASH_REMATCH[1]}" "$longest" "$name" "${BASH_REMATCH[3]}"
          ;;
        *) printf '%s%s ...%s\n' "${BASH_REMATCH[1]}" "$name" "${BASH_REMATCH[3]}" ;;
      esac
    elif ! [[ $line =~ $start ]]; then
      printf '%s\n' "$line"
    fi
  done
}

# Prints which tests the log of ctest has as skipped, and why. GoogleTest writes the reason in the line after "Skipped".
PrintSkippedTests()
{
  [ -f "$1" ] || return 0
  awk '
    function report(reason) { printf "%s    %s: %s\n", count++ ? "" : "\nSkipped tests and their reasons:\n", name, reason }
    /^[0-9]+\/[0-9]+ Testing: / { name = $0; sub(/^[^:]*: /, "", name); sub(/  # GetParam.*/, "", name) }
    /:[0-9]+: Skipped$/ { getline; report($0) }
    /^[a-z-]+: skipped, / { sub(/^.*: skipped, /, ""); report($0) }
  ' "$1"
}

# Test PRESET [CTEST ARGUMENTS...]
Test()
{
  local preset=$1 log="build/$1/Testing/Temporary/LastTest.log" code=0
  shift
  Step "Testing ($preset)"
  # Most tests wait for processes and timers: more of them than cores run well side by side.
  rm -f "$log"
  ctest --preset "$preset" --parallel $((jobs * 3)) "$@" | ShortenTestLines || code=$?
  PrintSkippedTests "$log"
  return "$code"
}
