// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_RENDERING_H_
#define ZVEX_PLATFORM_HOST_RENDERING_H_

namespace host {

// How text is measured and drawn. Phone: as the platform does it, with hinting and gamma. Plain: exact sizes,
// no hinting, no gamma.
enum class Rendering { Phone, Plain };

// One setting for the process, Phone at the start; any thread. It applies to what is measured and drawn
// afterwards; a line that is being laid out or drawn may get some of both.
void setRendering(Rendering rendering);
// The setting of this thread if it has one, else the process's.
Rendering rendering();

// While one lives, it sets how its thread measures and draws, independent of the process's setting. May be
// nested.
class RenderingOfThread {
public:
    explicit RenderingOfThread(Rendering rendering);
    ~RenderingOfThread();
    RenderingOfThread(const RenderingOfThread&) = delete;
    RenderingOfThread& operator=(const RenderingOfThread&) = delete;

private:
    const Rendering mRendering;
    const Rendering* const mBefore;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_RENDERING_H_
