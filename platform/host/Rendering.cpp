// SPDX-License-Identifier: Apache-2.0
#include "platform/host/Rendering.h"

#include <atomic>

namespace host {
namespace {

std::atomic<Rendering> theRendering{Rendering::Phone};
thread_local const Rendering* ofThread = nullptr;

}  // namespace

void setRendering(Rendering rendering) {
    theRendering.store(rendering, std::memory_order_relaxed);
}
Rendering rendering() {
    return ofThread != nullptr ? *ofThread : theRendering.load(std::memory_order_relaxed);
}

RenderingOfThread::RenderingOfThread(Rendering rendering) : mRendering(rendering), mBefore(ofThread) {
    ofThread = &mRendering;
}
RenderingOfThread::~RenderingOfThread() {
    ofThread = mBefore;
}

}  // namespace host
