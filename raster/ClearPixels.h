// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_CLEARPIXELS_H_
#define ZVEX_RASTER_CLEARPIXELS_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

// Zeroes memory that is not needed soon, such as a picture too large for the caches. Where the machine can,
// it writes past the caches: that does not read the memory first and does not evict the working set from the
// cache.
void clearAside(uint8_t* bytes, size_t count);

}  // namespace Zvex

#endif  // ZVEX_RASTER_CLEARPIXELS_H_
