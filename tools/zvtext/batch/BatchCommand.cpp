// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchCommand.h"

#include <CLI/CLI.hpp>

#include "tools/zvtext/Options.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

constexpr NumberRange kLineNumbers = {1, 1e15, "", false, false, true};

}  // namespace

void addBatchOptions(CLI::App& command, BatchArguments& a) {
    RenderOptions defaults;
    Fields fields = fieldsOf(defaults);
    fields.erase(fields.begin());  // the text
    addOptions(command, fields, a.given);
    addReadOptions(command, a.reads, "lines and style files");
    command.add_option("file", a.input, "The lines, one JSON object each; - is standard input")
        ->type_name("FILE")
        ->capture_default_str();
    Fields own;
    addFields(
        own,
        {{"output", TextField{&a.output},
          "The picture's name for lines without an output; {index} is the line's number; - is standard "
          "output",
          "NAME", "o"},
         {"metrics", TextField{&a.metrics, kMaxFieldBytes, kWantedPath},
          "JSON file of the picture's metrics for lines that name none; {index} is the line's number; not "
          "written by default",
          "NAME"},
         {"output-dir", TextField{&a.outputFolder}, "Folder for the pictures; created if missing", "DIR"},
         {"allow-outside", FlagField{&a.allowOutside},
          "Let outputs be absolute paths or lie outside the output folder"},
         {"first-line", NumberField{&a.firstLine, kLineNumbers},
          "Number of the first line, if the lines are part of a longer list", "N"},
         {"jobs", NumberField{&a.jobs, {0, kMaxJobs}},
          "Worker processes; 0 is one for each core that the process may use", "N", "j"},
         {"resume", FlagField{&a.resume},
          "Skip pictures that are complete and were made from the same line, options and files"},
         {"quiet", FlagField{&a.quiet}, "Show no progress on the terminal"}},
        "Batch");
    addSettings(command, own);
    command.footer(
        R"(A line is a JSON object: "text", "output", and any option of render without its dashes. The options given
here are defaults for all lines. "style" may be the style itself:
  {"text": "Grüße", "size": 120, "stroke": "8:#202020", "output": "hello.png"}
  {"text": "世界", "fallback": ["NotoSansCJK-Regular.ttc"], "style": {"color": "#ff8800"}, "id": "w-7"}
"output" and "metrics" are names in the output folder, each used by one line only. The output - sends the
picture to standard output, directly after its result, which gives its format and number of bytes. Lines may
read files below the working folder or the folder of the input, and the system's fonts; --allow-read adds folders.
Each line gives one JSON object on standard output, in the order of the lines: line, path, width, height,
margins, baseline and milliseconds, or line and error; also the line's own id, a string or a number; metrics,
if they are written; skipped, if --resume skipped the picture. Empty lines are ignored; a line has at most
16 MiB. Warnings on standard error name the line.
--resume renders a picture again if one of these has changed: the line, an option, the program's version, the
style, the text's file, a font (given or the system's; compared by path, size and time), a pattern or another
file that the line names.

Examples:
  $ zvtext batch titles.jsonl --font 'DejaVu Sans:bold' --output-dir out --jobs 0 > results.jsonl
  $ zvtext batch titles.jsonl --font 'DejaVu Sans:bold' --output-dir out --resume > results.jsonl
The exit status is 0 on success, 1 if a line failed, 2 if the command line was wrong, or 128 plus the signal.)");
}

}  // namespace zvtext
