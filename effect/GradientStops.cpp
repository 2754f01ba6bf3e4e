// SPDX-License-Identifier: Apache-2.0
#include "effect/GradientStops.h"

#include <algorithm>
#include <new>

#include "foundation/OutOfMemory.h"

namespace Zvex {

bool GradientStops::copy(const ZvGradient* stops, int count) {
    std::unique_ptr<ZvGradient[]> copied;
    if (stops == nullptr || count < 1) {
        count = 0;
    } else {
        copied.reset(new (std::nothrow) ZvGradient[static_cast<size_t>(count)]);
        if (copied == nullptr) {
            markOutOfMemory();
            return false;
        }
        std::copy_n(stops, count, copied.get());
    }
    mStops = std::move(copied);
    mCount = count;
    return true;
}

}  // namespace Zvex
