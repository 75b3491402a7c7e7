#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The packages, as a stranger uses them: installs them on a machine that has nothing else of Orvane's, and builds and runs
# what the examples show, with shared libraries and with static ones, from the packages and from the sources. As root, on a
# machine that may be spoilt.
#   tests/packages/run.sh <folder of packages>
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
sources=$(cd "$here/../.." && pwd)
examples=$sources/examples
packages=$(cd "$1" && pwd)
work=$(mktemp -d)
readonly here sources examples packages work
trap 'rm -rf "$work"' EXIT

export DEBIAN_FRONTEND=noninteractive
install() {
  apt-get install --yes --quiet --no-install-recommends "$@"
}

# says <text> <command...>: the command succeeds, and prints that.
says() {
  local text=$1 output
  shift
  echo "packages: $*"
  output=$("$@" 2>"$work/errors") || {
    printf '%s\n' "$output" >&2
    cat "$work/errors" >&2
    echo "packages: it failed" >&2
    exit 1
  }
  if [[ $output != *"$text"* ]]; then
    printf 'packages: "%s" is not in what it prints:\n%s\n' "$text" "$output" >&2
    exit 1
  fi
}

# program <shared|static> <file>: it talks to a backend, and loads Orvane's libraries, or none.
program() {
  local kind=static
  says Anna orvane-sandbox --exec -- "$2"
  readelf --dynamic "$2" >"$work/dynamic"
  ! grep --quiet 'NEEDED.*libOrvane' "$work/dynamic" || kind=shared
  if [[ $kind != "$1" ]]; then
    echo "packages: $2 was to be linked with $1 libraries, and is $kind" >&2
    exit 1
  fi
}

# by_cmake <shared|static> <folder> <option...>
by_cmake() {
  local kind=$1 build=$work/$2
  shift 2
  cmake -S "$here" -B "$build" -DEXAMPLES="$examples" "$@"
  cmake --build "$build" --parallel "$(nproc)"
  says "100% tests passed" ctest --test-dir "$build" --output-on-failure
  program "$kind" "$build/fetch-user"
}

# by_pkg_config <shared|static> <module> <linker argument...>
by_pkg_config() {
  local kind=$1 module=$2 flags
  shift 2
  read -r -a flags <<<"$(pkg-config --cflags --libs "$@" "$module")"
  g++ -std=c++20 "$examples/fetch_user.cpp" -o "$work/program" "${flags[@]}"
  program "$kind" "$work/program"
}

apt-get update --quiet
# What the packages do not ask for themselves: a compiler, what tells it of them, and what this script reads them with.
install "$packages"/*.deb g++ cmake make pkg-config man-db jq

by_cmake shared by-cmake
by_pkg_config shared orvane-runtime

# What liborvane-dev recommends, for the static libraries.
read -r -a recommended <<<"$(dpkg-query -W -f '${Recommends}' liborvane-dev | tr -d ,)"
install "${recommended[@]}"
by_cmake static by-cmake-static -DOrvane_USE_STATIC_LIBS=ON
by_pkg_config static orvane-runtime-static
# What a program lists that is static as a whole; the archives first, since not all of Debian's libraries have one.
read -r -a flags <<<"$(pkg-config --static --cflags --libs orvane-runtime)"
g++ -std=c++20 "$examples/fetch_user.cpp" -o "$work/program" -Wl,-Bstatic -lOrvaneRuntime -lOrvane -Wl,-Bdynamic \
  -Wl,--as-needed "${flags[@]}"
program static "$work/program"

says Anna orvane-sandbox --exec -- orvane user show
says "orvane-sandbox" man --where orvane-sandbox
says "orvane" man --where orvane
[[ -f /usr/share/bash-completion/completions/orvane && -f /usr/share/doc/liborvane-dev/copyright ]]
"$here/materials.sh" "$packages"

# From the sources, which take what the static libraries take; not optimised, which takes too long for what it shows.
install ccache
export CMAKE_CXX_COMPILER_LAUNCHER=ccache
by_cmake static from-sources -DORVANE_SOURCES="$sources" -DCMAKE_CXX_FLAGS=-O0
by_cmake shared from-sources-shared -DORVANE_SOURCES="$sources" -DCMAKE_CXX_FLAGS=-O0 -DBUILD_SHARED_LIBS=ON

# They go as they came.
apt-get purge --yes --quiet orvane-tools liborvane-dev 'liborvane0*'
left=$(find /usr -iname '*orvane*' -not -path "$here/*" | head)
if [[ -n $left ]]; then
  printf 'packages: these are left behind:\n%s\n' "$left" >&2
  exit 1
fi
echo "packages: everything was as it should be"
