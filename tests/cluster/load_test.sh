#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# load_test.sh ZVTEXT: ZVEX_TEST_TITLES words (400 if unset) of the system's word list through one batch of two workers, which is
# killed three times (SIGKILL) and resumed. Every word must have its picture and its result once, nothing that a result has
# named may be missing or made again, and the memory must be late what it was early. Prints the figures.
set -euo pipefail
zvtext=$(realpath "$1") titles=${ZVEX_TEST_TITLES:-400}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
fail() {
    echo "load_test: $*" >&2
    exit 1
}

# Numbers follow the words where the list is shorter than that.
awk -v titles="$titles" '{ words[NR] = $0 }
    END { for (i = 0; i < titles; ++i)
              printf "{\"id\": %d, \"text\": \"%s\", \"output\": \"%d/%d.png\"}\n", i + 1,
                     words[i % NR + 1] (i < NR ? "" : " " int(i / NR)), i / 1000, i + 1 }' /usr/share/dict/words > titles.jsonl
[ "$(wc -l < titles.jsonl)" = "$titles" ] || fail "no list of words: scripts/setup installs wamerican"

# The memory of the batch and its workers that none of them shares, in kB.
memory() {
    local process
    for process in "$1" $(cat "/proc/$1/task/$1/children" 2>/dev/null); do
        cat "/proc/$process/smaps_rollup" 2>/dev/null || true
    done | awk '/^Private/ { sum += $2 } END { print sum + 0 }'
}

ids() {
    sed -n 's/^{"line":[0-9]*,"id":\([0-9]*\),.*}$/\1/p' "$@"
}

touch made
peaks=() begin=$(date +%s)
for run in 1 2 3 4; do
    : > "results-$run"  # the loop may look before the batch begins
    "$zvtext" batch titles.jsonl --font 'DejaVu Sans:bold' --size 24 --stroke 2:#202020 --no-fallback \
        --output-dir pictures --jobs 2 --resume > "results-$run" &
    process=$! peak=0
    while kill -0 "$process" 2>/dev/null; do
        results=$(wc -l < "results-$run")
        # In its second half: one run may get through an eighth of the list more than the one before, the last to the end.
        if [ "$results" -ge $((titles * (2 * run - 1) / 8)) ]; then
            now=$(memory "$process")
            [ "$now" -le "$peak" ] || peak=$now
        fi
        [ "$run" = 4 ] || [ "$results" -lt $((titles * run / 4)) ] || kill -KILL "$process" 2>/dev/null || true  # it may just have ended
        sleep 0.05
    done
    wait "$process" 2>/dev/null || [ "$run" != 4 ] || fail "the last run failed: $(grep -m 3 error results-4)"
    peaks+=("$peak")
    # The last line of a killed run may be cut short.
    sed -n '/}$/p' "results-$run" > whole
    sed '/"skipped"/d' whole | ids | sort > now
    [ -z "$(comm -12 made now)" ] || fail "run $run made again what a result had named: $(comm -12 made now | head -n 3)"
    sort -o made made now
    sed -n 's/.*"path":"\([^"]*\)".*/\1/p' whole | xargs -d '\n' -n 1000 ls > /dev/null || fail "run $run named what is not there"
    counts="${counts:-}${counts:+, }$(wc -l < whole)"
done
seconds=$(($(date +%s) - begin))

seq "$titles" | cmp - <(ids results-4) || fail "a title has no result, or two, or out of its order"
find pictures -type f -not -name .zvtext-batch -printf '%P\n' | sort | cmp - <(sed 's/.*"output": "\(.*\)"}/\1/' titles.jsonl | sort) ||
    fail "the pictures are not those of the list"
[ "${peaks[3]}" -lt $((peaks[0] + peaks[0] / 4 + 4096)) ] || fail "memory grew from ${peaks[0]} kB to ${peaks[3]} kB"
echo "load_test: $titles titles, killed three times, results in the four runs $counts: all there, none lost or made twice;" \
    "$seconds s, private memory in the runs ${peaks[*]} kB"
