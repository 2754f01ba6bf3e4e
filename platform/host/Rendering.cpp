// SPDX-License-Identifier: Apache-2.0
#include "platform/host/Rendering.h"

#include <atomic>

namespace host {
namespace {

std::atomic<Rendering> theRendering{Rendering::Phone};

}  // namespace

void setRendering(Rendering rendering) {
    theRendering.store(rendering, std::memory_order_relaxed);
}
Rendering rendering() {
    return theRendering.load(std::memory_order_relaxed);
}

}  // namespace host
