// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_GALLERY_GALLERY_H_
#define ZVEX_TOOLS_ZVTEXT_GALLERY_GALLERY_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace zvtext {

struct GalleryArguments {
    std::string folder, fontFolder = "/usr/share/fonts";
    std::vector<std::string> groups;  // empty: all
};

void addGalleryOptions(CLI::App& command, GalleryArguments& arguments);

// The names that --only accepts, in the order of the page.
std::vector<std::string> galleryGroupNames();

// Runs `zvtext gallery`: renders the scenes of scenes.json into the folder, each with its command line run
// there, and writes index.html beside them. A scene whose font is missing is left out with a warning.
// Afterwards the gallery is the working folder of the process. Throws UsageError or Failure.
void runGallery(const GalleryArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_GALLERY_GALLERY_H_
