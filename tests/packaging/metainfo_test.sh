#!/usr/bin/env bash
# metainfo_test.sh BUILD_DIR
# The AppStream metadata as cmake --install lays it out: valid on its own, and its launchable names
# the desktop entry installed beside it (validate-tree finds it by that name).
set -euo pipefail
root="$(mktemp -d)"
trap 'rm -rf "$root"' EXIT
cmake --install "$1" --prefix "$root/usr" >/dev/null
appstreamcli validate --no-net "$root"/usr/share/metainfo/*.metainfo.xml
appstreamcli validate-tree --no-net "$root"
