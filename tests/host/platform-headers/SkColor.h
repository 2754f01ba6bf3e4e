// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

typedef uint32_t SkColor;
