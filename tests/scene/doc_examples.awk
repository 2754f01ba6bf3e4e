# SPDX-License-Identifier: Apache-2.0
# The C++ blocks of a page, each a function, and a program that calls them all.
BEGIN {
    split("cstdio fstream iterator thread vector", headers)
    for (i in headers) print "#include <" headers[i] ">"
    split("Failure FileSource Png Presets Renderer Scene WebpWriter", headers)
    for (i in headers) print "#include \"scene/" headers[i] ".h\""
    print "using namespace Zvex::scene;"
}
/^```cpp$/ {
    print "static int example" ++count "() {\n#line " NR + 1 " \"" FILENAME "\""
    inside = 1
    next
}
/^```$/ && inside {
    print "return 0;\n}"
    inside = 0
}
inside
END {
    print "int main() {"
    for (i = 1; i <= count; ++i) print "if (example" i "() != 0) return " i ";"
    print "std::puts(\"examples ran\");\n}"
}
