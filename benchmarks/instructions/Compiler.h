// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_INSTRUCTIONS_COMPILER_H_
#define ZVEX_BENCHMARKS_INSTRUCTIONS_COMPILER_H_

#if defined(__clang__)
constexpr char kCompiler[] = "clang++ " __clang_version__;
#else
constexpr char kCompiler[] = "g++ " __VERSION__;
#endif

#endif  // ZVEX_BENCHMARKS_INSTRUCTIONS_COMPILER_H_
