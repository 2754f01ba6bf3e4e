// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKBLENDMODE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKBLENDMODE_H_

// The two modes that are drawn with; the numbers are the platform's.
enum class SkBlendMode {
    kSrc = 1,      // the source replaces the destination
    kSrcOver = 3,  // the source lies on top of the destination
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKBLENDMODE_H_
