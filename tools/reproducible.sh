#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Whether the packages are the same bytes wherever they are built: makes them here, and once more from a copy of the checkout in
# another folder, in another time zone, under another umask and without the compiler's cache; and compares what is in them, and
# the libraries and programs as they were before they were stripped, with their debugging information.
#   tools/reproducible.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
work=$(mktemp -d)
readonly work copy=$work/a-folder-of-another-name/and-depth
trap 'rm -rf "$work"' EXIT

tools/copy-checkout.sh "$copy"

# outputs: what is compared, one per line.
outputs() {
  local file
  for file in build/packages/*.deb build/package/Orvane/lib*.{a,so.*.*.*} build/package/tools/*/orvane{,-sandbox}; do
    [[ ! -f $file ]] || echo "$file"
  done
}

./dev package
(umask 027 && cd "$copy" && TZ=Pacific/Apia HOME=$work CCACHE_DISABLE=1 ./dev package)

different=no
diff <(outputs) <(cd "$copy" && outputs) || different=yes
while read -r file; do
  if ! cmp --silent "$file" "$copy/$file"; then
    echo "reproducible: $file differs" >&2
    different=yes
    mkdir -p build/reproducible
    cp "$copy/$file" build/reproducible
  fi
done < <(outputs)
if [[ $different == yes ]]; then
  echo "reproducible: the other ones are in build/reproducible; diffoscope tells where two of them part" >&2
  exit 1
fi
outputs | xargs sha256sum
