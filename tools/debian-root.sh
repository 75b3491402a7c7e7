#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# Runs a command on a copy of this checkout in a bare Debian root, so that nothing of this machine's helps it: only what the
# command installs itself is there. The root stays in build/roots for the next time; --fresh makes it anew. Inside, ORVANE_ROOT
# is the root's name.
#   tools/debian-root.sh [--fresh] [--name NAME] <suite> <command...>     the folder's name is the suite's, unless given
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

fresh=no name=
while [[ ${1:-} == --* ]]; do
  case $1 in
    --fresh) fresh=yes ;;
    --name)
      name=$2
      shift
      ;;
    *)
      echo "debian-root: there is no '$1'" >&2
      exit 2
      ;;
  esac
  shift
done
readonly suite=$1
shift
name=${name:-$suite}
readonly root=$PWD/build/roots/$name
readonly inside=/orvane

if ((EUID != 0)); then
  echo "debian-root: only root can make one" >&2
  exit 1
fi

# Where this machine gets its own Debian from; nothing where it is none, and mmdebstrap knows one itself.
mirror() {
  local codename
  grep -qx 'ID=debian' /etc/os-release || return 0
  codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
  # shellcheck disable=SC2016 # apt's own variables
  apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 2>/dev/null |
    awk -v suite="$codename" '$2 == suite { print $1; exit }'
}

make_root() {
  local from
  from=$(mirror || true)
  rm -rf "$root.new" "$root"
  mkdir -p "$(dirname "$root")"
  echo "debian-root: making a bare $suite in build/roots/$name"
  mmdebstrap --quiet --variant=apt --include=ca-certificates,git "$suite" "$root.new" ${from:+"$from"}
  mv "$root.new" "$root"
}

[[ $fresh == no && -d $root ]] || make_root
tools/copy-checkout.sh "$root$inside"
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
# As every installed machine has it.
[[ -f $root/etc/hosts ]] || printf '127.0.0.1 localhost\n::1 localhost\n' >"$root/etc/hosts"
cache=${CCACHE_DIR:-$HOME/.cache/ccache}
mkdir -p "$cache" "$root/var/cache/ccache"

# Mounts of its own, which go with it; processes of its own, which end with it.
# shellcheck disable=SC2016 # expanded inside
exec unshare --mount --pid --fork --kill-child --mount-proc bash -c '
  set -euo pipefail
  root=$1 cache=$2 inside=$3 name=$4
  shift 4
  mount -t proc proc "$root/proc"
  mount --rbind /dev "$root/dev"
  mount --bind "$cache" "$root/var/cache/ccache"
  exec chroot "$root" env --ignore-environment HOME=/root LANG=C.UTF-8 TERM="${TERM:-dumb}" CCACHE_DIR=/var/cache/ccache \
    PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin ${CI:+CI="$CI"} ORVANE_ROOT="$name" \
    ${SOURCE_DATE_EPOCH:+SOURCE_DATE_EPOCH="$SOURCE_DATE_EPOCH"} \
    ${http_proxy:+http_proxy="$http_proxy"} \
    bash -c "cd $inside && exec \"\$@\"" bash "$@"
' bash "$root" "$cache" "$inside" "$name" "$@"
