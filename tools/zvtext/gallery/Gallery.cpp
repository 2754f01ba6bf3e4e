// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/gallery/Gallery.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>

#include "scene/Failure.h"
#include "scene/Json.h"
#include "scene/Png.h"
#include "scene/Presets.h"
#include "scene/TextInput.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/page/Page.h"
#include "tools/zvtext/render/Output.h"
#include "tools/zvtext/render/OutputFile.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

extern const char kGalleryScenes[];  // scenes.json

namespace {

namespace fs = std::filesystem;

const Json& allGroups() {
    static const Json groups = Json::parse(kGalleryScenes);
    return groups;
}

std::string textOf(const Json& object, const char* key) {
    return object.value(key, "");
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

// Quotes a word for a shell.
std::string shellWord(const std::string& text) {
    const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./:=,@%+-";
    if (!text.empty() && text.find_first_not_of(plain) == std::string::npos) return text;
    std::string quoted = "'";
    for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// The paths of the fonts with these file names; if there are several, the first in the order of paths.
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

Json chooseGroups(const std::vector<std::string>& names) {
    const std::vector<std::string> known = galleryGroupNames();
    for (const std::string& name : names) {
        if (std::count(known.begin(), known.end(), name) > 0) continue;
        throw UsageError("--only: '" + name + "' is not one of " + joined(known));
    }
    Json groups = Json::array();
    for (const Json& group : allGroups()) {
        if (names.empty() || std::count(names.begin(), names.end(), group["name"]) > 0)
            groups.push_back(group);
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

// --- The tiles that the scenes name as patterns/NAME.png

uint32_t checks(int x, int y) {
    return (x < 8) == (y < 8) ? 0xFFD62839 : 0xFFF6BD60;
}

// Diagonal, shaded across each stripe.
uint32_t stripes(int x, int y) {
    const int across = (x + y) % 24;
    const auto shade = static_cast<uint32_t>(across < 12 ? across : 23 - across) * 10;
    return across < 12 ? 0xFFE04050 + (shade << 8) : 0xFFFFF0F0 - shade;
}

// Round dots on a transparent ground; their edges fade over a pixel.
uint32_t dots(int x, int y) {
    const int squared =
        (2 * x - 19) * (2 * x - 19) + (2 * y - 19) * (2 * y - 19);  // square of twice the distance
    return (squared < 100 ? 0xFFu : squared < 144 ? 0x80u : 0) << 24 | 0xC2255C;
}

void writeParts() {
    const auto writeTile = [](const std::string& name, int side, uint32_t (*pixelAt)(int, int)) {
        Picture tile = {side, side, {}};
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) tile.pixels.push_back(pixelAt(x, y));
        }
        writeFile(encodePng(tile), "patterns/" + name + ".png", "DIR");
    };
    writeTile("checks", 16, checks);
    writeTile("stripes", 24, stripes);
    writeTile("dots", 20, dots);
    for (const Preset& preset : presets()) {
        writeFile(preset.json, std::string("styles/") + preset.name + ".json", "DIR");
    }
}

// --- The page

// Runs this command line as the program would, and returns the page's entry for it.
std::string renderFigure(const Json& scene, const std::string& font) {
    std::vector<std::string> words = {"render", textOf(scene, "text"), "--font", font};
    for (const Json& option : scene["options"]) words.push_back(option);
    words.insert(words.end(), {"--output", textOf(scene, "name") + ".png"});
    CLI::App app("", "zvtext");
    RenderArguments arguments;
    addRenderOptions(*app.add_subcommand("render"), arguments);
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // the parser takes them from the back
    RenderOptions options = readRenderOptions(arguments);
    const Rendering rendering = render(sceneOf(std::move(options.scene)));
    warn(rendering.warnings);
    writeRendering(rendering, arguments.output, options.output, "DIR");
    std::string command = "zvtext";
    for (const std::string& word : words) command += " " + shellWord(word);
    return "<figure>\n<div class=\"ground " + scene.value("ground", "light") + "\"><img src=\"" +
           textOf(scene, "name") + ".png\" width=\"" + std::to_string(rendering.picture.width) +
           "\" height=\"" + std::to_string(rendering.picture.height) + "\" alt=\"" +
           escaped(textOf(scene, "text")) + "\" loading=\"lazy\"></div>\n<figcaption>" +
           escaped(textOf(scene, "title")) + "\n<pre><code>" + escaped(command) +
           "</code></pre></figcaption>\n</figure>\n";
}

constexpr char kIntroduction[] =
    "Each picture with the command that made it; run from this page's folder, it makes the picture again.";
constexpr char kGroundButtons[] =
    "<input type=\"radio\" name=\"ground\" id=\"own\" checked><label for=\"own\">Each on its ground</label>\n"
    "<input type=\"radio\" name=\"ground\" id=\"light\"><label for=\"light\">All on light</label>\n"
    "<input type=\"radio\" name=\"ground\" id=\"dark\"><label for=\"dark\">All on dark</label>\n";

}  // namespace

std::vector<std::string> galleryGroupNames() {
    std::vector<std::string> names;
    for (const Json& group : allGroups()) names.push_back(group["name"]);
    return names;
}

void addGalleryOptions(CLI::App& command, GalleryArguments& a) {
    command.add_option("dir", a.folder, "The folder to write into; created if missing")
        ->type_name("DIR")
        ->required();
    addSettings(command, {{"font-dir", TextField{&a.fontFolder, kMaxFieldBytes, "a folder"},
                           "Folder in which fonts are searched for, by file name", "DIR"}});
    command
        .add_option("--only", a.groups,
                    "Draw only this group; give it again for more: " + joined(galleryGroupNames()))
        ->type_name("GROUP")
        ->take_all()
        ->allow_extra_args(false);
    command.footer(
        "Examples:\n"
        "  $ zvtext gallery out\n"
        "  $ zvtext gallery out --only styles --only stroke --font-dir ~/.fonts");
}

void runGallery(const GalleryArguments& arguments) {
    const Json groups = chooseGroups(arguments.groups);
    const std::map<std::string, std::string> fonts = findFonts(fs::absolute(arguments.fontFolder));
    size_t count = 0, number = 0, drawn = 0;
    for (const Json& group : groups) count += group["scenes"].size();
    enterFolder(arguments.folder);
    writeParts();
    Page page = {"Text effects", kIntroduction, "", kGroundButtons, "", ""};
    for (const Json& group : groups) {
        std::string figures;
        for (const Json& scene : group["scenes"]) {
            std::fprintf(stderr, "gallery: %zu of %zu, %s\n", ++number, count, textOf(scene, "name").c_str());
            const auto font = fonts.find(textOf(scene, "font"));
            if (font == fonts.end()) {
                std::fprintf(stderr, "zvtext: warning: left out, no %s below %s\n",
                             textOf(scene, "font").c_str(), printable(arguments.fontFolder).c_str());
                continue;
            }
            figures += renderFigure(scene, font->second);
            ++drawn;
        }
        if (figures.empty()) continue;
        page.beginSection(textOf(group, "name"), textOf(group, "title"), textOf(group, "introduction"));
        page.sections += figures;
        page.endSection();
    }
    if (drawn == 0) throw Failure("--font-dir: none of the fonts is below " + arguments.fontFolder);
    writeFile(page.html(), "index.html", "DIR");
    print(printable((fs::path(arguments.folder) / "index.html").string()) + ": " + std::to_string(drawn) +
          " pictures\n");
}

}  // namespace zvtext
