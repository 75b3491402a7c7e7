#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Everything that a release is made of, from a clean clone, into build/release-artifacts: packages of each Debian with their bills
# of materials and notices, the sources, the description of the binary interface, the documentation, what has changed, and sums.
# Nothing is published or tagged; the last lines say how.
#   tools/release.sh [--trial]         --trial: before CHANGELOG.md has the version's section; what is unreleased counts as that
#   tools/release.sh check [--trial]   whether it could be made
#   tools/release.sh notes <version>   that section of CHANGELOG.md
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly artifacts=$PWD/build/release-artifacts clone=$PWD/build/release-clone

refuse() {
  echo "release: $*" >&2
  exit 1
}

# notes <version>: what stands in CHANGELOG.md between its heading and the next one.
notes() {
  awk -v version="$1" '
    /^## / { inside = index($0, "## [" version "]") == 1; next }
    inside && (NF > 0 || lines > 0) { text[++lines] = $0 }
    END {
      while (lines > 0 && text[lines] == "") --lines
      for (i = 1; i <= lines; ++i) print text[i]
      exit lines == 0
    }' CHANGELOG.md
}

# has_heading <version>: a release has a day.
has_heading() {
  grep -Eqx "## \[${1//./\\.}\] - [0-9]{4}-[01][0-9]-[0-3][0-9]" CHANGELOG.md
}

# check_tree <version> <section of CHANGELOG.md>: whether this can be released at all.
check_tree() {
  local version=$1 section=$2 changes tagged
  changes=$(git status --porcelain)
  [[ -z $changes ]] || refuse "there are changes that are not committed:"$'\n'"$changes"
  grep -Fq "\"version-semver\": \"$version\"" packaging/vcpkg/ports/orvane/vcpkg.json ||
    refuse "Orvane/Version.h says $version, and the port in packaging/vcpkg does not"
  if [[ $section == "$version" ]]; then
    has_heading "$version" || refuse "Orvane/Version.h says $version; CHANGELOG.md has no section \"## [$version] - <yyyy-mm-dd>\""
    ! notes Unreleased >/dev/null || refuse "CHANGELOG.md has changes that are not in the section of $version"
  fi
  notes "$section" >/dev/null || refuse "CHANGELOG.md says nothing of $section"
  tagged=$(git rev-parse --quiet --verify "refs/tags/v$version^{commit}" || true)
  [[ -z $tagged || $tagged == $(git rev-parse HEAD) ]] || refuse "v$version has been released, and was another commit"
}

# doc_of <package file> <name of a file in its documentation>
doc_of() {
  dpkg-deb --fsys-tarfile "$1" | tar --extract --to-stdout --wildcards "./usr/share/doc/*/$2"
}

# take_packages <suite>: with what is told of each of them, to be read without unpacking it.
take_packages() {
  local file name
  mkdir -p "$artifacts/$1"
  cp "build/packages/$1"/*.deb "$artifacts/$1"
  for file in "$artifacts/$1"/*.deb; do
    name=$(dpkg-deb --field "$file" Package)
    doc_of "$file" "$name.spdx.json" >"${file%.deb}.spdx.json"
    doc_of "$file" THIRD-PARTY-NOTICES.gz | gunzip >"${file%.deb}.notices.txt"
  done
}

# packed <archive> <tar argument...>: the same bytes every time.
packed() {
  local archive=$1
  shift
  tar --create --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$(git log -1 --format=%ct)" "$@" |
    gzip --best --no-name >"$archive"
}

# make_release <version> <section>
make_release() {
  local version=$1 section=$2
  rm -rf "$artifacts" "$clone"
  mkdir -p "$artifacts"
  git clone --quiet . "$clone"
  cd "$clone"
  notes "$section" >"$artifacts/notes.md"
  git archive --format=tar --prefix="orvane-$version/" HEAD | gzip --best --no-name >"$artifacts/orvane-$version.tar.gz"

  ./dev abi
  mkdir -p "$artifacts/abi"
  cp "packaging/abi/${version%.*}"/* "$artifacts/abi"
  ./dev docs
  packed "$artifacts/orvane-$version-documentation.tar.gz" --directory build/docs \
    --transform "s,^html,orvane-$version-documentation," html
  for suite in bookworm trixie; do
    ./dev package "$suite"
    take_packages "$suite"
  done

  (cd "$artifacts" && find . -type f -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' sha256sum) >"$clone/SHA256SUMS"
  mv "$clone/SHA256SUMS" "$artifacts"
  echo "release: $version is in build/release-artifacts"
  if [[ $section == "$version" ]]; then
    echo "  git tag --annotate --file=build/release-artifacts/notes.md --cleanup=verbatim v$version"
  fi
}

verb=make_release
if [[ ${1:-} == notes ]]; then
  notes "$2"
  exit
elif [[ ${1:-} == check ]]; then
  verb=true
  shift
fi
version=$(tools/version.sh)
section=$version
case ${1:-} in
  '') ;;
  --trial) section=Unreleased ;;
  *) refuse "there is no '$1'; usage: ./dev release [--trial]" ;;
esac
check_tree "$version" "$section"
echo "release: $version can be released"
"$verb" "$version" "$section"
