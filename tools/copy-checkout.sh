#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Copies the files that are tracked or about to be, as they are now and with their times, to where a build of them may be left
# from before: what has not changed is not built again.
#   tools/copy-checkout.sh <folder>
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mkdir -p "$1"
find "$1" -mindepth 1 -maxdepth 1 ! -name build -exec rm -rf {} +
git ls-files -z --cached --others --exclude-standard |
  while IFS= read -r -d '' file; do [[ ! -e $file ]] || printf '%s\0' "$file"; done |
  tar --create --null --files-from=- | tar --extract --directory "$1"
