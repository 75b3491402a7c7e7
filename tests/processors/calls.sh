#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Calls from end to end where programs take an emulator to run: the command line asks the sandbox, both of them emulated.
#   tests/processors/calls.sh <orvane-sandbox> <orvane> <emulator...>
set -euo pipefail

this=$(realpath "$0") sandbox=$1 orvane=$2
shift 2
emulator=("$@")

# prints <what is looked for> <argument...>: what the command line answers has such a line.
prints() {
  local pattern=$1 output
  shift
  output=$("${emulator[@]}" "$orvane" "$@")
  if ! grep --quiet --extended-regexp -e "$pattern" <<<"$output"; then
    printf 'calls: orvane %s was to print %s, and printed:\n%s\n' "$*" "$pattern" "$output" >&2
    exit 1
  fi
}

# Started again by the sandbox, with its settings.
if [[ -n ${ORVANE_BASE_URL:-} ]]; then
  prints $'^date of birth\t1987-04-12$' user show
  prints $'^display name\tArmin K\\.$' user update --display-name 'Armin K.'
  prints $'^display name\tArmin K\\.$' user show
  # A request's date, an answer's times, and distances that are converted there and back.
  prints $'^500001\t20..-..-.. ..:..\t[0-9]+ min [0-9]+ s\t3\\.7 km\tdriver' trips list
  prints $'^maximum speed\t[0-9]+ km/h$' trips show 500001 --expand events,scores,points
  prints '"LineString","coordinates":\[\[7\.[0-9]{1,6},47\.[0-9]{1,6}\]' trips show 500001 --geojson -
  prints '"tripStartTimestampUtc": [0-9]{13},' trips list --json
  # And a refusal.
  "${emulator[@]}" "$orvane" trips show 999999 2>refusal && exit 1
  grep --fixed-strings '(404)' refusal
  exit
fi

folder=$(mktemp --directory)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
export HOME=$folder TZ=Europe/Zurich
"${emulator[@]}" "$sandbox" --data data --weeks 1 --now 2026-05-17T12:00:00Z --exec -- "$this" "$sandbox" "$orvane" "${emulator[@]}"
