// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_GALLERYPAGE_H_
#define ZVEX_TOOLS_ZVTEXT_GALLERYPAGE_H_

#include <string>
#include <vector>

#include "tools/zvtext/GalleryScenes.h"

namespace zvtext {

// A picture that lies beside the page.
struct GalleryPicture {
    const GalleryGroup* group;  // pictures of one group follow each other
    const GalleryScene* scene;
    int width, height;
    std::string command;
};

// The page: one HTML file without scripts or anything from elsewhere. The pictures stand on checkerboards,
// light or dark as suits each, or all alike by the buttons at the top.
std::string galleryPage(const std::vector<GalleryPicture>& pictures);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_GALLERYPAGE_H_
