// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_

#include <CLI/App.hpp>
#include <cstddef>
#include <optional>
#include <string>

#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

// One line of `zvtext batch`: a JSON object whose keys are the options of render, without the dashes, and
// "text"; "output" and "metrics" are names in the output folder. A value is a string as the command line has
// it, or a number; true or false for a flag; an array of strings for an option that may be given several
// times; an object for "style", which is then the style itself. null is as if the key were not there.
constexpr size_t kMaxLineBytes = size_t{16} << 20;

// What the line calls its files; none where it has no such key.
struct LineNames {
    std::optional<std::string> output, metrics;
};

// Throws UsageError for what is no line, for a key that is there twice, and for a name that is no string.
LineNames readLineNames(const std::string& line);

// Reads lines as render reads its command line, through the same options.
class LineReader {
public:
    // The defaults hold for what a line leaves out. `defaults.start` is their style; effects of a line come
    // behind its effects or replace them, each other setting of a line replaces its own.
    // Files that lines name lie in `scope`, fonts in the system's folders for them as well; patterns of the
    // styles among them in the style's folder.
    explicit LineReader(const RenderArguments& defaults, FolderScope scope = {});
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Without its files. Its values are still to be read, by readScene. Throws UsageError for what is no
    // line, for a key that is unknown or there twice, and for a value of the wrong kind.
    RenderArguments read(const std::string& line);

private:
    const FolderScope& fontScope();

    const RenderArguments mDefaults;
    const FolderScope mScope;
    std::optional<FolderScope> mFontScope;  // and the system's fonts
    RenderArguments mArguments;             // filled by mCommand
    CLI::App mCommand;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_
