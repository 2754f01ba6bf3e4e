// SPDX-License-Identifier: Apache-2.0
#pragma once

enum class SkBlendMode { kSrc = 1, kSrcOver = 3 };
