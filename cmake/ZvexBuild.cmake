# SPDX-License-Identifier: Apache-2.0
# Compiler settings for every target of the project.
find_package(Threads REQUIRED)

# Pixels are a promise: no fused multiply-add, no reordering of floats, on any machine at any level.
# The code does not read errno or the floating-point flags; without those the compiler can vectorise square roots and choices,
# with the same results.
set(ZVEX_EXACT_MATH -ffp-contract=off -fno-fast-math -fno-math-errno -fno-trapping-math)
if(EMSCRIPTEN)  # whose clang 14 makes wrong WebAssembly of single numbers that it joins to vectors
  list(APPEND ZVEX_EXACT_MATH -fno-slp-vectorize)
endif()

# Release builds are hardened: stack protector, checked calls of the C library, and addresses resolved at start and
# read-only afterwards. tests/tree/Hardening.cmake checks the binaries.
set(ZVEX_HARDENED OFF)
if(CMAKE_BUILD_TYPE STREQUAL Release AND CMAKE_CXX_FLAGS_RELEASE MATCHES "-O[1-3s]" AND NOT ZVEX_SANITIZE AND NOT EMSCRIPTEN)
  set(ZVEX_HARDENED ON)
endif()

function(zvex_compile_options target)
  target_compile_options(${target} PRIVATE ${ZVEX_EXACT_MATH} -Wall -Wextra
      $<$<BOOL:${ZVEX_WERROR}>:-Werror> -fvisibility=hidden -fvisibility-inlines-hidden)
  if(EMSCRIPTEN)  # what is unrolled first stays single numbers, as do conversions that trap
    target_compile_options(${target} PRIVATE -fno-unroll-loops -mnontrapping-fptoint)
  endif()
  if(ZVEX_HARDENED)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")  # a distribution may ask for more
      target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now)
  endif()
  if(ZVEX_SANITIZE)
    # PUBLIC, so that programs linked with the library are instrumented too.
    target_compile_options(${target} PUBLIC -fsanitize=${ZVEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${ZVEX_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # Instrumenting third-party headers took half of the compile time.
      target_compile_options(${target} PUBLIC -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/not-sanitized.txt)
    endif()
  endif()
  if(ZVEX_BUILD_FUZZERS)
    # Coverage counters for the fuzzer. Only the fuzz targets have its main.
    target_compile_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
    target_link_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
  endif()
  target_link_libraries(${target} PUBLIC Threads::Threads)
endfunction()
