// SPDX-License-Identifier: Apache-2.0
#include "scene/Scene.h"

#include <cstdio>
#include <memory>
#include <new>

#include "effect/ZvEffect.h"
#include "scene/Effects.h"
#include "scene/LayeredScene.h"
#include "scene/Renderer.h"
#include "scene/SceneCheck.h"

namespace Zvex::scene {

Rendering render(const Scene& scene) {
    return Renderer(Renderer::Keeping::Nothing).render(scene);
}

Rendering measure(const Scene& scene) {
    return Renderer(Renderer::Keeping::Nothing).measure(scene);
}

Rendering renderInto(const Scene& scene, uint32_t* target, int width, int height, size_t stride,
                     PixelFormat format) {
    return Renderer(Renderer::Keeping::Nothing).renderInto(scene, target, width, height, stride, format);
}

namespace {

std::string keyInHex(const Look& look, uint32_t color) {
    Zvex::ZvEffect stack;
    addEffects(stack, look.effects);
    const std::unique_ptr<char[]> key(stack.getMapKey(color));
    if (key == nullptr) throw std::bad_alloc();
    std::string hex;
    for (const char* byte = key.get(); *byte != '\0'; ++byte) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(*byte)));
        hex += digits;
    }
    return hex;
}

}  // namespace

std::string layerKeyInHex(const Style& style) {
    checkStyle(style);
    if (style.layers.empty()) return keyInHex(style, withOpacity(style.color, style.opacity));
    std::string keys;
    for (const LayerSettings& layer : style.layers)
        keys += (keys.empty() ? "" : "\n") + keyInHex(layer, layer.color.value_or(style.color));
    return keys;
}

}  // namespace Zvex::scene
