// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/InspectCommand.h"

#include <CLI/CLI.hpp>
#include <cstdio>

#include "tools/zvtext/Failure.h"

namespace zvtext {

void addInspectCommands(CLI::App& inspect, InspectArguments& arguments) {
    inspect.require_subcommand(1);
    inspect.footer("Example:\n  zvtext inspect font DejaVuSans-Bold.ttf");
    addInspectFont(inspect, arguments.font);
    addInspectStyle(inspect, arguments.style);
}

void printReport(const std::string& text) {
    std::string clean = text;
    for (char& c : clean) {
        if ((static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F) c = '?';
    }
    if (std::fputs(clean.c_str(), stdout) == EOF || std::fflush(stdout) != 0) {
        throw Failure("cannot write to standard output");
    }
}

}  // namespace zvtext
