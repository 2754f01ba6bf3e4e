// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKCLIPOP_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKCLIPOP_H_

enum class SkClipOp {
    kIntersect = 1,  // the platform's number
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKCLIPOP_H_
