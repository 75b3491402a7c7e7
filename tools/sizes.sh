#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# What the library adds to a program: links programs against what was built for release and prints their sizes, stripped,
# less that of an empty one, as rows of a table. Libraries from outside are shared, but for ICU where that is said.
#   tools/sizes.sh <build folder, static> <build folder, shared>
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly static=$1 shared=$2 work=$PWD/build/sizes
mkdir -p "$work"

echo 'int main() {}' >"$work/empty.cpp"
cat >"$work/service.cpp" <<'EOF'
#include <Orvane/Services/User/UserService.h>
int main() {
  orvane::UserService(orvane::Identity{"key"}).fetch().start([](const orvane::Result<orvane::User>&) {});
}
EOF
# Without what an application's own settings add.
cat >"$work/runtime.cpp" <<'EOF'
#include <Orvane/Runtime.h>
#include <Orvane/Services/User/UserService.h>
int main() {
  const auto runtime = orvane::Runtime::install({.baseURL = "https://telematics.example", .tokens = "token"});
  return orvane::UserService(orvane::Identity{"key"}).fetch().wait().has_value() ? 0 : 1;
}
EOF

# linked <source> <linker argument...>: its size in bytes.
linked() {
  local source=$1
  shift
  g++ -std=c++20 -O2 -DORVANE_STATIC -ffunction-sections -fdata-sections -I. "$work/$source.cpp" \
    -o "$work/program" -Wl,--gc-sections -Wl,--as-needed -s "$@" || exit
  echo $(($(stat --format=%s "$work/program") - ${empty:-0}))
}

# row <text> <bytes>
row() {
  awk -v text="$1" -v bytes="$2" 'BEGIN { printf "| %s | %.1f MB |\n", text, bytes / 1e6 }'
}

read -r -a outside <<<"-lsimdjson -lboost_url -pthread $(pkg-config --libs absl_time)"
icu=(-licui18n -licuuc)
web=(-lcurl -lssl -lcrypto -lz)
library=$static/Orvane/libOrvane.a
runtime=$static/Orvane/libOrvaneRuntime.a
empty=$(linked empty)

# whole <archive...>: all of them, whether anything uses it or not.
whole() {
  printf '%s\n' -Wl,--whole-archive "$@" -Wl,--no-whole-archive -Wl,--no-gc-sections
}
mapfile -t services < <(whole "$library")
mapfile -t everything < <(whole "$library" "$runtime")

# adds <text> <source> <linker argument...>: a row.
adds() {
  local text=$1 size
  shift
  size=$(linked "$@")
  row "$text" "$size"
}

echo '| what is linked | adds |'
echo '|---|---|'
adds 'one service, static' service "$library" "${outside[@]}" "${icu[@]}"
adds 'one service and the Runtime, static' runtime "$runtime" "$library" "${outside[@]}" "${icu[@]}" "${web[@]}"
adds 'all services, static' empty "${services[@]}" "${outside[@]}" "${icu[@]}"
adds 'all services and the Runtime, static' empty "${everything[@]}" "${outside[@]}" "${icu[@]}" "${web[@]}"
adds 'one service, static, with ICU and its data linked statically' service "$library" "${outside[@]}" \
  -Wl,-Bstatic "${icu[@]}" -licudata -Wl,-Bdynamic -ldl
for name in Orvane OrvaneRuntime; do
  strip --strip-unneeded -o "$work/lib$name.so" "$(readlink --canonicalize "$shared/Orvane/lib$name.so")"
  row "\`lib$name.so\`" "$(stat --format=%s "$work/lib$name.so")"
done
