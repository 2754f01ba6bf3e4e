# SPDX-License-Identifier: Apache-2.0
# Counts the instructions of countedPicture in qemu's log: qemu-aarch64-static -d in_asm,exec,nochain ... | awk -f blocks.awk.
# The log lists the instructions of each block once, behind "IN:", and a line "Trace" with its address each time it runs.
# The count begins at the first block of countedPicture and ends where main goes on.
function address(hexadecimal) {
    sub(/^0+/, "", hexadecimal)
    return hexadecimal
}
/^IN:/ { start = ""; listing = 1; next }
listing && /^0x/ {
    if (start == "") {
        start = address(substr($1, 3, length($1) - 3))
        size[start] = 0
    }
    ++size[start]
    next
}
/^Trace/ {
    listing = 0
    if ($5 == "countedPicture") counting = 1
    else if ($5 == "main") counting = 0
    if (!counting) next
    split($4, parts, "/")
    block = address(parts[2])
    if (!(block in size)) {
        print "blocks.awk: a block that was not listed: " block > "/dev/stderr"
        failed = 1
        exit
    }
    count += size[block]
}
END {
    if (failed || count == 0) exit 1
    printf "%d\n", count
}
