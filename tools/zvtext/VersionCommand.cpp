// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/VersionCommand.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <fontconfig/fontconfig.h>
#include <hb.h>
#include <png.h>
#include <unicode/uversion.h>
#include <webp/encode.h>

#include <CLI/CLI.hpp>
#include <string>

#include "raster/CpuTarget.h"
#include "tools/zvtext/InspectCommand.h"
#include "tools/zvtext/Json.h"

namespace zvtext {

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

std::string fontconfigVersion() {
    const int version = FcGetVersion();
    return dotted(version / 10000, version / 100 % 100, version % 100);
}

std::string webpVersion() {
    const int version = WebPGetEncoderVersion();
    return dotted(version >> 16, version >> 8 & 0xFF, version & 0xFF);
}

std::string compiler() {
#if defined(__clang__)
    return "clang++ " __clang_version__;
#elif defined(__GNUC__)
    return "g++ " __VERSION__;
#else
    return "unknown";
#endif
}

// That of the kernels; the pictures are the same with each.
std::string instructionSet() {
#if defined(__aarch64__)
    return "arm64";
#else
    switch (Zvex::cpuTarget()) {
        case Zvex::CpuTarget::Avx512:
            return "avx512";
        case Zvex::CpuTarget::Avx2:
            return "avx2";
        case Zvex::CpuTarget::Baseline:
            break;
    }
    return "baseline";
#endif
}

}  // namespace

void addVersionOptions(CLI::App& command, VersionArguments& arguments) {
    command.add_flag("--json", arguments.json, "Print one JSON object");
    command.footer("Examples:\n  zvtext version --json");
}

void runVersion(const VersionArguments& arguments) {
    const Json libraries = {{"FreeType", freetypeVersion()},
                            {"HarfBuzz", hb_version_string()},
                            {"ICU", icuVersion()},
                            {"fontconfig", fontconfigVersion()},
                            {"libpng", png_get_libpng_ver(nullptr)},
                            {"libwebp", webpVersion()},
                            {"CLI11", CLI11_VERSION},
                            {"nlohmann-json", dotted(NLOHMANN_JSON_VERSION_MAJOR, NLOHMANN_JSON_VERSION_MINOR,
                                                     NLOHMANN_JSON_VERSION_PATCH)}};
    const Json version = {{"version", ZVEX_VERSION},
                          {"compiler", compiler()},
                          {"instructionSet", instructionSet()},
                          {"libraries", libraries}};
    std::string text = dumpJson(version, 2) + "\n";
    if (!arguments.json) {
        text = "zvtext " ZVEX_VERSION "\ncompiler " + compiler() + "\ninstruction set " + instructionSet() +
               "\n";
        for (const auto& [name, number] : libraries.items())
            text += name + " " + number.get<std::string>() + "\n";
    }
    printReport(text);
}

}  // namespace zvtext
