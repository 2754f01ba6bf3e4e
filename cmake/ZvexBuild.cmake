# SPDX-License-Identifier: Apache-2.0
# The compiler settings every target of the project shares.
find_package(Threads REQUIRED)

# Pixels are a promise: no fused multiply-add, no reordering of floats, on any machine at any level.
# Nobody reads errno or the exception flags after arithmetic; without these two the compiler may take several
# roots or either side of a choice at once, with the same results.
set(ZVEX_EXACT_MATH -ffp-contract=off -fno-fast-math -fno-math-errno -fno-trapping-math)

# Release builds are hardened: stack protector, checked calls of the C library, and addresses that are resolved at start and
# read-only afterwards. The tests see to it (tests/tree/Hardening.cmake).
set(ZVEX_HARDENED OFF)
if(CMAKE_BUILD_TYPE STREQUAL Release AND CMAKE_CXX_FLAGS_RELEASE MATCHES "-O[1-3s]" AND NOT ZVEX_SANITIZE)
  set(ZVEX_HARDENED ON)
endif()

function(zvex_compile_options target)
  target_compile_options(${target} PRIVATE ${ZVEX_EXACT_MATH} -Wall -Wextra
      $<$<BOOL:${ZVEX_WERROR}>:-Werror> -fvisibility=hidden -fvisibility-inlines-hidden)
  if(ZVEX_HARDENED)
    target_compile_options(${target} PRIVATE -fstack-protector-strong)
    if(NOT CMAKE_CXX_FLAGS MATCHES "_FORTIFY_SOURCE")  # a distribution may ask for more
      target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    target_link_options(${target} PRIVATE LINKER:-z,relro LINKER:-z,now)
  endif()
  if(ZVEX_SANITIZE)
    # Part of the public interface, so that whatever links the library is instrumented with it.
    target_compile_options(${target} PUBLIC -fsanitize=${ZVEX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${ZVEX_SANITIZE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # Half the time of a compilation went into the code of other people's headers.
      target_compile_options(${target} PUBLIC -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/not-sanitized.txt)
    endif()
  endif()
  if(ZVEX_BUILD_FUZZERS)
    # The counters that steer the fuzzer. Only the fuzz targets have its main.
    target_compile_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
    target_link_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
  endif()
  target_link_libraries(${target} PUBLIC Threads::Threads)
endfunction()
