// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/preview/PreviewCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/FontChoice.h"
#include "scene/Png.h"
#include "scene/TextInput.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/preview/Sheet.h"
#include "tools/zvtext/preview/Watch.h"
#include "tools/zvtext/render/OutputFile.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;

constexpr Ground kGrounds[] = {{"light", 0xFFFFFFFF, 0xFFFFFFFF},
                               {"dark", 0xFF17181C, 0xFF17181C},
                               {"transparent", 0xFFFFFFFF, 0xFFCCCCCC}};
constexpr char kDefaultFont[] = "sans-serif:bold";

// The options of render that say which text stands where, not how it looks: those are the styles'.
Fields settingFields(SceneOptions& options) {
    Fields fields;
    for (Field& field : fieldsOf(options)) {
        const std::string name = field.name;
        const bool setting = std::strcmp(field.group, "Text") == 0 || std::strcmp(field.group, "View") == 0;
        if (setting && name != "text" && name != "text-file" && name != "scale")
            fields.push_back(std::move(field));
    }
    return fields;
}

std::vector<double> readSizes(const std::string& list) {
    std::vector<double> sizes;
    for (const std::string& part : split(list, ',')) sizes.push_back(parseNumber("--sizes", part, kTextSize));
    return sizes;
}

std::vector<Ground> readGrounds(const std::string& list) {
    if (list.empty()) return {std::begin(kGrounds), std::end(kGrounds)};
    std::vector<Ground> grounds;
    for (const std::string& part : split(list, ',')) {
        const Ground* found = nullptr;
        for (const Ground& ground : kGrounds) {
            if (part == ground.name) found = &ground;
        }
        if (found == nullptr)
            throw UsageError("--grounds: '" + part + "' is not one of light, dark, transparent");
        grounds.push_back(*found);
    }
    return grounds;
}

bool isPage(const std::string& path) {
    const std::string ending = fs::path(path).extension();
    if (ending == ".html" || ending == ".png") return ending == ".html";
    throw UsageError("--output: '" + path + "' does not end in .html or .png");
}

// "gold" of "styles/gold.json"
std::string nameOf(const std::string& style) {
    const fs::path path(style);
    return printable(path.extension() == ".json" ? path.stem().string() : path.filename().string());
}

std::string counted(size_t count, const std::string& thing) {
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

// A line on a terminal that says how far it is, where that takes longer than a second.
class PreviewProgress {
public:
    explicit PreviewProgress(size_t all) : mAll(all) {}
    ~PreviewProgress() {
        if (mShown) std::fputs("\r\x1b[K", stderr);
    }
    PreviewProgress(const PreviewProgress&) = delete;
    PreviewProgress& operator=(const PreviewProgress&) = delete;

    void begin(size_t done, const std::string& what) {
        if (!mIsTerminal || std::chrono::steady_clock::now() - mStart < std::chrono::seconds(1)) return;
        mShown = true;
        std::fprintf(stderr, "\r%zu of %zu, %s\x1b[K", done + 1, mAll, what.c_str());
    }

private:
    const size_t mAll;
    const std::chrono::steady_clock::time_point mStart = std::chrono::steady_clock::now();
    const bool mIsTerminal = isatty(STDERR_FILENO) == 1;
    bool mShown = false;
};

class Preview {
public:
    explicit Preview(const PreviewArguments& arguments)
        : mArguments(arguments),
          mSizes(readSizes(arguments.sizes)),
          mGrounds(readGrounds(arguments.grounds)),
          mIsPage(isPage(arguments.output)) {
        if (!arguments.watches) return;
        for (const std::string& style : arguments.styles) {
            if (style == "-") throw UsageError("STYLE: standard input cannot be watched");
        }
    }

    int run() const {
        if (!mArguments.watches) {
            make([](const std::string&) {});
            return 0;
        }
        int status = 0;
        const bool isChild = watch([this](const NoteFile& note) { make(note); }, status);
        if (!isChild && status == 0) endReloading();
        return status;
    }

private:
    size_t picturesOfStyle() const { return mSizes.size() * mArguments.texts.size(); }

    void make(const NoteFile& note) const {
        std::vector<ShownStyle> styles;
        {
            PreviewProgress progress(mArguments.styles.size() * picturesOfStyle());
            for (const std::string& style : mArguments.styles) {
                progress.begin(styles.size() * picturesOfStyle(), nameOf(style));
                styles.push_back(shown(style, note));
            }
        }
        const std::string content = mIsPage ? previewPage(styles, mGrounds, mArguments.watches)
                                            : encodePng(contactSheet(styles, mGrounds));
        writeFile(content, mArguments.output, "--output");
        print(printable(mArguments.output) + ": " + counted(styles.size(), "style") + ", " +
              counted(styles.size() * picturesOfStyle(), "picture") + "\n");
    }

    // The scene as it is set, without text and style.
    SceneOptions setting(const std::shared_ptr<const Source>& source, const NoteFile& note) const {
        SceneOptions options;
        readOptions(settingFields(options), mArguments.given, {"", source, source});
        Scene& scene = options.scene;
        if (scene.font.name.empty()) scene.font.name = kDefaultFont;
        note(chooseFont("--font", scene.font.name, source).path);
        for (const Font& font : scene.fallbacks) note(chooseFont("--fallback", font.name, source).path);
        return options;
    }

    ShownStyle shown(const std::string& argument, const NoteFile& note) const {
        const auto source = notedSource(fileSource({}, mArguments.reads), note);
        SceneOptions options = setting(source, note);
        ShownStyle result;
        result.name = nameOf(argument);
        readStyleArgument(argument, options.scene.style, source);
        result.description = options.scene.style.notes.description;
        std::vector<std::string> warnings;
        for (const std::string& text : mArguments.texts) {
            for (const double size : mSizes) {
                SceneOptions one = options;
                one.scene.text = text;
                one.scene.style.size = size;
                Rendering rendering = made(std::move(one));
                for (const std::string& warning : rendering.warnings) {
                    if (std::count(warnings.begin(), warnings.end(), warning) == 0)
                        warnings.push_back(warning);
                }
                const bool sizeMatters = mSizes.size() > 1 || mIsPage;
                result.pictures.push_back(
                    {std::move(rendering.picture), text,
                     result.name + (sizeMatters ? ", " + formatNumber(size) + " px" : "")});
            }
        }
        warn(warnings);
        return result;
    }

    static Rendering made(SceneOptions options) {
        try {
            return render(sceneOf(std::move(options)));
        } catch (const UsageError& error) {
            if (error.place() != "size") throw;
            throw UsageError("--sizes: " + error.cause());
        }
    }

    // No page looks for the next one when there will be none.
    void endReloading() const {
        if (!mIsPage || !fs::exists(mArguments.output)) return;
        removeTemporariesOnSignals();
        const std::string page = readFile("--output", mArguments.output, std::string::npos);
        writeFile(withoutReloading(page), mArguments.output, "--output");
    }

    const PreviewArguments& mArguments;
    const std::vector<double> mSizes;
    const std::vector<Ground> mGrounds;
    const bool mIsPage;
};

}  // namespace

void addPreviewOptions(CLI::App& command, PreviewArguments& a) {
    command.add_option("style", a.styles, "Names of presets, or style files; ./NAME is always a file")
        ->type_name("FILE|PRESET")
        ->required();
    command.add_option("--text", a.texts, "The words, Sample by default; give it again for more")
        ->type_name("WORDS")
        ->take_all()
        ->allow_extra_args(false);
    addSettings(command, {{"sizes", TextField{&a.sizes, kMaxFieldBytes, "a list of sizes; write 24,64,160"},
                           "The text sizes, in pixels", "PX,PX,..."},
                          {"grounds", TextField{&a.grounds, kMaxFieldBytes, "a list of grounds"},
                           "Backgrounds of the pictures; all three by default", "light,dark,transparent"},
                          {"output", TextField{&a.output, kMaxFieldBytes, kWantedPath},
                           "One HTML page (.html) or one picture (.png)", "FILE", "o"},
                          {"watch", FlagField{&a.watches},
                           "Make it again whenever a style, its pattern or a font changes, until Ctrl-C; an "
                           "open page reloads itself"}});
    SceneOptions options;
    options.scene.font.name = kDefaultFont;
    addOptions(command, settingFields(options), a.given);
    addReadOptions(command, a.reads, "a style file");
    command.footer(
        "Examples:\n"
        "  $ zvtext preview gold chrome mine.json --text Title --font 'Noto Serif:bold'\n"
        "  $ zvtext preview mine.json --text Title --text 'A longer line' --watch -o mine.html\n"
        "  $ zvtext preview gold neon ice --sizes 64 --grounds dark -o sheet.png");
}

int runPreview(const PreviewArguments& arguments) {
    return Preview(arguments).run();
}

}  // namespace zvtext
