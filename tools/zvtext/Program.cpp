// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>

#include "scene/Failure.h"
#include "scene/Presets.h"
#include "scene/StyleSchema.h"
#include "scene/TextInput.h"
#include "tools/zvtext/Completion.h"
#include "tools/zvtext/batch/BatchCommand.h"
#include "tools/zvtext/gallery/Gallery.h"
#include "tools/zvtext/inspect/InspectCommand.h"
#include "tools/zvtext/preview/PreviewCommand.h"
#include "tools/zvtext/render/OutputFile.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

constexpr int kExitFailure = 1, kExitUsage = 2;

// Prints one line on standard error. Messages quote values and file contents, which may hold any bytes.
int complain(std::string message, int status) {
    message = printable(message);
    std::replace(message.begin(), message.end(), '\n', '?');
    std::fprintf(stderr, "zvtext: %s\n", message.c_str());
    return status;
}

// Commands that print what the program knows about itself.
void addPrintingCommands(CLI::App& app) {
    CLI::App* list = app.add_subcommand("presets", "List the styles that --preset takes");
    list->footer("Example:\n  $ zvtext presets");
    list->callback([] { print(presetList()); });
    CLI::App* schema = app.add_subcommand("schema", "Print the JSON Schema of style files");
    schema->footer("Example:\n  $ zvtext schema > style.schema.json");
    schema->callback([] { print(styleSchema()); });
    CLI::App* completion =
        app.add_subcommand("completion", "Print the script that completes command lines in bash");
    completion->footer("Example:\n  $ source <(zvtext completion)");
    completion->callback([&app] { print(bashCompletion(app)); });
}

// The help of all commands has all that their own has: the keys of effects, the lines of a batch, examples,
// and the commands of inspect.
class WholeHelp : public CLI::Formatter {
    std::string make_subcommands(const CLI::App* command, CLI::AppFormatMode mode) const override {
        using Mode = CLI::AppFormatMode;
        return CLI::Formatter::make_subcommands(command, mode == Mode::Sub ? Mode::All : mode);
    }
    std::string make_expanded(const CLI::App* command) const override {
        const std::string help = CLI::Formatter::make_expanded(command), end = make_footer(command);
        if (end.empty()) return help;
        return help + CLI::detail::find_and_replace("\n" + end.substr(0, end.size() - 1), "\n", "\n  ") +
               "\n";
    }
};

// If a standard stream is closed, a file must not get its number: output would go into that file. The
// placeholder opened here can be neither read nor written, as before.
void holdStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

int run(int argc, char** argv) {
    CLI::App app("Renders text with effects, byte for byte as on the phone.", "zvtext");
    app.formatter(std::make_shared<WholeHelp>());  // of the commands, too
    app.set_version_flag("--version", ZVEX_VERSION);
    app.set_help_all_flag("--help-all", "Print the help of every command");
    app.require_subcommand(1);
    RenderArguments renderArguments;
    CLI::App* render = app.add_subcommand("render", "Render a text to a picture");
    addRenderOptions(*render, renderArguments);
    render->callback([&] { runRender(renderArguments); });
    GalleryArguments galleryArguments;
    CLI::App* gallery = app.add_subcommand("gallery", "Render a page that shows every effect");
    addGalleryOptions(*gallery, galleryArguments);
    gallery->callback([&] { runGallery(galleryArguments); });
    int status = 0;
    PreviewArguments previewArguments;
    CLI::App* preview = app.add_subcommand("preview", "Show styles at several sizes, on several backgrounds");
    addPreviewOptions(*preview, previewArguments);
    preview->callback([&] { status = runPreview(previewArguments); });
    InspectArguments inspectArguments;
    addInspectCommands(*app.add_subcommand("inspect", "Describe a font, a style, or what a text needs"),
                       inspectArguments);
    addPrintingCommands(app);
    app.footer(
        "Examples:\n"
        "  $ zvtext render 'Grüße' --font 'DejaVu Sans:bold' --preset gold -o gold.png\n"
        "  $ zvtext render --help\n"
        "The exit status is 0 on success, 1 if a file or the machine failed, or 2 if the command line was "
        "wrong.");
    BatchArguments batchArguments;
    CLI::App* batch = app.add_subcommand("batch", "Render lines of JSON, one picture each");
    addBatchOptions(*batch, batchArguments);
    batch->callback([&] { status = runBatch(batchArguments); });
    addVersionOptions(*app.add_subcommand("version", "Print the versions of the program and its libraries"),
                      inspectArguments.versionAsJson);
    try {
        app.parse(argc, argv);
        return status;
    } catch (const CLI::Success& help) {  // --help and --version
        app.exit(help);
        return std::cout.flush() ? 0 : complain("cannot write to standard output", kExitFailure);
    } catch (const CLI::RequiredError& error) {
        const std::vector<std::string> unknown = app.remaining(true);
        const bool ofCommand = std::string(error.what()).find("subcommand") != std::string::npos;
        if (unknown.empty() || !ofCommand)
            return complain(std::string(error.what()) + " (see zvtext --help)", kExitUsage);
        return complain("'" + unknown.front() + "' is not a command (see zvtext --help)", kExitUsage);
    } catch (const CLI::ExtrasError&) {  // its message lists them backwards
        const std::vector<std::string> unknown = app.remaining(true);
        std::string list;
        for (const std::string& argument : unknown) list += " " + argument;
        return complain(std::string("The following argument") + (unknown.size() > 1 ? "s were" : " was") +
                            " not expected:" + list + " (see zvtext --help)",
                        kExitUsage);
    } catch (const CLI::ParseError& error) {
        return complain(std::string(error.what()) + " (see zvtext --help)", kExitUsage);
    } catch (const UsageError& error) {
        return complain(error.onCommandLine(), kExitUsage);
    } catch (const Error& error) {
        return complain(error.onCommandLine(), kExitFailure);
    } catch (const std::bad_alloc&) {
        return complain("not enough memory", kExitFailure);
    } catch (const std::exception& error) {
        return complain(error.what(), kExitFailure);
    }
}

}  // namespace

int runProgram(int argc, char** argv) try {
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is a write error, like a full disk
    holdStandardStreams();
    removeTemporariesOnSignals();
    return run(argc, argv);
} catch (...) {  // no memory for the help
    return kExitFailure;
}

}  // namespace zvtext
