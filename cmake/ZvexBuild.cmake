# SPDX-License-Identifier: Apache-2.0
# The compiler settings every target of the project shares.
find_package(Threads REQUIRED)

# Pixels are a promise: no fused multiply-add, no reordering of floats, on any machine at any level.
# Nobody reads errno or the exception flags after arithmetic; without these two the compiler may take several
# roots or either side of a choice at once, with the same results.
set(ZVEX_EXACT_MATH -ffp-contract=off -fno-fast-math -fno-math-errno -fno-trapping-math)

function(zvex_compile_options target)
  target_compile_options(${target} PRIVATE ${ZVEX_EXACT_MATH} -Wall -Wextra
      $<$<BOOL:${ZVEX_WERROR}>:-Werror> -fvisibility=hidden -fvisibility-inlines-hidden)
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
