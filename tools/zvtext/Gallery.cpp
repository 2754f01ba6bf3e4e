// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Gallery.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/GalleryPage.h"
#include "tools/zvtext/GalleryScenes.h"
#include "tools/zvtext/GivenValue.h"
#include "tools/zvtext/Output.h"
#include "tools/zvtext/OutputFile.h"
#include "tools/zvtext/PngWriter.h"
#include "tools/zvtext/Presets.h"
#include "tools/zvtext/RenderCommand.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;

// A word as a shell reads it back.
std::string shellWord(const std::string& text) {
    const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./:=,@%+-";
    if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) return text;
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// Where the fonts with these file names lie; the first in the order of the paths where there are several.
std::map<std::string, std::string> findFonts(const std::string& folder) {
    std::map<std::string, std::string> fonts;
    std::error_code error;
    for (fs::recursive_directory_iterator file(folder, error), end; !error && file != end;
         file.increment(error)) {
        std::string& path = fonts[file->path().filename()];
        if (path.empty() || file->path().string() < path) path = file->path();
    }
    if (error) throw Failure("--font-dir: cannot read '" + folder + "': " + error.message());
    return fonts;
}

std::string groupNames() {
    std::string names;
    for (const GalleryGroup& group : galleryGroups())
        names += (names.empty() ? "" : ", ") + std::string(group.name);
    return names;
}

std::vector<const GalleryGroup*> chooseGroups(const std::vector<std::string>& names) {
    std::vector<const GalleryGroup*> groups;
    for (const GalleryGroup& group : galleryGroups()) {
        if (names.empty() || std::count(names.begin(), names.end(), group.name) > 0) groups.push_back(&group);
    }
    for (const std::string& name : names) {
        const auto named = [&](const GalleryGroup* group) { return name == group->name; };
        if (std::none_of(groups.begin(), groups.end(), named)) {
            throw UsageError("--only: '" + name + "' is not one of " + groupNames());
        }
    }
    return groups;
}

void enterFolder(const std::string& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (!error) fs::current_path(folder, error);
    if (!error) fs::create_directories("patterns", error);
    if (!error) fs::create_directories("styles", error);
    if (error) throw Failure("DIR: cannot make '" + folder + "': " + error.message());
}

void writeParts() {
    for (const GalleryPattern& pattern : galleryPatterns()) {
        writePng(pattern.draw(), std::string("patterns/") + pattern.name + ".png", "DIR");
    }
    for (const Preset& preset : presets()) {
        writeFile(preset.json, std::string("styles/") + preset.name + ".json", "DIR");
    }
}

// Does what the program does with this command line.
GalleryPicture renderCommandLine(const std::vector<std::string>& words) {
    CLI::App app("", "zvtext");
    RenderArguments arguments;
    CLI::App* command = app.add_subcommand("render");
    addRenderOptions(*command, arguments);
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // taken from the back
    const Rendering rendering = renderScene(readScene(arguments));
    writeRendering(rendering, arguments.output.value(), arguments.outputOptions, "DIR");
    GalleryPicture result = {};
    result.width = rendering.picture.width;
    result.height = rendering.picture.height;
    result.command = "zvtext";
    for (const std::string& word : words) result.command += " " + shellWord(word);
    return result;
}

}  // namespace

void addGalleryOptions(CLI::App& command, GalleryArguments& a) {
    command.add_option("dir", a.folder, "The folder to write into; made when missing")
        ->type_name("DIR")
        ->required();
    command.add_option("--font-dir", a.fontFolder, "Where fonts are looked for, by file name")
        ->type_name("DIR")
        ->check(givenValue())
        ->capture_default_str();
    command.add_option("--only", a.groups, "Only this group; give it again for more: " + groupNames())
        ->type_name("GROUP")
        ->take_all()
        ->allow_extra_args(false);
    command.footer(
        "Examples:\n"
        "  zvtext gallery out\n"
        "  zvtext gallery out --only styles --only stroke --font-dir ~/.fonts");
}

void runGallery(const GalleryArguments& arguments) {
    const std::vector<const GalleryGroup*> groups = chooseGroups(arguments.groups);
    const std::map<std::string, std::string> fonts = findFonts(fs::absolute(arguments.fontFolder));
    size_t count = 0;
    for (const GalleryGroup* group : groups) count += group->scenes.size();
    enterFolder(arguments.folder);
    writeParts();

    std::vector<GalleryPicture> pictures;
    size_t number = 0;
    for (const GalleryGroup* group : groups) {
        for (const GalleryScene& scene : group->scenes) {
            std::fprintf(stderr, "gallery: %zu of %zu, %s\n", ++number, count, scene.name);
            const auto font = fonts.find(scene.font);
            if (font == fonts.end()) {
                std::fprintf(stderr, "zvtext: warning: left out, no %s below %s\n", scene.font,
                             printable(arguments.fontFolder).c_str());
                continue;
            }
            std::vector<std::string> words = {"render", scene.text, "--font", font->second};
            words.insert(words.end(), scene.arguments.begin(), scene.arguments.end());
            words.insert(words.end(), {"--output", std::string(scene.name) + ".png"});
            pictures.push_back(renderCommandLine(words));
            pictures.back().group = group;
            pictures.back().scene = &scene;
        }
    }
    if (pictures.empty()) throw Failure("--font-dir: none of the fonts is below " + arguments.fontFolder);
    writeFile(galleryPage(pictures), "index.html", "DIR");
    print(printable((fs::path(arguments.folder) / "index.html").string()) + ": " +
          std::to_string(pictures.size()) + " pictures\n");
}

}  // namespace zvtext
