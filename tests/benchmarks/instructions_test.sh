#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What the comparison of instruction counts says of counts that moved.
set -uo pipefail
compare=$(cd "$(dirname "$0")/../.." && pwd)/benchmarks/instructions/compare.awk
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0

lines() { local line; for line in "$@"; do printf 'S1\t%s\tavx2\t%s\n' ${line}; done; }
lines 'small 1000000' 'large 4000000000' >"$work/kept"

# STATUS PATTERN MEASURED...: the exit status and what is said, all of it.
expect() {
    local status=$1 pattern=$2 said
    shift 2
    lines "$@" >"$work/measured"
    said=$(awk -f "$compare" "$work/kept" "$work/measured" 2>&1)
    if [ $? != "$status" ] || ! [[ $said =~ ^$pattern$ ]]; then
        echo "for $*: not $status, '$pattern', but: $said" >&2
        failed=1
    fi
}

expect 0 '' 'small 1000000' 'large 4000000000'
expect 0 '' 'small 1029999' 'large 3880000001'
expect 1 '.*error: S1 large avx2 takes 4120000001 instructions, .3.0 . beside the 4000000000 of the file' \
    'small 1000000' 'large 4120000001'
expect 0 '.*: S1 small avx2 takes 969999 .*-3.0 . beside the 1000000 of the file; .*--update.*' \
    'small 969999' 'large 4000000000'
expect 1 '.*error: S1 large avx2 was not counted' 'small 1000000'
expect 1 '.*error: S1 huge avx2 is not in the file; .*--update.*' 'small 1000000' 'large 4000000000' 'huge 1'
expect 0 '' 'small 1000000' 'large -'
exit $failed
