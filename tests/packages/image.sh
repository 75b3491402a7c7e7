#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The image of the local backend (packaging/oci), built by Buildah on a bare Debian that is made for it, so that no registry of
# images is asked; and whether it answers, in a network of its own. As root.
#   tests/packages/image.sh <folder of packages for bookworm>
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
packages=$(cd "$1" && pwd)
cd "$here/../.."
readonly here packages work=$PWD/build/image
mkdir -p "$work"
export BUILDAH_ISOLATION=chroot STORAGE_DRIVER=vfs

# On the machine's own storage nothing is left.
images() {
  buildah --root "$work/storage" --runroot "$work/run" "$@"
}
rm -rf "$work/storage" "$work/run"
trap 'images rm --all >/dev/null 2>&1 || true; rm -rf "$work/storage" "$work/run"' EXIT

[[ -f $work/base.tar ]] || mmdebstrap --quiet --variant=minbase --include=ca-certificates bookworm "$work/base.tar"
base=$(images from scratch)
images add --quiet "$base" "$work/base.tar" / >/dev/null
images commit --quiet "$base" localhost/debian-bare >/dev/null
images build --build-arg BASE=localhost/debian-bare --file packaging/oci/Containerfile --tag localhost/orvane-sandbox "$packages"

container=$(images from localhost/orvane-sandbox)
# As an engine would start it, on a network that has the loopback interface alone.
mapfile -t command < <(images inspect --format '{{range .OCIv1.Config.Entrypoint}}{{println .}}{{end}}{{range .OCIv1.Config.Cmd}}{{println .}}{{end}}' \
  "$container" | sed '/^$/d')
echo "image: ${command[*]}"
folder=$(images mount "$container")
# shellcheck disable=SC2016 # expanded inside
unshare --net bash -euo pipefail -c '
  ip link set lo up
  folder=$1
  shift
  chroot --userspec=orvane "$folder" "$@" >"$folder.log" 2>&1 &
  server=$!
  trap "kill $server 2>/dev/null || true" EXIT
  # Written as soon as requests are answered; the process ends with it where it can not be.
  timeout 60 bash -c "until [[ -f $folder/data/ready.json ]] || ! kill -0 $server 2>/dev/null; do sleep 0.1; done" || true
  [[ -f $folder/data/ready.json ]] || { cat "$folder.log" >&2; exit 1; }
  curl --silent --show-error --fail --cacert "$folder/data/ca.pem" https://localhost:8443/admin/health | grep --quiet ok
  HOME=/data chroot --userspec=orvane "$folder" orvane --sandbox=/data user show | grep --quiet Anna
  kill -TERM $server
  wait $server
' bash "$folder" "${command[@]}"
[[ ! -e $folder/data/ready.json ]] || {
  echo "image: it did not stop in order" >&2
  exit 1
}
for file in liborvane0.1/THIRD-PARTY-NOTICES.gz orvane-tools/orvane-tools.spdx.json orvane-tools/copyright; do
  [[ -f $folder/usr/share/doc/$file ]] || {
    echo "image: there is no $file in it" >&2
    exit 1
  }
done
echo "image: it answers, and stops when it is told to; $(du -sh --apparent-size "$folder" | cut -f 1)"
