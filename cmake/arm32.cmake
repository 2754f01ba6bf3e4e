# SPDX-License-Identifier: Apache-2.0
# Cross-compiles with Debian's g++ and runs the programs with qemu.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static -L /usr/arm-linux-gnueabihf)
