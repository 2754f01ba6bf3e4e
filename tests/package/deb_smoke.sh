#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Within a bare Debian: installs the packages that lie in /debs, and uses each as its users do.
set -eux
cd /debs
export DEBIAN_FRONTEND=noninteractive
unset CMAKE_CXX_COMPILER_LAUNCHER CMAKE_C_COMPILER_LAUNCHER  # such as a cache outside
apt-get update -qq
apt-get install -y -qq --no-install-recommends ./*.deb fonts-dejavu-core g++ cmake make pkg-config >log 2>&1 || { cat log; exit 1; }
font=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf

zvtext presets | grep gold
zvtext render Hello --font $font --preset gold -o gold.png
zvtext render Hello --font 'DejaVu Sans:bold' --preset gold -o named.png
cmp gold.png named.png
[ "$(wc -c <gold.png)" -gt 3000 ]
zvtext render Hello --font $font --style /usr/share/zvex/styles/gold.json -o styled.png
cmp gold.png styled.png
zvtext schema | cmp - /usr/share/zvex/style.schema.json
zvtext completion | cmp - /usr/share/bash-completion/completions/zvtext
zcat /usr/share/man/man1/zvtext.1.gz | grep -q outer.-shadow

g++ -std=c++17 title.cpp $(pkg-config --cflags --libs zvex) -o title
./title $font Hello title.pam
[ "$(tr -d '\0' <title.pam | wc -c)" -gt 20000 ]
ldd title | grep libzvex.so.0
cat >CMakeLists.txt <<'END'
cmake_minimum_required(VERSION 3.22)
project(Scene LANGUAGES CXX)
find_package(Zvex REQUIRED COMPONENTS scene)
add_executable(scene scene.cpp)
target_link_libraries(scene PRIVATE Zvex::scene)
END
cat >scene.cpp <<'END'
#include <fstream>
#include "scene/Png.h"
#include "scene/Scene.h"
int main() {
    using namespace Zvex::scene;
    Scene scene;
    scene.text = "Hello";
    scene.font = "DejaVu Sans:bold";
    scene.style = styleFromPreset("gold");
    std::ofstream("scene.png", std::ios::binary) << encodePng(render(scene).picture);
}
END
cmake -S . -B scene-build >log && cmake --build scene-build >log || { cat log; exit 1; }
./scene-build/scene
cmp gold.png scene.png

cat >Title.java <<'END'
import com.orvane.android.sdk.zve.*;
import java.io.*;

class Title {
    public static void main(String[] args) throws Exception {
        try (ZvText text = new ZvText(); OutputStream out = new FileOutputStream("java.png")) {
            text.font(args[0]).text("Hello").style(ZvStyle.preset("gold")).picture().writePng(out);
        }
    }
}
END
apt-get install -y -qq --no-install-recommends openjdk-17-jdk-headless >log 2>&1 || { cat log; exit 1; }  # to compile it
java -cp '/usr/share/java/zvex-kit.jar:/usr/share/java/zvex-android.jar:/usr/share/java/com.android.json.jar' Title.java $font
head -c 24 java.png >java.head
head -c 24 gold.png | cmp - java.head # the same size

apt-get purge -y -qq zvtext libzvex-dev libzvex-java libzvex0 >log
[ -z "$(find /usr -name '*zvex*' -o -name 'zvtext*')" ]
echo "the packages work"
