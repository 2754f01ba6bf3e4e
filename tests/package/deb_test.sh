#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Makes the packages and uses them in a Debian that holds nothing else. Needs Debian's archive; makes the system in a user's
# namespace if it is not root's.
#     deb_test.sh SOURCE_DIR
set -euo pipefail
source=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
"$source/scripts/package" "$work/debs"
cp "$source/examples/cpp/title.cpp" "$source/tests/package/deb_smoke.sh" "$work/debs"
mmdebstrap --quiet --variant=minbase --format=null --customize-hook="copy-in $work/debs /" \
    --customize-hook='chroot "$1" sh /debs/deb_smoke.sh' bookworm /dev/null
