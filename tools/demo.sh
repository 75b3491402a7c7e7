#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Starts the local backend and shows the command-line client at work on it, over HTTPS. Everything shown is checked: the script
# fails when anything is not as it should be. A further scene is a function below and a line at the end.
#   tools/demo.sh [build folder]
set -euo pipefail

build=$(cd "${1:-build/release}" && pwd)
sandbox=$build/tools/sandbox/orvane-sandbox
orvane=$build/tools/cli/orvane

# --- The backend --------------------------------------------------------------------------------

folder=$(mktemp -d)
sandbox_pid=

# Whatever ends this script ends what it has started.
clean_up() {
  if [[ -n $sandbox_pid ]]; then
    kill -TERM "$sandbox_pid" 2>/dev/null || true
    wait "$sandbox_pid" 2>/dev/null || true
  fi
  rm -rf "$folder"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Reads what the backend says of itself when it is ready: its address stands there. Its data ends on a day of the demo's own, so that
# weeks are far from New Year, where they belong to another year than the calendar says.
start_backend() {
  local line
  # The first download of firmware is cut off.
  local cut='{"path": "^/downloads/", "cutAfterBytes": 700000, "times": 1}'
  local options=(--data "$folder/data" --now 2026-05-17 --port 0 --misbehave "$cut")
  coproc SANDBOX { exec "$sandbox" "${options[@]}" 2>"$folder/errors"; }
  # shellcheck disable=SC2153  # set by coproc
  sandbox_pid=$SANDBOX_PID
  while read -r -t 60 -u "${SANDBOX[0]}" line; do
    if [[ $line =~ base\ URL\ +(https://[^ ]+) ]]; then
      base_url=${BASH_REMATCH[1]}
    fi
    [[ $line != 'token of a user:'* ]] || return 0
  done
  echo "demo: the backend did not start" >&2
  cat "$folder/errors" >&2
  exit 1
}

# --- What scenes are made of --------------------------------------------------------------------

if [[ -t 1 && -z ${NO_COLOR:-} ]]; then
  bold=$'\e[1m' dim=$'\e[2m' plain=$'\e[0m'
else
  bold='' dim='' plain=''
fi

title() {
  printf '\n%s%s%s\n' "$bold" "$1" "$plain"
}

indented() {
  local line
  while IFS= read -r line; do printf '    %s\n' "$line"; done <<<"$1"
}

failed() {
  printf '\ndemo: %s\n' "$1" >&2
  printf 'The last command wrote:\n%s\n%s\n' "$output" "$errors" >&2
  exit 1
}

# The words as one would type them.
quoted() {
  local word
  for word in "$@"; do
    if [[ $word =~ ^[A-Za-z0-9_.,:/=@+-]+$ ]]; then
      printf ' %s' "$word"
    else
      printf " '%s'" "${word//\'/\'\\\'\'}"
    fi
  done
}

# run <exit code> <arguments...>: runs a command, shows it with what it prints, and keeps both streams in `output` and `errors`.
run() {
  local wanted=$1 code=0
  shift
  printf '  %s$ orvane%s%s\n' "$dim" "$(quoted "$@")" "$plain"
  output=$("$orvane" --format table "$@" 2>"$folder/errors") || code=$?
  errors=$(<"$folder/errors")
  ((code == wanted)) || failed "the exit code is $code, and should be $wanted"
}

show() {
  [[ -z $1 ]] || indented "$1"
}

# Each checks what the last command wrote, white space counting as one blank.
expect() {
  local text
  text=$(tr -s ' \n' ' ' <<<"$output")
  [[ $text == *"$1"* ]] || failed "there should be \"$1\""
}

# The exchanges of the last command, which was told to be verbose: requests without their query, and statuses.
exchanges() {
  sed -nE 's/^> ((GET|POST|PUT|DELETE) [^?]*).*/\1/p; s/^< ([0-9]{3}),.*/  -> \1/p' <<<"$errors" |
    sed "s#$base_url##"
}

expect_exchanges() {
  local wanted
  wanted=$(printf '%s\n' "$@")
  [[ $(exchanges) == "$wanted" ]] || failed "there should be these exchanges:"$'\n'"$wanted"
}

# No key or token may have been written anywhere.
expect_no_secrets() {
  local secret
  secret=$(<"$folder/data/signing.key")
  [[ $output$errors != *"$secret"* ]] || failed "the signing key was shown"
  # Every token begins with the same letters: those of {".
  [[ $output$errors != *eyJ* ]] || failed "a token was shown"
}

# --- Scenes -------------------------------------------------------------------------------------

scene_user() {
  title "The person who is signed in, with role, account and the others of the account"
  run 0 user show --expand role,associatedAccount,associatedUsers
  show "$output"
  expect "id 1001"
  expect "identifier Keller household"
  expect "names role-owner"
  expect "associated users"
  expect "marc.keller@"
}

scene_update() {
  title "A change, and a second look that confirms it"
  run 0 user update --display-name "Anna on tour" --share-user-profile no
  expect "display name Anna on tour"
  run 0 user address --city Bern --postal-code 3011
  run 0 user show
  expect "display name Anna on tour"
  expect "profile shared no"
  expect "city Bern"
  expect "first name Anna"
  show "$(grep -E '^(display name|first name|profile shared)|city|postal code' <<<"$output")"
}

scene_trips() {
  local trip drawing=$build/demo/trip.svg
  mkdir -p "$build/demo"
  title "A week of trips, page by page, with their scores and events"
  run 0 trips list --from 2026-05-11 --to 2026-05-17 --all --expand scores,events
  show "$(head -n 9 <<<"$output")"
  show "… and $(($(wc -l <<<"$output") - 9)) more"
  expect "id started duration distance mode"
  expect "driver personal"
  # The one with the most events, among those with a vehicle: the cell before it has their number.
  trip=$(awk '$NF ~ /^3[0-9][0-9][0-9]$/ { print $(NF - 1), $1 }' <<<"$output" | sort -rn | awk 'NR == 1 { print $2 }')

  title "One of them: what happened on it, and a drawing of its route"
  run 0 trips show "$trip" --expand events,scores --svg "$drawing"
  show "$output"
  expect "id $trip"
  expect "overall"
  expect "time event severity speed limit for place"
  [[ $(<"$drawing") == *"<title id=\"title\">Trip $trip</title>"*"</svg>" ]] || failed "$drawing should hold a drawing"
  printf '  The drawing stays there, for a browser: %s\n' "$drawing"

  title "A correction, and a second look that confirms it"
  run 0 trips update "$trip" --transport-mode car-passenger --purpose business
  expect "transport mode car-passenger"
  run 0 trips show "$trip"
  expect "transport mode car-passenger"
  expect "purpose business"
  show "$(grep -E '^(id|transport mode|purpose)' <<<"$output")"
}

scene_scores() {
  local drawing=$build/demo/scores.svg
  local days=(--from 2026-04-18 --to 2026-05-17)
  mkdir -p "$build/demo"
  title "Thirty days of a vehicle: a score for each day on which it was driven, and what they come to"
  LC_ALL=C.UTF-8 run 0 scores aggregate "${days[@]}" --vehicle 3001 --svg "$drawing"
  show "$(head -n 8 <<<"$output")"
  show "..."
  show "$(sed -n '/^Score per day/,$p' <<<"$output")"
  expect "average score"
  expect "day score average driving recorded by"
  expect "Score per day of vehicle 3001, 2026-04-18 to 2026-05-17"
  [[ $output == *█*└*─┬─* ]] || failed "there should be a chart"
  [[ $(<"$drawing") == *"<title id=\"title\">Score per day of vehicle 3001</title>"*"</svg>" ]] || failed "$drawing should hold a drawing"
  printf '  The drawing stays there, for a browser: %s\n' "$drawing"
  local average
  average=$(sed -nE 's/^average score +//p' <<<"$output")
  run 0 scores average "${days[@]}" --vehicle 3001
  show "$output"
  expect "average score $average"
  expect "components"
}

scene_leaderboard() {
  local anna=' 1001$'
  title "The leaderboard of a day: with the person who is signed in, and without"
  run 0 leaderboard show --day 2026-05-17
  show "$(head -n 11 <<<"$output")"
  expect "taking part yes ranked yes"
  expect "place points driver city id 1 "
  grep -q "$anna" <<<"$output" || failed "1001 should be among the drivers"
  run 0 leaderboard opt-out
  show "$output"
  run 0 leaderboard show --day 2026-05-17
  show "$(head -n 3 <<<"$output")"
  expect "taking part no ranked no"
  ! grep -q "$anna" <<<"$output" || failed "1001 should not be among the drivers"
  run 0 leaderboard opt-in
  run 0 leaderboard show --day 2026-05-17
  expect "taking part yes ranked yes"
  grep -q "$anna" <<<"$output" || failed "1001 should be among the drivers again"
}

scene_discount() {
  title "What careful driving takes off the premium, by which scheme, and a token for the rewards"
  run 0 discount show
  show "$output"
  expect "current "
  expect "possible, up to 25"
  run 0 discount scheme
  show "$output"
  expect "distance needed 250 km"
  expect "score from up to discount 95 25 90 95 20"
  run 0 rewards token
  [[ $output =~ ^[A-Za-z0-9_-]+\.[A-Za-z0-9_-]+\.[A-Za-z0-9_-]+$ ]] || failed "there should be a token"
  show "a JSON Web Token of ${#output} characters"
}

scene_clock() {
  title "A device whose clock is 300 seconds behind: one refusal tells the right time, one retry succeeds"
  run 0 --clock-offset -300 --verbose user show
  show "$(exchanges)"
  expect "id 1001"
  expect_exchanges \
    "GET /kavra/api/sdk/identity" "  -> 401" \
    "GET /kavra/api/sdk/identity" "  -> 200" \
    "GET /kavra/api/sdk/users/1001" "  -> 200"
  expect_no_secrets
}

scene_invitation() {
  local id
  title "An invitation to drive a vehicle, seen from both sides"
  run 0 invitations send --vehicles 3006 --first-name Nora --last-name Frei --email nora.frei@example.com
  show "$output"
  expect "status pending"
  expect "to Nora Frei (1007)"
  id=$(sed -nE 's/^id +([0-9]+)$/\1/p' <<<"$output")
  run 44 --user nora.frei vehicles show 3006
  show "$errors"
  run 0 --user nora.frei invitations vehicles --filtered PENDING
  show "$output"
  expect "$id pending Anna Keller (1001) Nora Frei (1007) 3006"
  run 0 --user nora.frei invitations respond "$id" accept
  show "$output"
  run 0 --user nora.frei vehicles show 3006
  expect "model R 1250 GS"
  show "$(grep -E '^(id|make|model)' <<<"$output")"
  run 0 invitations vehicles --filtered ACCEPTED
  show "$output"
  expect "$id accepted Anna Keller (1001) Nora Frei (1007) 3006"
}

scene_content() {
  title "A text for the application to show, in two languages"
  run 0 content get privacyPolicy.page.title --lang en
  show "$output"
  [[ $output == "Privacy policy" ]] || failed "the English title should be \"Privacy policy\""
  run 0 content get privacyPolicy.page.title --lang de_CH,en
  show "$output"
  [[ $output == Datenschutzerklärung ]] || failed "the German title should be \"Datenschutzerklärung\""
}

scene_firmware() {
  local package=DFU_4417_Release___2_2_2.zip
  title "Firmware for the device in the car: is there a newer one? The download is cut off, and goes on from there"
  run 0 firmware check 2.2.1
  show "$output"
  expect "published version 2.2.2 update yes"
  run 14 firmware download
  show "$errors"
  [[ ! -e $ORVANE_DOCUMENTS_DIR/firmware/$package ]] || failed "a broken package stands under its name"
  run 0 --verbose firmware download
  show "$(exchanges)"
  show "$output"
  expect_exchanges "GET /downloads/$package" "  -> 206"
  expect "version 2.2.2"
  cmp "$folder/data/$package" "$ORVANE_DOCUMENTS_DIR/firmware/$package" || failed "the package is not the published one"
}

scene_errors() {
  title "What goes wrong says so in one line, with an exit code of its own"
  run 44 user show 4711
  show "$errors"
  run 12 --ca-file /etc/ssl/certs/ca-certificates.crt user show
  show "$errors"
}

# --- The show -----------------------------------------------------------------------------------

base_url=
output=
errors=
start_backend

# Nothing of the user's own settings gets in.
unset "${!ORVANE_@}"
export XDG_CONFIG_HOME=$folder XDG_STATE_HOME=$folder
# Room for every column.
# Or else bash would set it to the width of the terminal after each command.
shopt -u checkwinsize
export COLUMNS=120
export ORVANE_BASE_URL=$base_url ORVANE_CA_FILE=$folder/data/ca.pem ORVANE_API_KEY=sandbox-api-key
export ORVANE_USER=anna.keller ORVANE_SIGNING_KEY_FILE=$folder/data/signing.key
export ORVANE_FIRMWARE_HOST=$base_url ORVANE_DOCUMENTS_DIR=$folder/documents

printf '%sThe backend listens on %s%s\n' "$bold" "$base_url" "$plain"
scene_user
scene_update
scene_trips
scene_scores
scene_leaderboard
scene_discount
scene_invitation
scene_content
scene_firmware
scene_clock
scene_errors

printf '\n%sEverything was as it should be.%s\n' "$bold" "$plain"
