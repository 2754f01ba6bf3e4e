#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Installs the library into an empty prefix and uses it as others would: find_package, pkg-config and add_subdirectory.
#     package_test.sh SOURCE_DIR BUILD_DIR CXX
set -euo pipefail
source=$1 build=$2 cxx=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
font=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf

cmake --install "$build" --prefix "$work/prefix" >/dev/null

echo "find_package"
cmake -S "$source/examples/cpp" -B "$work/example" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/example"
"$work/example/title" "$font" "Hello" "$work/title.pam"
head -c 2 "$work/title.pam" | grep -q P7
[ "$(tr -d '\0' <"$work/title.pam" | wc -c)" -gt 20000 ] || { echo "hardly any ink"; exit 1; }

echo "pkg-config"
pc=$(find "$work/prefix" -name zvex.pc)
sed -i "s|^prefix=.*|prefix=$work/prefix|" "$pc"
export PKG_CONFIG_PATH=$(dirname "$pc")
# shellcheck disable=SC2046
"$cxx" -std=c++17 "$source/examples/cpp/title.cpp" $(pkg-config --cflags --libs zvex) -o "$work/title"
"$work/title" "$font" "Hello" "$work/again.pam"
cmp "$work/title.pam" "$work/again.pam"

echo "add_subdirectory"
mkdir "$work/parent"
cat >"$work/parent/CMakeLists.txt" <<EOF
cmake_minimum_required(VERSION 3.22)
project(Parent LANGUAGES C CXX)
add_subdirectory($source zvex)
if(TARGET zvtext OR TARGET bench_render OR TARGET ZvEffect)
  message(FATAL_ERROR "more than the library was asked for")
endif()
add_executable(user user.cpp)
target_link_libraries(user PRIVATE Zvex::zvex)
EOF
cat >"$work/parent/user.cpp" <<'EOF'
#include "raster/ZvBitmap.h"
#include "text/ZvTextObject.h"
int main() { Zvex::ZvBitmap bitmap(2, 2, 4); return bitmap.format == 1 ? 0 : 1; }
EOF
cmake -S "$work/parent" -B "$work/parent/build" -G Ninja -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Debug >/dev/null
cmake --build "$work/parent/build" --target user
"$work/parent/build/user"
