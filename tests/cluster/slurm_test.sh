#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# slurm_test.sh SOURCES ZVTEXT: runs the scripts of docs/clusters.md over 2,000 titles, through a Slurm of one node on the
# loopback interface and through GNU parallel. One task of the array is killed, and the array submitted again. Every picture
# must be there and equal to that of a single run. Needs root, slurm-wlm, munge and parallel (scripts/setup full).
set -euo pipefail
sources=$(realpath "$1") zvtext=$(realpath "$2") titles=2000
work=$(mktemp -d)
stop() {
    for pid in "$work"/run/*.pid; do
        [ -s "$pid" ] && kill "$(cat "$pid")" 2>/dev/null
    done
    sleep 1
    rm -rf "$work"
}
trap stop EXIT
fail() {
    echo "slurm_test: $*" >&2
    tail -n 20 "$work"/*.log "$work"/slurm-*.out >&2 2>/dev/null
    exit 1
}

# Prints the code block that follows the heading.
block() {
    awk -v heading="## $1" '$0 == heading { found = 1 } found && /^```/ { if (++fences == 2) exit; next } fences' \
        "$sources/docs/clusters.md"
}

start_slurm() {
    mkdir -p "$work"/{run,state,spool,munge}
    chmod 755 "$work"
    dd if=/dev/urandom of="$work/munge/key" bs=128 count=1 status=none
    chmod 700 "$work/munge" && chmod 400 "$work/munge/key"
    munged --force --key-file="$work/munge/key" --socket="$work/run/munge" --pid-file="$work/run/munged.pid" \
        --log-file="$work/munge.log" --seed-file="$work/munge/seed"
    cat > "$work/slurm.conf" <<END
ClusterName=loopback
SlurmctldHost=$(hostname)(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthInfo=socket=$work/run/munge
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
SlurmctldPidFile=$work/run/slurmctld.pid
SlurmdPidFile=$work/run/slurmd.pid
SlurmctldLogFile=$work/slurmctld.log
SlurmdLogFile=$work/slurmd.log
SlurmctldPort=26817
SlurmdPort=26818
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
SchedulerParameters=sched_interval=1
MpiDefault=none
NodeName=$(hostname) NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=$(hostname) Default=YES State=UP
END
    export SLURM_CONF=$work/slurm.conf
    slurmctld -c
    slurmd
    for _ in $(seq 60); do
        ! sinfo --noheader --format=%T 2>/dev/null | grep -q idle || return 0
        sleep 0.5
    done
    fail "Slurm did not start"
}

wait_for_jobs() {
    for _ in $(seq 600); do
        [ -n "$(squeue --noheader)" ] || return 0
        sleep 0.5
    done
    fail "the jobs did not end"
}

pictures() {
    find pictures -name '*.png' | wc -l
}

PATH=$(dirname "$zvtext"):$PATH
mkdir "$work/single" "$work/array" "$work/parallel"
for ((i = 1; i <= titles; ++i)); do
    echo "{\"id\": \"t$i\", \"text\": \"Title $i\", \"output\": \"$((i % 100))/$i.png\"}"
done | tee "$work/single/titles.jsonl" "$work/array/titles.jsonl" > "$work/parallel/titles.jsonl"

cd "$work/single"
zvtext batch titles.jsonl --font 'DejaVu Sans:bold' --size 48 --stroke 4:#202020 --no-fallback --output-dir pictures \
    > results.jsonl
[ "$(pictures)" = $titles ] || fail "the single run made $(pictures) pictures"

start_slurm
cd "$work/array"
block Slurm > titles.sh
job=$(sbatch --parsable titles.sh)
while [ ! -s results-1.jsonl ]; do sleep 0.05; done
scancel --signal=KILL --full "${job}_1"
wait_for_jobs
[ "$(pictures)" -lt $titles ] || fail "the task was killed too late to tell"
sbatch --parsable titles.sh > /dev/null
wait_for_jobs
diff -r -x .zvtext-batch pictures ../single/pictures || fail "the array's pictures are not those of the single run"
for ((i = 1; i <= titles; ++i)); do echo "t$i"; done | sort > ids
sed -n 's/.*"id":"\([^"]*\)".*/\1/p' results-?.jsonl | sort | diff ids - || fail "a title has no result, or two"

cd "$work/parallel"
block 'GNU parallel' > titles.sh
sh titles.sh
diff -r -x .zvtext-batch pictures ../single/pictures || fail "GNU parallel's pictures are not those of the single run"
seq $titles | diff - <(sed 's/^{"line":\([0-9]*\),.*/\1/' results.jsonl | sort -n) || fail "lines of the results"
echo "slurm_test: $titles titles by an array of jobs and by GNU parallel: all there, all equal"
