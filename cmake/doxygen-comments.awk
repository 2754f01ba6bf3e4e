# SPDX-License-Identifier: Apache-2.0
# Doxygen's input filter: makes its comments of the headers' plain ones, so that the headers keep their style. As a reader
# takes it, a comment belongs to the declarations after it, up to a blank line, except those with one of their own at
# their end. One that a blank line follows is about the file. Enumerators, constructors and assignments may speak for
# themselves.
# Left out: what is deleted or defaulted and destructors, where no comment is theirs, and the bodies' comments.
# One line stays one line, so that warnings point into the header.

# Follows the braces of a line: kind[depth] is what stands in them, `statement` what is begun and not yet ended.
function follow(code,   k, c) {
    gsub(/"([^"\\]|\\.)*"/, "", code)
    statement = statement == "" ? "" : statement " "
    for (k = 1; k <= length(code); k++) {
        c = substr(code, k, 1)
        if (c == "{") {
            if (kind[depth] == "body" || statement ~ /\)/) kind[depth + 1] = "body"
            else if (statement ~ /(^| )enum /) kind[depth + 1] = "enum"
            else if (statement ~ /(^| )(namespace|class|struct|extern) /) kind[depth + 1] = "scope"
            else kind[depth + 1] = "body"
            if (kind[++depth] != "body") group = ""
            statement = ""
        } else if (c == "}") {
            depth--
            statement = ""
        } else if (c == ";" || (c == "," && kind[depth] == "enum")) {
            statement = ""
        } else {
            statement = statement c
        }
    }
    if (statement ~ /^[ \t]*$|(public|protected|private):[ \t]*$/) statement = ""
}

# Prints the comment lines held back, now that it is known what they belong to.
function release(mark,   k) {
    for (k = 1; k <= held; k++) {
        sub(/\/\//, k == 1 ? mark : (mark ~ /\*/ ? "" : mark), comment[k])
        print comment[k]
    }
    held = 0
}

BEGIN { kind[0] = "scope" }

{
    line = $0
    if (kind[depth] == "body") {
        sub(/\/\/.*/, "", line)
        print line
        follow(line)
        next
    }
    if (line ~ /^[ \t]*\/\// && statement == "") {
        if (line ~ /SPDX/) { print ""; next }
        if (held == 0) group = ""
        comment[++held] = line
        sub(/^[ \t]*\/\/ ?/, "", line)
        group = group " " line
        next
    }
    if (line ~ /^[ \t]*$/) {
        if (held > 0 && group !~ /^ ---/) {
            sub(/\/\//, "/// \\file\n///", comment[1])
            release("///")
        }
        release("//")
        group = ""
        print ""
        next
    }

    own = held > 0
    release("///")
    code = line
    sub(/[ \t]*\/\/.*/, "", code)
    if (code ~ /^#define ZVEX_.*_H_$/) { print ""; next }
    if (code ~ /^#/ || code ~ /\\$/ || macro) {  # its lines are no declarations
        macro = code ~ /\\$/
        print line
        next
    }
    if (match(code, /^ *(class|struct) [A-Za-z_]+/) && code !~ /;$/) {
        class = substr(code, RSTART, RLENGTH)
        sub(/.* /, "", class)
    }
    begins = statement == "" && code !~ /^[ \t]*(}|friend |public:|protected:|private:)/
    trailing = line != code
    if (begins && !trailing && group == "" && code ~ /= (delete|default);|~[A-Za-z]+\(/) {
        follow(code)
        print ""
        next
    }
    if (trailing && code !~ /^[ \t]*}/) {
        sub(/\/\//, "///<", line)
    } else if (begins && kind[depth] == "enum" && !own) {
        line = line "  ///< See the name."
    } else if (begins && group == "" && code ~ "^ *(constexpr |explicit )*" class "\\(|operator=\\(") {
        line = "/** See the class. */ " line
    } else if (begins && group != "" && !own && code !~ /^[ \t]*(namespace|class|struct|enum|extern)/) {
        line = "/**" group " */ " line
    }
    print line
    follow(code)
}
