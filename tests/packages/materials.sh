#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The bills of materials and the notices of packages that are installed: whether each is an SPDX 2.3 document that hangs
# together, and whether it names what the package's programs and libraries are really linked with, and nothing else.
#   tests/packages/materials.sh <folder of packages>
set -euo pipefail
packages=$(cd "$1" && pwd)
failed=no

fail() {
  echo "materials: $*" >&2
  failed=yes
}

# Of the fields those that are needed, and those that stand for something else: all the ways in which it can be wrong.
# shellcheck disable=SC2016 # jq's own variables
readonly validity='
  def string: type == "string" and length > 0;
  def check(condition; text): if condition then empty else text end;
  def licences: ["Apache-2.0", "BSD-3-Clause", "BSL-1.0", "GPL-3.0-or-later WITH GCC-exception-3.1", "LGPL-2.1-or-later", "MIT",
    "NOASSERTION", "Unicode-3.0", "Unicode-DFS-2016", "Zlib", "blessing", "curl"];
  ([.SPDXID] + [.packages[].SPDXID]) as $ids
  | check(.spdxVersion == "SPDX-2.3" and .dataLicense == "CC0-1.0" and .SPDXID == "SPDXRef-DOCUMENT"; "the head"),
    check(.name == "\($package)-\($version)"; "the name"),
    check(.documentNamespace | test("^https://[^#]+-[0-9a-f]{16}$"); "the namespace"),
    check(.creationInfo.created | test("^[0-9]{4}-[01][0-9]-[0-3][0-9]T[0-2][0-9]:[0-5][0-9]:[0-5][0-9]Z$"); "when it was made"),
    check(.creationInfo.creators | length > 0 and all(test("^(Person|Organization|Tool): ")); "who made it"),
    check(($ids | length) == ($ids | unique | length); "an identifier stands twice"),
    (.packages[]
      | (.name // "a package") as $name
      | check(.SPDXID | test("^SPDXRef-[A-Za-z0-9.-]+$"); "the identifier of \($name)"),
        check((.name | string) and (.versionInfo | string) and (.downloadLocation | string); "\($name) lacks a field"),
        check(.filesAnalyzed == false; "\($name) has no files here"),
        check([.licenseConcluded, .licenseDeclared] | all(IN(licences[])); "the licence of \($name)"),
        check(.supplier | test("^(Person|Organization): |^NOASSERTION$"); "the supplier of \($name)"),
        check([.externalRefs[] | select(.referenceType == "purl")][0].referenceLocator
          | test("^pkg:deb/[a-z]+/[a-z0-9.%2B-]+@[^?]+\\?arch="); "where \($name) is to be had")),
    check([.relationships[] | select(.relationshipType == "DESCRIBES")] | length == 1; "what it describes"),
    (.relationships[]
      | check(.relationshipType | IN("DESCRIBES", "DEPENDS_ON", "DYNAMIC_LINK", "STATIC_LINK"); "a relationship of another kind"),
        check([.spdxElementId, .relatedSpdxElement] | all(IN($ids[])); "a relationship to nothing")),
    ($ids - [.SPDXID] - [.relationships[].relatedSpdxElement] | .[] | "\(.) has no relationship")'

# related <document> <relationship>: the packages that its own has that relationship to.
related() {
  jq --raw-output --arg type "$2" '(.packages | map({(.SPDXID): .name}) | add) as $names
    | .relationships[] | select(.relationshipType == $type) | $names[.relatedSpdxElement]' "$1" | sort -u
}

# owner <file>: dpkg knows it by the name that it was installed with, which may lack the /usr of a merged system.
owner() {
  { dpkg-query -S "$1" 2>/dev/null || dpkg-query -S "${1#/usr}" 2>/dev/null || dpkg-query -S "/usr$1"; } |
    grep --invert-match '^diversion ' | head -n 1 | cut -d : -f 1
}

# needed <package>: those whose shared libraries its files name for the dynamic linker, its own brothers left out.
needed() {
  local file library path
  dpkg-query -L "$1" | while read -r file; do
    [[ ! -f $file || -L $file ]] || readelf --dynamic "$file" 2>/dev/null || true
  done | sed -n 's/.*(NEEDED).*\[\(.*\)\]$/\1/p' | sort -u | while read -r library; do
    path=$(ldconfig -p | awk -v name="$library" '$1 == name { print $NF; exit }')
    [[ -n $path ]] || path=/lib64/$library
    owner "$(realpath "$path")"
  done | grep -v '^liborvane' | sort -u
}

for file in "$packages"/*.deb; do
  package=$(dpkg-deb --field "$file" Package)
  document=/usr/share/doc/$package/$package.spdx.json
  notices=/usr/share/doc/$package/THIRD-PARTY-NOTICES.gz
  faults=$(jq --raw-output --arg package "$package" --arg version "$(dpkg-deb --field "$file" Version)" "$validity" "$document") || faults="it is no document of SPDX"
  [[ -z $faults ]] || fail "$document: $faults"

  if [[ $package != liborvane-dev ]]; then
    differences=$(diff <(needed "$package") <(related "$document" DYNAMIC_LINK)) ||
      fail "$document and the files of $package differ in what is linked:"$'\n'"$differences"
  fi
  while read -r name; do
    zcat "$notices" | grep --quiet --fixed-strings --word-regexp -- "$name" || fail "$notices does not name $name"
  done < <(related "$document" DYNAMIC_LINK; related "$document" STATIC_LINK)
  for text in 'Boost Software License' 'Permission is hereby granted'; do
    zcat "$notices" | grep --quiet --fixed-strings "$text" || fail "$notices lacks the text of a licence: $text"
  done
  echo "materials: $package $(jq '.packages | length - 1' "$document") packages"
done
[[ $failed == no ]]
