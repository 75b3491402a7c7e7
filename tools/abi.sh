#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The binary interface: what the shared libraries offer of Orvane's own, and the public types that it takes and gives, as abidw
# (libabigail) reads them from debugging information. It is compared with the description in packaging/abi that the last version
# of the same interface was released with; before its first release, with the one that is there.
#   tools/abi.sh check <build folder>
#   tools/abi.sh save <build folder>      what is now is what is promised from now on
#   tools/abi.sh describe <headers> <library> <description>
#   tools/abi.sh compare <description> <description>
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly libraries=(Orvane OrvaneRuntime OrvaneTesting)

# own_names <library>: those of namespace orvane. What templates make for its types depends on the compiler.
own_names() {
  nm --dynamic --defined-only --without-symbol-versions "$1" |
    awk '$3 ~ /^_Z(Th[^_]*_|Tv[^N]*_|T[ISTV])?NK?6orvane/ { print "  " $3 }' | sort -u
}

# describe <headers> <library> <description>: types that are not in the headers are left out.
describe() {
  local names
  names=$(mktemp)
  { echo '[abi_whitelist]' && own_names "$2"; } >"$names"
  if (($(wc -l <"$names") < 2)); then
    echo "abi: $2 offers nothing of Orvane's" >&2
    return 1
  fi
  abidw --kmi-whitelist "$names" --headers-dir "$1" --drop-private-types --no-corpus-path --no-comp-dir-path --no-show-locs \
    --type-id-style hash --out-file "$3" "$2"
  rm -f "$names"
}

# compare <description> <description>: what has gone or is different is told, and fails; what is new does not.
compare() {
  abidiff --no-added-syms --no-show-locs "$1" "$2"
}

# The versions that have one interface: 0.1, a folder's name in packaging/abi.
interface() {
  local version
  version=$(tools/version.sh)
  echo "${version%.*}"
}

# last_tag <interface>: the last version of it that there is, if any.
last_tag() {
  git describe --tags --abbrev=0 --match "v$1.*" 2>/dev/null || true
}

# describe_all <build folder>: what has been built, in its folder abi.
describe_all() {
  local library
  mkdir -p "$1/abi"
  for library in "${libraries[@]}"; do
    describe "$1/include" "$1/Orvane/lib$library.so" "$1/abi/lib$library.abi"
  done
}

# Compilers differ in what they make of the same source, and versions of abidw in what they see.
check_machine() {
  if [[ $(uname -m) != x86_64 || $(g++ -dumpversion) != 12 ]]; then
    echo "abi: the descriptions are those of Debian 12 on x86-64 with GCC 12; here nothing can be said" >&2
    exit 2
  fi
}

save() {
  local folder library
  folder=packaging/abi/$(interface)
  check_machine
  describe_all "$1"
  mkdir -p "$folder"
  for library in "${libraries[@]}"; do
    xz -9e --stdout "$1/abi/lib$library.abi" >"$folder/lib$library.abi.xz"
  done
  du -sh --apparent-size "$folder"
}

# before <tag or nothing> <library>: its description, on standard output.
before() {
  local file
  file=packaging/abi/$(interface)/lib$2.abi.xz
  if [[ -n $1 ]]; then
    git show "$1:$file" | xz --decompress --stdout
  else
    xz --decompress --stdout "$file"
  fi
}

check() {
  local tag library failed=no
  check_machine
  tag=$(last_tag "$(interface)")
  describe_all "$1"
  for library in "${libraries[@]}"; do
    before "$tag" "$library" >"$1/abi/before.abi"
    echo "abi: lib$library.so, against what ${tag:-packaging/abi} has of it"
    compare "$1/abi/before.abi" "$1/abi/lib$library.abi" || failed=yes
  done
  if [[ $failed == no ]]; then
    return
  fi
  if [[ -n $tag ]]; then
    echo "abi: $tag has promised this interface to every $(interface).x; what is different takes a new minor version" >&2
  else
    echo "abi: it is not as packaging/abi/$(interface) has it. If that is meant: ./dev abi --save, and a line in CHANGELOG.md" >&2
  fi
  return 1
}

verb=$1
shift
"$verb" "$@"
