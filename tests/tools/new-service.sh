#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Lays a new service into a copy of the sources, twice over the alphabet, and compiles what was laid.
#   tests/tools/new-service.sh COMPILER FOLDER     the folder is made anew
set -euo pipefail

compiler=$1
folder=$2
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

rm -rf "$folder"
mkdir -p "$folder"
cd "$root"
cp -r --parents .clang-format Orvane fuzz/*.cpp tests/support tests/unit tools/lint tools/new-service.sh "$folder"
cd "$folder"
git init --quiet

for name in ChargingStation Zone; do
  tools/new-service.sh "$name" >/dev/null
  for file in "Orvane/Models/$name.cpp" Orvane/Services/"$name"/*.cpp "tests/unit/Services/${name}ServiceTest.cpp"; do
    "$compiler" -std=c++20 -Wall -Wextra -Werror -fsyntax-only -I. "$file"
  done
done
grep --quiet '^    asIs<Zone>,$' fuzz/records.cpp
if tools/new-service.sh Zone 2>/dev/null || tools/new-service.sh zone 2>/dev/null || tools/new-service.sh 2>/dev/null; then
  echo "new-service takes what it must refuse" >&2
  exit 1
fi
if command -v python3 >/dev/null; then
  git add --all
  findings=$(python3 tools/lint/check_sources.py || true)
  if grep -E 'Zone|ChargingStation' <<<"$findings"; then
    exit 1
  fi
fi
