// SPDX-License-Identifier: Apache-2.0
#include "scene/Versions.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <fontconfig/fontconfig.h>
#include <hb.h>
#include <libdeflate.h>
#include <spng.h>
#include <unicode/uversion.h>
#include <webp/encode.h>

#include <nlohmann/json.hpp>

namespace Zvex::scene {

namespace {

std::string dotted(int major, int minor, int patch) {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch);
}

std::string freetypeVersion() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) return "unknown";
    int major = 0, minor = 0, patch = 0;
    FT_Library_Version(library, &major, &minor, &patch);
    FT_Done_FreeType(library);
    return dotted(major, minor, patch);
}

std::string icuVersion() {
    UVersionInfo version;
    char text[U_MAX_VERSION_STRING_LENGTH];
    u_getVersion(version);
    u_versionToString(version, text);
    return text;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> libraryVersions() {
    const int fontconfig = FcGetVersion(), webp = WebPGetEncoderVersion();
    return {{"FreeType", freetypeVersion()},
            {"HarfBuzz", hb_version_string()},
            {"ICU", icuVersion()},
            {"fontconfig", dotted(fontconfig / 10000, fontconfig / 100 % 100, fontconfig % 100)},
            {"libdeflate", LIBDEFLATE_VERSION_STRING},
            {"libspng", spng_version_string()},
            {"libwebp", dotted(webp >> 16, webp >> 8 & 0xFF, webp & 0xFF)},
            {"nlohmann-json",
             dotted(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH)}};
}

}  // namespace Zvex::scene
