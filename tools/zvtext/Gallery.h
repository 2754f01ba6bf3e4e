// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_GALLERY_H_
#define ZVEX_TOOLS_ZVTEXT_GALLERY_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace zvtext {

struct GalleryArguments {
    std::string folder;
    std::string fontFolder = "/usr/share/fonts";
    std::vector<std::string> groups;  // none: all
};

void addGalleryOptions(CLI::App& command, GalleryArguments& arguments);

// Runs `zvtext gallery`: writes index.html, a PNG for each scene, and the patterns and styles that the scenes
// name, into the folder, which is made when missing and becomes the process's working folder. A caption is
// the very command line that the picture was made with, and works when pasted there. Each file appears when
// it is whole, the page last. Scenes whose font is nowhere below the font folder are left out with a
// warning. Throws UsageError or Failure.
void runGallery(const GalleryArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_GALLERY_H_
