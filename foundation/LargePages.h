// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_LARGEPAGES_H_
#define ZVEX_FOUNDATION_LARGEPAGES_H_

#include <cstddef>

namespace Zvex {

// Asks the system to back memory from malloc with large pages, where it has them and the memory is several of
// them long; shorter memory is left alone. The first touch of a picture of 16 MB in small pages takes longer
// than everything that is drawn on it. Only a hint; content and ownership stay what they are.
void preferLargePages(void* memory, size_t bytes);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_LARGEPAGES_H_
