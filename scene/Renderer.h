// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_RENDERER_H_
#define ZVEX_SCENE_RENDERER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "scene/Scene.h"

namespace Zvex::scene {

// Renders scenes one after another, such as those of an animation, and keeps what the next may need. It keeps
// the shaped lines and their glyphs while text, fonts, size and wrapping stay the same, so that another style
// costs only its effects. It also keeps its working memory, a few times the picture's bytes, up to 64 MB a
// buffer. The pictures equal those of the functions in Scene.h. For one thread at a time.
//
//     Renderer renderer;
//     for (int i = 0; i < 30; ++i) {
//         scene.style.color = 0xFF000000 + 8 * i;
//         show(renderer.render(scene).picture);
//     }
class Renderer {
public:
    enum class Keeping { All, Nothing };  // for a single picture

    explicit Renderer(Keeping keeping = Keeping::All);
    ~Renderer();
    Renderer(Renderer&& other) noexcept;
    Renderer& operator=(Renderer&& other) noexcept;

    // Like the functions with these names in Scene.h. After an exception the renderer works like a new one.
    Rendering render(const Scene& scene);
    Rendering measure(const Scene& scene);
    Rendering renderInto(const Scene& scene, uint32_t* pixels, int width, int height, size_t stride,
                         PixelFormat format = PixelFormat::Argb);

private:
    struct Text;
    struct Kept;
    // Receives the picture, width x height straight 0xAARRGGBB words in the library's memory.
    using Sink = std::function<void(const unsigned* pixels, int width, int height)>;

    Rendering make(const Scene& scene, const Sink& sink);

    std::unique_ptr<Kept> mKept;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_RENDERER_H_
