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
          "Name of a picture whose line has no output; {index} is the line's number; - is standard output",
          "NAME", "o"},
         {"metrics", TextField{&a.metrics, kMaxFieldBytes, kWantedPath},
          "Name of the metrics in JSON of a picture whose line has none, with {index}; else none", "NAME"},
         {"output-dir", TextField{&a.outputFolder}, "Where the pictures go; made when missing", "DIR"},
         {"allow-outside", FlagField{&a.allowOutside}, "Let outputs be absolute or leave the output folder"},
         {"first-line", NumberField{&a.firstLine, kLineNumbers},
          "The number of the first line, where they are part of a longer list", "N"},
         {"jobs", NumberField{&a.jobs, {0, kMaxJobs}},
          "Worker processes; 0 is one for each core that the process may use", "N", "j"},
         {"resume", FlagField{&a.resume},
          "Leave pictures that are there, whole and made from the same line, options and files"},
         {"quiet", FlagField{&a.quiet}, "No progress on the terminal"}},
        "Batch");
    addSettings(command, own);
    command.footer(
        R"(A line is a JSON object: "text", "output", and any option of render without its dashes. What it leaves
out is as the options here say. "style" may be the style itself:
  {"text": "Grüße", "size": 120, "stroke": "8:#202020", "output": "hello.png"}
  {"text": "世界", "fallback": ["NotoSansCJK-Regular.ttc"], "style": {"color": "#ff8800"}, "id": "w-7"}
"output" and "metrics" are names in the output folder, each of one line alone; the output - sends the picture
to standard output, behind its result, which has its format and bytes. Files to be read lie below
the working folder or that of the lines, fonts also among the system's; --allow-read adds folders.
Each line gives one JSON object on standard output, in their order: line, path, width, height, margins,
baseline and milliseconds, or line and error; the line's own id, a string or a number, where it has one;
metrics where there are some, skipped where --resume left them. Empty lines are passed over; a line has at
most 16 MiB. Warnings on standard error name the line.
--resume renders anew where the line, an option, the program's version, the style, the text's file, a font
(given or the system's; by place, size and time), a pattern or a file of the line's is not what it was.

Examples:
  $ zvtext batch titles.jsonl --font 'DejaVu Sans:bold' --output-dir out --jobs 0 > results.jsonl
  $ zvtext batch titles.jsonl --font 'DejaVu Sans:bold' --output-dir out --resume > results.jsonl
The exit status is 0, 1 where a line failed, 2 where the command line was wrong, or 128 and the signal.)");
}

}  // namespace zvtext
