// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLOR_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLOR_H_

#include <cstdint>

typedef uint32_t SkColor;

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKCOLOR_H_
