#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The packages, as a stranger uses them: installs them on a machine that has nothing else of Orvane's, and builds and runs
# what the examples show. As root, on a machine that may be spoilt.
#   tests/packages/run.sh <folder of packages>
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
examples=$here/../../examples
packages=$(cd "$1" && pwd)
work=$(mktemp -d)
readonly here examples packages work
trap 'rm -rf "$work"' EXIT

export DEBIAN_FRONTEND=noninteractive
apt-get update --quiet
# What the packages do not ask for themselves: a compiler, and what tells it of them.
apt-get install --yes --quiet --no-install-recommends "$packages"/*.deb g++ cmake make pkg-config man-db

# says <text> <command...>: the command succeeds, and prints that.
says() {
  local text=$1 output
  shift
  echo "packages: $*"
  output=$("$@" 2>"$work/errors") || {
    cat "$work/errors" >&2
    echo "packages: it failed" >&2
    exit 1
  }
  if [[ $output != *"$text"* ]]; then
    printf 'packages: "%s" is not in what it prints:\n%s\n' "$text" "$output" >&2
    exit 1
  fi
}

cmake -S "$here" -B "$work/build" -DEXAMPLES="$examples"
cmake --build "$work/build" --parallel 2
says "100% tests passed" ctest --test-dir "$work/build"
says Anna orvane-sandbox --exec -- "$work/build/fetch-user"

read -r -a flags <<<"$(pkg-config --cflags --libs orvane-runtime)"
g++ -std=c++20 "$examples/fetch_user.cpp" -o "$work/by-pkg-config" "${flags[@]}"
says Anna orvane-sandbox --exec -- "$work/by-pkg-config"

says Anna orvane-sandbox --exec -- orvane user show
says "orvane-sandbox" man --where orvane-sandbox
says "orvane" man --where orvane
[[ -f /usr/share/bash-completion/completions/orvane && -f /usr/share/doc/liborvane-dev/copyright ]]

# They go as they came.
apt-get purge --yes --quiet orvane-tools liborvane-dev 'liborvane0*'
left=$(find /usr -iname '*orvane*' -not -path "$here/*" | head)
if [[ -n $left ]]; then
  printf 'packages: these are left behind:\n%s\n' "$left" >&2
  exit 1
fi
echo "packages: everything was as it should be"
