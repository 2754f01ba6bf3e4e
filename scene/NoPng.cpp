// SPDX-License-Identifier: Apache-2.0
// Stands for Png.cpp where libspng is left out.
#include "scene/Failure.h"
#include "scene/Png.h"

namespace Zvex::scene {

Picture decodePng(const std::string& name, const std::string&) {
    throw Failure(name + " cannot be read: this library has no PNG");
}

std::string encodePng(const Picture&, double, Compression) {
    throw Failure("format: this library has no PNG");
}

}  // namespace Zvex::scene
