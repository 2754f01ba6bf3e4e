// SPDX-License-Identifier: Apache-2.0
#pragma once

enum class SkClipOp { kIntersect = 1 };
