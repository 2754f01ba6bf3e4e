// SPDX-License-Identifier: Apache-2.0
#include "scene/WebpWriter.h"

#include <webp/encode.h>

#include <cstring>
#include <new>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

// Exceptions must not pass through libwebp; 0 makes it stop.
int onWebpWrite(const uint8_t* data, size_t size, const WebPPicture* webp) {
    try {
        static_cast<std::string*>(webp->custom_ptr)->append(reinterpret_cast<const char*>(data), size);
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

}  // namespace

std::string encodeWebp(const Picture& picture, Compression compression) {
    checkComplete(picture);
    // Of libwebp's levels, 0 to 9. From 0 to 1 files shrink by a third, above 5 by less than a hundredth.
    const int level = compression == Compression::Fast ? 0 : compression == Compression::Default ? 1 : 6;
    std::string bytes;
    WebPConfig config;
    WebPPicture webp;
    if (!WebPConfigInit(&config) || !WebPConfigLosslessPreset(&config, level) || !WebPPictureInit(&webp)) {
        throw Failure("--format: the WebP library is of another version than the program");
    }
    config.exact = 1;
    webp.use_argb = 1;
    webp.width = picture.width;
    webp.height = picture.height;
    webp.writer = onWebpWrite;
    webp.custom_ptr = &bytes;
    bool encoded = WebPPictureAlloc(&webp) != 0;
    const auto width = static_cast<size_t>(picture.width);
    for (int y = 0; encoded && y < picture.height; ++y) {
        std::memcpy(webp.argb + static_cast<size_t>(y) * static_cast<size_t>(webp.argb_stride),
                    picture.pixels.data() + static_cast<size_t>(y) * width, width * 4);
    }
    encoded = encoded && WebPEncode(&config, &webp) != 0;
    const int error = webp.error_code;
    WebPPictureFree(&webp);
    if (encoded) return bytes;
    if (error == VP8_ENC_ERROR_FILE_TOO_BIG || error == VP8_ENC_ERROR_PARTITION_OVERFLOW) {
        throw Failure("--format: the picture is too large for a WebP file");
    }
    throw std::bad_alloc();
}

}  // namespace Zvex::scene
