# SPDX-License-Identifier: Apache-2.0
# Compares counts with those that are kept: awk -f compare.awk counts.tsv measured.tsv. Lines are scene, size,
# instruction set, count; others begin with #. More than 3 % above what is kept is an error, more than that below a
# note; a line that only one of the files has is an error. A measured count of - was left out. Exit status 1 after
# errors.
BEGIN {
    FS = "\t"
    tolerance = 0.03
    update = "; scripts/instructions --update writes the file anew"
}
/^#/ || NF == 0 { next }
{ name = $1 " " $2 " " $3 }
FILENAME == ARGV[1] { kept[name] = $4; next }
!(name in kept) { fail(name " is not in the file" update); next }
{
    measured[name] = 1
    if ($4 == "-") next
    change = ($4 - kept[name]) / kept[name]
    figures = sprintf("%s takes %.0f instructions, %+.1f %% beside the %.0f of the file", name, $4, 100 * change, kept[name])
    if (change > tolerance) fail(figures)
    else if (change < -tolerance) print "instructions: " figures update > "/dev/stderr"
}
END {
    for (name in kept) if (!(name in measured)) fail(name " was not counted")
    exit failed
}

function fail(what) {
    print "instructions: error: " what > "/dev/stderr"
    failed = 1
}
