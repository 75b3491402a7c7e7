#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Whether tools/abi.sh sees what breaks programs, and lets pass what doesn't: by libraries of a few lines.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
abi=$here/../../tools/abi.sh
work=$(mktemp -d)
readonly here abi work
trap 'rm -rf "$work"' EXIT

# library <name> <sed expression>: changed by it, built and described.
library() {
  local folder=$work/$1
  mkdir -p "$folder/include"
  cat >"$folder/include/Trip.h" <<'EOF'
namespace orvane {
struct Inside;
struct Trip {
  virtual ~Trip();
  virtual int rank();
  int id;
  Inside* inside;
};
enum class Mode { car, train };
int length(const Trip& trip, int unit);
int count(Mode mode);
}
EOF
  cat >"$folder/Trip.cpp" <<'EOF'
#include "include/Trip.h"
namespace orvane {
struct Inside { int own; };
Trip::~Trip() = default;
int Trip::rank() { return inside->own; }
int length(const Trip& trip, int unit) { return trip.id + unit; }
int count(Mode) { return 0; }
}
int foreign() { return 0; }
EOF
  sed -i "$2" "$folder/include/Trip.h" "$folder/Trip.cpp"
  g++ -std=c++20 -g -shared -fPIC "$folder/Trip.cpp" -o "$folder/library.so"
  "$abi" describe "$folder/include" "$folder/library.so" "$folder/description"
}

# expect <passes|fails> <name> <sed expression>
expect() {
  local verdict=passes
  library "$2" "$3"
  "$abi" compare "$work/first/description" "$work/$2/description" >"$work/said" 2>&1 || verdict=fails
  if [[ $verdict != "$1" ]]; then
    echo "abi: that '$2' changes $verdict:" >&2
    cat "$work/said" >&2
    exit 1
  fi
}

library first ''
expect passes nothing ''
expect passes 'a function more' 's/^int count(Mode) .*/&\nint added(int value) { return value; }/'
expect passes 'what is private' 's/int own;/& int more;/'
expect passes "what is somebody else's" '/foreign/d'
expect fails 'a function gone' '/count(Mode/d'
expect fails 'a parameter' 's/int unit/long unit/'
expect fails 'a result' 's/^int length/long length/'
expect fails 'a member more' 's/int id;/& int age;/'
expect fails "a member's type" 's/int id;/long id;/'
expect fails 'the virtual table' 's/^  virtual int rank();/  virtual int first() { return 0; }\n&/'
expect fails "an enumeration's value" 's/car, train/train, car/'
echo "abi: what breaks programs is seen"
