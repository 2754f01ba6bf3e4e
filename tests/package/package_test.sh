#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Uses the library as others would. static and shared install it into an empty prefix, move the prefix, and use it with
# find_package and pkg-config; the picture is the same every way. subdirectory adds the sources to another project.
#     package_test.sh SOURCE_DIR BUILD_DIR CXX static|shared|subdirectory
# shared builds libzvex.so in BUILD_DIR/shared first.
set -euo pipefail
source=$1 build=$2 cxx=$3 kind=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
font=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf
fail() { echo "package: $*"; exit 1; }
quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; fail "$1 failed"; }; }
configure() { quietly cmake -G Ninja -DCMAKE_CXX_COMPILER="$cxx" "$@"; }

if [ "$kind" = subdirectory ]; then
    mkdir "$work/parent"
    cat >"$work/parent/CMakeLists.txt" <<END
cmake_minimum_required(VERSION 3.22)
project(Parent LANGUAGES C CXX)
add_subdirectory($source zvex)
if(TARGET zvtext OR TARGET bench_render OR TARGET ZvEffect)
  message(FATAL_ERROR "more than the library was asked for")
endif()
add_executable(user user.cpp)
target_link_libraries(user PRIVATE Zvex::zvex)
END
    cat >"$work/parent/user.cpp" <<'END'
#include "raster/ZvBitmap.h"
#include "text/ZvTextObject.h"
int main() { Zvex::ZvBitmap bitmap(2, 2, 4); return bitmap.format == 1 ? 0 : 1; }
END
    configure -S "$work/parent" -B "$work/parent/build" -DCMAKE_BUILD_TYPE=Debug
    quietly cmake --build "$work/parent/build" --target user
    "$work/parent/build/user"
    exit 0
fi

unshared=$build
if [ "$kind" = shared ]; then
    build=$build/shared
    configure -S "$source" -B "$build" -DBUILD_SHARED_LIBS=ON -DCMAKE_BUILD_TYPE=Release -DZVEX_WERROR=ON \
        -DZVEX_BUILD_BENCHMARKS=OFF
    quietly cmake --build "$build"
fi
quietly cmake --install "$build" --prefix "$work/prefix"
mv "$work/prefix" "$work/moved"
prefix=$work/moved
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name zvex.pc)")
export PKG_CONFIG_PATH
"$prefix/bin/zvtext" render Hi --font "$font" --output "$work/hi.png"
for page in bash-completion/completions/zvtext:completion zvex/style.schema.json:schema; do
    "$prefix/bin/zvtext" "${page#*:}" | cmp - "$prefix/share/${page%%:*}"
done
grep -q 'outer' "$prefix/share/man/man1/zvtext.1"
(cd "$prefix/share/zvex/styles" && ls) | diff - <("$prefix/bin/zvtext" presets | sed 's/ .*/.json/')

if [ "$kind" = static ] && [ -e "$prefix/share/java/zvex-kit.jar" ]; then
    echo "java"
    cat >"$work/Title.java" <<'END'
import com.orvane.android.sdk.zve.*;
import java.io.*;
import javax.xml.parsers.DocumentBuilderFactory;

class Title {
    public static void main(String[] args) throws Exception {
        DocumentBuilderFactory.newInstance().newDocumentBuilder().parse(new File(args[2]));
        try (ZvText text = new ZvText(); OutputStream out = new FileOutputStream(args[1])) {
            text.font(args[0]).text("Hello").stroke(6, 0xFFFF0000, Stroke.OUTSIDE).picture().writePng(out);
        }
    }
}
END
    jars=("$prefix"/share/java/*.jar)
    java=$(sed -n 's/^ZVEX_JAVA:[A-Z]*=//p' "$build/CMakeCache.txt")
    (IFS=:; "$java" -cp "${jars[*]}" "$work/Title.java" "$font" "$work/title.png" "$prefix/share/java/pom.xml")
    "$prefix/bin/zvtext" render Hello --font "$font" --stroke 6:#ff0000 --output "$work/same.png"
    [ "$(wc -c <"$work/title.png")" -gt 2000 ] || fail "hardly any ink from Java"
    # Up to the picture's sizes, which depend on every step of the text's layout.
    cmp <(head -c 24 "$work/title.png") <(head -c 24 "$work/same.png") || fail "another size from Java"
fi

echo "find_package"
configure -S "$source/examples/cpp" -B "$work/example" -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$work/example"
"$work/example/title" "$font" "Hello" "$work/title.pam"
head -c 2 "$work/title.pam" | grep -q P7
[ "$(tr -d '\0' <"$work/title.pam" | wc -c)" -gt 20000 ] || fail "hardly any ink"
# README's C++ as printed: letters in gold.
{
    sed -n '/^```cpp$/,/^```$/{/^```/d;/#include/p}' "$source/README.md"
    echo 'int main() {'
    sed -n '/^```cpp$/,/^```$/{/^```/d;/#include/!p}' "$source/README.md"
    cat <<'END'
    const auto isGold = [](uint32_t pixel) {
        return pixel >> 24 == 255 && (pixel >> 16 & 255) > 150 && (pixel >> 8 & 255) > 90 && (pixel & 255) < 100;
    };
    const auto gold = std::count_if(picture.pixels.begin(), picture.pixels.end(), isGold);
    return picture.width > 250 && picture.width < 500 && gold > 2000 && gold < picture.width * picture.height / 2 ? 0 : 3;
}
END
} | sed '1i #include <algorithm>' >"$work/readme.cpp"
mkdir "$work/readme"
sed "s|title|readme|g; s|readme.cpp|$work/readme.cpp|; s|find_package(Zvex REQUIRED)|find_package(Zvex REQUIRED COMPONENTS scene)|
     s|Zvex::zvex|Zvex::scene|" "$source/examples/cpp/CMakeLists.txt" >"$work/readme/CMakeLists.txt"
configure -S "$work/readme" -B "$work/readme/build" -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$work/readme/build"
"$work/readme/build/readme" || fail "README's program does not draw in gold"
mkdir "$work/versions"
cat >"$work/versions/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.22)
project(Versions LANGUAGES CXX)
find_package(Zvex 0.1 REQUIRED)
find_package(Zvex 0.0.9 REQUIRED)
foreach(version 0.99 1)
  find_package(Zvex ${version} QUIET)
  if(Zvex_FOUND)
    message(FATAL_ERROR "taken for version ${version}")
  endif()
endforeach()
END
configure -S "$work/versions" -B "$work/versions/build" -DCMAKE_PREFIX_PATH="$prefix"

if [ "$kind" = shared ]; then
    [ "$(pkg-config --libs-only-l zvex | tr -d ' ')" = -lzvex ] || fail "with libzvex.so: $(pkg-config --libs zvex)"
    loaded=$(ldd "$work/example/title")
    [[ $loaded == *"libzvex.so"*" => $prefix/"* ]] || fail "another libzvex.so: $loaded"
    LD_LIBRARY_PATH=$(pkg-config --variable=libdir zvex)
    export LD_LIBRARY_PATH
fi

# pkg-config gives -I: warnings in the headers are the user's then. The first file has all headers, whatever they
# include; for the others each header stands alone.
echo "pkg-config"
read -ra flags <<<"$(pkg-config --cflags zvex)"
read -ra libraries <<<"$(pkg-config --libs zvex)"
mkdir "$work/headers"
cd "$prefix/include/zvex"
find . -name '*.h' | sort | sed 's|^\./\(platform/host/include/\)\?||' | while read -r header; do
    printf '#include <%s>\n#include <%s>\n' "$header" "$header" >"$work/headers/$(echo "$header" | tr / _).cpp"
done
cat "$work"/headers/*.cpp >"$work/all.cpp"
warnings=(-Wall -Wextra -Wpedantic -Werror)
if [ "$kind" = static ]; then
    for compiler in g++ clang++; do
        command -v $compiler >/dev/null || { echo "no $compiler here"; continue; }
        for standard in c++17 c++20; do
            $compiler -std=$standard "${warnings[@]}" -fsyntax-only "${flags[@]}" "$work/all.cpp"
            $compiler -std=$standard "${warnings[@]}" "$source/examples/cpp/title.cpp" "${flags[@]}" "${libraries[@]}" \
                -o "$work/title"
            "$work/title" "$font" "Hello" "$work/again.pam"
            cmp "$work/title.pam" "$work/again.pam"
        done
    done
    "$cxx" -std=c++17 "${warnings[@]}" -fsyntax-only "${flags[@]}" "$work"/headers/*.cpp
else
    "$cxx" -std=c++17 "${warnings[@]}" "$source/examples/cpp/title.cpp" "${flags[@]}" "${libraries[@]}" -o "$work/title"
    "$work/title" "$font" "Hello" "$work/again.pam"
    cmp "$work/title.pam" "$work/again.pam"
    quietly cmake --install "$unshared" --prefix "$work/static"
    "$work/static/bin/zvtext" render Hi --font "$font" --output "$work/static.png"
    cmp "$work/hi.png" "$work/static.png"
fi
