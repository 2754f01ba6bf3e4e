// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_LOCALELIST_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_LOCALELIST_H_

#include <cstdint>
#include <string>

namespace minikin {

uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_LOCALELIST_H_
