// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace minikin {

uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin
