#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What the comparison of instruction counts says of counts that moved, and the count of a small log of blocks.
set -uo pipefail
scripts=$(cd "$(dirname "$0")/../.." && pwd)/benchmarks/instructions
compare=$scripts/compare.awk
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

block() { # ADDRESS NAME INSTRUCTIONS
    printf -- '----------------\nIN: %s\n' "$2"
    for ((i = 0; i < $3; ++i)); do printf '0x%08x:  d503201f  nop\n' $(($1 + 4 * i)); done
}
ran() { printf 'Trace 0: 0x7f0 [0000000001009331/%016x/00000001/00000200] %s\n' "$1" "$2"; }
counted=$({
    block 0x1000 main 5; ran 0x1000 main
    block 0x2000 countedPicture 3; ran 0x2000 countedPicture
    block 0x3000 blur 2; ran 0x3000 blur; ran 0x3000 blur; ran 0x2000 countedPicture
    ran 0x1000 main; ran 0x3000 blur
} | awk -f "$scripts/blocks.awk")
[ "$counted" = 10 ] || { echo "counted $counted instructions in the log, not 10" >&2; failed=1; }
exit $failed
