// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_CLEARPIXELS_H_
#define ZVEX_RASTER_CLEARPIXELS_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

// Zeroes memory that nobody will look at soon, of a picture too large for the caches: written past them,
// where the machine can, which neither reads the memory first nor puts out what is worked on.
void clearAside(uint8_t* bytes, size_t count);

}  // namespace Zvex

#endif  // ZVEX_RASTER_CLEARPIXELS_H_
