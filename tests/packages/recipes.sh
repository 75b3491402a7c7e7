#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The recipes of packaging/ for vcpkg and Conan, without either: with stand-ins for what they call, which do with CMake what
# those would. What the port installs is then used as an outside project does.
#   tests/packages/recipes.sh
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/../.."
readonly work=$PWD/build/recipes

fail() {
  echo "recipes: $*" >&2
  exit 1
}

version=$(tools/version.sh)
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

# --- vcpkg ----------------------------------------------------------------------------------------

port=packaging/vcpkg/ports/orvane
# https://learn.microsoft.com/vcpkg/reference/vcpkg-json: names of lower-case letters, digits and hyphens; each feature is told.
faults=$(jq --raw-output --arg version "$version" '
  def name: type == "string" and test("^[a-z0-9]+(-[a-z0-9]+)*$");
  def dependency: if type == "string" then name
    else (.name | name) and (keys - ["name", "host", "features", "default-features", "version>=", "platform"] == []) end;
  (keys - ["$comment", "name", "version-semver", "description", "homepage", "license", "supports", "dependencies",
    "default-features", "features"] | .[] | "there is no field \(.)"),
  (if .name == "orvane" and ."version-semver" == $version then empty else "name or version" end),
  ((.dependencies + [.features[].dependencies // [] | .[]])[] | select(dependency | not) | "a dependency: \(.)"),
  (.features | to_entries[] | select((.key | name | not) or (.value.description | type != "string")) | "the feature \(.key)"),
  (."default-features" - (.features | keys) | .[] | "there is no feature \(.)")' "$port/vcpkg.json")
[[ -z $faults ]] || fail "$port/vcpkg.json: $faults"

rm -rf "$work"
cmake -DPORTFILE="$PWD/$port/portfile.cmake" -DFOLDER="$work" -DFEATURES="core;runtime;testing" -P "$here/vcpkg.cmake"
cmake -S "$here" -B "$work/consumer" -DEXAMPLES="$PWD/examples" -DCMAKE_PREFIX_PATH="$work/installed" \
  -DCMAKE_BUILD_TYPE=Debug
cmake --build "$work/consumer"
ctest --test-dir "$work/consumer" --output-on-failure

# --- Conan ----------------------------------------------------------------------------------------

mkdir -p "$work/conan"
PYTHONDONTWRITEBYTECODE=1 python3 "$here/conan_stand_in.py" packaging/conan "$work/conan" "$version"
echo "recipes: everything was as it should be"
