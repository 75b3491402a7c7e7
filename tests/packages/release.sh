#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# When ./dev release refuses, and which notes it writes: on repositories of a few files.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
readonly here work
trap 'rm -rf "$work"' EXIT
export GIT_AUTHOR_NAME=A GIT_AUTHOR_EMAIL=a@orvane.example GIT_COMMITTER_NAME=A GIT_COMMITTER_EMAIL=a@orvane.example
export GIT_CONFIG_GLOBAL=/dev/null

readonly port=packaging/vcpkg/ports/orvane/vcpkg.json
mkdir -p "$work/Orvane" "$work/tools" "$work/${port%/*}"
cp "$here/../../tools/"{release,version}.sh "$work/tools"
cd "$work"
printf '#define ORVANE_VERSION_%s\n' 'MAJOR 0' 'MINOR 2' 'PATCH 0' >Orvane/Version.h
echo '{"version-semver": "0.1.0"}' >"$port"
git init --quiet
commit() {
  git add --all
  git commit --quiet --allow-empty --message="$1"
}

# changelog <unreleased text> <heading of a section>
changelog() {
  printf '# Changelog\n\n## [Unreleased]\n\n%s\n\n## %s\n\n### Added\n\n- What came with %s.\n' "$1" "$2" "${2%% *}" >CHANGELOG.md
}

# expect <what it says> [--trial]
expect() {
  local text=$1 said
  shift
  said=$(tools/release.sh check "$@" 2>&1) || true
  if [[ $said != *"$text"* ]]; then
    printf 'release: "%s" was to be said, and was not:\n%s\n' "$text" "$said" >&2
    exit 1
  fi
}

changelog '- Something.' '[0.1.0] - 2026-01-01'
commit first
expect 'the port in packaging/vcpkg does not' --trial
echo '{"version-semver": "0.2.0"}' >"$port"
commit 'the port, too'
expect 'CHANGELOG.md has no section "## [0.2.0]'
expect 'can be released' --trial
changelog '' '[0.2.0]'
commit 'without a day'
expect 'CHANGELOG.md has no section "## [0.2.0]'
changelog '- Something.' '[0.2.0] - 2026-02-02'
commit 'with something left'
expect 'not in the section of 0.2.0'
changelog '' '[0.2.0] - 2026-02-02'
expect 'not committed'
commit second
expect 'can be released'
git tag v0.2.0
expect 'can be released'
commit third
expect 'v0.2.0 has been released'
[[ $(tools/release.sh notes 0.2.0) == $'### Added\n\n- What came with [0.2.0].' ]] || {
  echo "release: the notes are:" && tools/release.sh notes 0.2.0
  exit 1
} >&2
