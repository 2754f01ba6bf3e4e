// SPDX-License-Identifier: Apache-2.0
#include "foundation/OutOfMemory.h"

#include <utility>

namespace Zvex {

namespace {

thread_local bool marked = false;

}  // namespace

void markOutOfMemory() {
    marked = true;
}

bool takeOutOfMemoryMark() {
    return std::exchange(marked, false);
}

}  // namespace Zvex
