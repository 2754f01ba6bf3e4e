# SPDX-License-Identifier: Apache-2.0
# Compiles for WebAssembly with Debian's emscripten; Node runs the programs. There is one thread, and with -mbulk-memory this
# compiler keeps thread-local variables, which its linker refuses.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(zvex_wasm_flags "-msimd128 -mbulk-memory -fwasm-exceptions -sSUPPORT_LONGJMP=wasm")
set(CMAKE_C_FLAGS_INIT "${zvex_wasm_flags}")
set(CMAKE_CXX_FLAGS_INIT "${zvex_wasm_flags} -Dthread_local=")
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../web/run-wasm.mjs)
