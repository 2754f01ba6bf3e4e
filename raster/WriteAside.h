// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_WRITEASIDE_H_
#define ZVEX_RASTER_WRITEASIDE_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

// For memory that is not needed soon, such as a picture too large for the caches. Where the machine can, they
// write past the caches: that does not read the memory first and does not evict the working set from the
// cache.

// Zeroes the bytes.
void clearAside(uint8_t* bytes, size_t count);
// Copies the bytes; the two places must not overlap.
void copyAside(uint8_t* to, const uint8_t* from, size_t count);

}  // namespace Zvex

#endif  // ZVEX_RASTER_WRITEASIDE_H_
