// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_LARGEPAGES_H_
#define ZVEX_FOUNDATION_LARGEPAGES_H_

#include <cstddef>

namespace Zvex {

// Asks the system to back memory from malloc with large pages, if it has them and the memory spans several;
// shorter memory does not change. Touching a 16 MB picture for the first time in small pages takes longer
// than drawing it. Only a hint: content and ownership do not change.
void preferLargePages(void* memory, size_t bytes);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_LARGEPAGES_H_
