# SPDX-License-Identifier: Apache-2.0
# Makes the tables of docs/performance.md from what bench_kernels prints with --benchmark_format=csv. Of a row that is
# there several times the least counts. Rows are kernel/size/plain and kernel/size/fast, a kernel's name ending in
# parameters. Lines `row kernel/size` before them give the order of the tables.
#
# The first table has each kernel beside its plain form. Where a kernel was timed with MANY values or more of its last
# parameter, a table after it has these side by side; those without a plain form are there only.
BEGIN {
    MANY = 8
    scale["ns"] = 1e-6; scale["us"] = 1e-3; scale["ms"] = 1; scale["s"] = 1e3
}
/^row / { seenRow($2); next }
!/\/manual_time/ { next }
{
    split($0, quoted, "\"")
    name = quoted[2]
    sub(/\/manual_time.*/, "", name)
    if (quoted[2] ~ /_(mean|median|stddev|cv)$/) next
    split(quoted[3], field, ",")
    if (field[5] == "" || field[3] == "") { print "tables: no time for " name > "/dev/stderr"; failed = 1; next }
    form = name; sub(/.*\//, "", form)
    sub(/\/[^\/]*$/, "", name)
    seenRow(name)
    ms = field[3] * scale[field[5]]
    key = name SUBSEP form
    if (!(key in best) || ms < best[key]) best[key] = ms
}
END {
    for (i = 1; i <= count; ++i) sortIntoGroup(names[i])
    print "| Kernel | Size | Plain, ms | Fast, ms | Ratio |\n|---|---|--:|--:|--:|"
    for (i = 1; i <= count; ++i) printBesidePlain(names[i])
    for (g = 1; g <= groups; ++g) if (values[group[g]] >= MANY) printValues(group[g])
    exit failed
}

function seenRow(name) {
    if (!(name in seen)) { seen[name] = 1; names[++count] = name }
}

# A kernel's last parameter, as stroke/width=12/1024x256, makes it one of the group stroke/width=/1024x256.
function sortIntoGroup(name,    value, start) {
    if (!match(name, /=[0-9]+\/[^\/]*$/) || !((name SUBSEP "fast") in best)) return
    start = substr(name, 1, RSTART)
    value = substr(name, RSTART + 1); sub(/\/.*/, "", value)
    groupOf[name] = start substr(name, RSTART + 1 + length(value))
    if (!(groupOf[name] in values)) group[++groups] = groupOf[name]
    at = ++values[groupOf[name]]
    while (at > 1 && value_[groupOf[name], at - 1] > value + 0) {
        value_[groupOf[name], at] = value_[groupOf[name], at - 1]
        --at
    }
    value_[groupOf[name], at] = value + 0
    fast[groupOf[name], value + 0] = best[name, "fast"]
}

function printBesidePlain(name,    kernel, size, plain) {
    plain = (name SUBSEP "plain") in best
    if (!((name SUBSEP "fast") in best)) return
    if (!plain && name in groupOf && values[groupOf[name]] >= MANY) return
    kernel = size = name
    sub(/\/[^\/]*$/, "", kernel); sub(/.*\//, "", size)
    printf "| %s | %s | %s | %s | %s |\n", kernel, size, plain ? digits(best[name, "plain"]) : "",
        digits(best[name, "fast"]), plain ? digits(best[name, "plain"] / best[name, "fast"]) : ""
}

function printValues(name,    at, title, size, parameter, rule) {
    title = size = parameter = name
    sub(/\/[^\/]*$/, "", title); sub(/.*\//, "", size)
    parameter = title
    sub(/\/[^\/]*=$/, "", title); sub(/.*\//, "", parameter); sub(/=$/, "", parameter)
    printf "\n| %s, %s: %s |", title, size, parameter
    rule = "|---|"
    for (at = 1; at <= values[name]; ++at) { printf " %d |", value_[name, at]; rule = rule "--:|" }
    printf "\n%s\n| ms |", rule
    for (at = 1; at <= values[name]; ++at) printf " %s |", digits(fast[name, value_[name, at]])
    printf "\n"
}

# About three digits.
function digits(number) {
    return sprintf(number < 0.1 ? "%.4f" : number < 1 ? "%.3f" : number < 10 ? "%.2f" : number < 100 ? "%.1f" : "%.0f",
                   number)
}
