#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# What continuous integration runs on a clean checkout. First what every change must pass; then, as far as the time carries,
# what is slow: in an order that turns with the commit, so that each has its day. Every step runs whatever the ones before it
# said. The last lines say what ran and what did not; what did not run has not passed.
#   tools/ci.sh [--all]     --all: everything, however long it takes
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

everything=no
case ${1:-} in
  '') ;;
  --all) everything=yes ;;
  *)
    echo "ci: there is no '$1'; usage: ./dev ci [--all]" >&2
    exit 2
    ;;
esac

# Minutes that it all may take, less a few for the machine.
readonly limit=72

logs=build/ci
rm -rf "$logs"
mkdir -p "$logs"
said=()
failed=()

# step <name> <command...>
step() {
  local name=$1 began=$SECONDS status=0
  shift
  echo "=== $name: $*"
  "$@" 2>&1 | tee "$logs/$name.log" || status=$?
  tell "$name" "$status" $(((SECONDS - began + 59) / 60))
}

# tell <name> <status> <minutes>
tell() {
  local verdict=passed
  if (($2 != 0)); then
    verdict=FAILED
    failed+=("$1")
  fi
  said+=("$(printf '%-14s %s, %d min. %s' "$1" "$verdict" "$3" "$(tests_of "$1")")")
}

# slow_step <minutes that it takes> <name> <command...>: skipped where there is not so much time left, and ended where it takes
# longer than there is. What has had twice its minutes by then does not come to an end, and has failed.
slow_step() {
  local minutes=$1 name=$2 left began=$SECONDS status=0
  shift 2
  if [[ $everything == yes ]]; then
    step "$name" "$@"
    return
  fi
  left=$((limit * 60 - SECONDS))
  if ((left < minutes * 60)); then
    said+=("$(printf '%-14s skipped: some %d min are needed, %d are left' "$name" "$minutes" $((left / 60)))")
    return
  fi
  echo "=== $name: $*"
  timeout --kill-after=30 "$left" "$@" 2>&1 | tee "$logs/$name.log" || status=$?
  if ((status == 124 && SECONDS - began < 2 * minutes * 60)); then
    said+=("$(printf '%-14s NOT FINISHED: ended after %d min' "$name" $(((SECONDS - began) / 60)))")
  else
    tell "$name" "$status" $(((SECONDS - began + 59) / 60))
  fi
}

# What ctest said at the end of a step: "100% tests passed, 0 tests failed out of 512", and how many it skipped.
tests_of() {
  local skipped
  skipped=$(grep -cE '\*\*\*(Skipped|Not Run)' "$logs/$1.log" 2>/dev/null || true)
  ((${skipped:-0} == 0)) || printf '%s did not run; ' "$skipped"
  grep -hE 'tests passed, .* tests? failed out of' "$logs/$1.log" 2>/dev/null | tail -n 1 || true
}

step setup ./dev setup http2 loops
step test ./dev test
# As on a terminal, and one that is not wide.
step demo script --quiet --return --command "stty cols 80 rows 24; ./dev demo" /dev/null
step browser ./dev test browser
step docs ./dev docs
step lint ./dev lint
step shared ./dev test shared
step clang ./dev test clang

# The sanitizers without what only starts processes: the command line and the trials end to end.
slow=(
  "15 asan ./dev test asan -L unit|runtime|sandbox"
  "15 tsan ./dev test tsan -L unit|runtime|sandbox"
  "20 trixie ./dev test trixie"
  "20 bookworm ./dev test bookworm"
  "25 arm64 ./dev test arm64"
  "25 armhf ./dev test armhf"
  "6 libcxx ./dev build libcxx"
  "10 musl ./dev build musl"
  "15 fuzz ./dev fuzz 120"
  "30 packages ./dev package bookworm"
  "30 packages13 ./dev package trixie"
  "20 reproducible ./dev reproducible"
  "34 release ./dev release --trial"
  "6 abi ./dev abi"
  "5 recipes ./dev recipes"
  "15 image ./dev image"
  "10 soak-asan ./dev soak 5 asan"
  "10 soak-tsan ./dev soak 5 tsan"
)
turn=$((16#$(git rev-parse HEAD 2>/dev/null | cut -c 1-6 || echo 0)))
for ((i = 0; i < ${#slow[@]}; ++i)); do
  read -r -a words <<<"${slow[$(((turn + i) % ${#slow[@]}))]}"
  slow_step "${words[@]}"
done

# Who sees the end of all this only, sees why.
for name in "${failed[@]}"; do
  echo "=== what $name said, as far as it looks like a fault"
  grep -nE -B 2 -A 15 'not ok|✖|[Ee]rror:|Failure|\*\*\*(Failed|Timeout|Exception)|(FAILED|WARNING|ERROR):' "$logs/$name.log" | cut -c 1-300 | head -n 60 || true
  echo '=== and at its end'
  tail -n 25 "$logs/$name.log" | cut -c 1-300
done
echo "=== after $((SECONDS / 60)) min"
printf '%s\n' "${said[@]}"
grep -hE 'tests passed, .* tests? failed out of' "$logs/test.log" | tail -n 1 || true
((${#failed[@]} == 0))
