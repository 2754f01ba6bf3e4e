// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_DEFLATE_H_
#define ZVEX_SCENE_DEFLATE_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scene/Picture.h"

// What a PNG needs of a compressor. Another library would need another Deflate.cpp alone.
namespace Zvex::scene {

// The bytes as a zlib stream (RFC 1950). Throws std::bad_alloc.
std::string deflated(const std::vector<uint8_t>& bytes, Compression compression);

// The CRC-32 of PNG and zip.
uint32_t crc32Of(std::string_view bytes);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_DEFLATE_H_
