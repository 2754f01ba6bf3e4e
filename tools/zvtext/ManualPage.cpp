// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "tools/zvtext/CommandTree.h"
#include "tools/zvtext/Values.h"

namespace zvtext {

namespace {

// The code point that starts at `at`, which moves behind it. The program's own texts are well-formed.
unsigned nextCodePoint(const std::string& text, size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80) return lead;
    unsigned point = lead & (lead < 0xE0 ? 0x1Fu : lead < 0xF0 ? 0x0Fu : 0x07u);
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) {
        point = point << 6 | (static_cast<unsigned char>(text[at++]) & 0x3Fu);
    }
    return point;
}

// As it stands, in troff: no character is a request, a hyphen or a curly quote, and all are ASCII.
std::string escaped(const std::string& text) {
    std::string result;
    bool lineStart = true;
    for (size_t at = 0; at < text.size();) {
        const unsigned point = nextCodePoint(text, at);
        if (lineStart && point == '.') result += "\\&";
        lineStart = point == '\n';
        switch (point) {
            case '\\':
                result += "\\e";
                break;
            case '-':
                result += "\\-";
                break;
            case '\'':
                result += "\\(aq";
                break;
            case '`':
                result += "\\(ga";
                break;
            case '^':
                result += "\\(ha";
                break;
            case '~':
                result += "\\(ti";
                break;
            default:
                char name[16];
                std::snprintf(name, sizeof name, point < 0x80 ? "%c" : "\\[u%04X]", point);
                result += name;
        }
    }
    return result;
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return text.empty() ? "" : "\\fI" + escaped(text) + "\\fR";
}

std::string synopsis(const CommandNode& node) {
    std::string line = bold("zvtext " + node.name());
    if (!node.options.empty()) line += " [" + italic("OPTION") + "]...";
    for (const OptionNode& argument : node.arguments) {
        line += argument.required ? " " + italic(argument.value) : " [" + italic(argument.value) + "]";
    }
    return line + "\n";
}

std::string preformatted(const std::string& text) {
    if (text.empty()) return "";
    return ".PP\n.nf\n" + escaped(text) + (text.back() == '\n' ? "" : "\n") + ".fi\n";
}

std::string entry(const OptionNode& option) {
    std::string flags;
    for (const std::string& flag : option.flags) flags += (flags.empty() ? "" : ", ") + bold(flag);
    std::string text = ".TP\n" + flags + (flags.empty() || option.value.empty() ? "" : " ") +
                       italic(option.value) + "\n" + escaped(option.help) + ".\n";
    if (!option.start.empty()) text += "Without it: " + escaped(option.start) + "\n";
    return text;
}

}  // namespace

std::string manualPage(const CLI::App& app, const std::string& version) {
    const std::vector<CommandNode> tree = commandTree(app);
    std::string names, sections;
    for (const CommandNode& node : tree) {
        if (node.path.empty() || !node.commands.empty()) continue;
        names += (names.empty() ? "" : ".br\n") + synopsis(node);
        sections += ".SS zvtext " + escaped(node.name()) + "\n" + escaped(node.help) + ".\n";
        for (const OptionNode& argument : node.arguments) sections += entry(argument);
        for (const OptionNode& option : node.options) {
            if (option.flags.back() != "--help") sections += entry(option);
        }
        sections += preformatted(node.footer);
    }
    const CommandNode& program = tree.front();
    return ".TH ZVTEXT 1 \"\" \"zvtext " + escaped(version) + "\" \"User Commands\"\n.SH NAME\nzvtext \\- " +
           escaped(program.help) + "\n.SH SYNOPSIS\n" + names + ".SH COMMANDS\n" + sections +
           ".SH EXIT STATUS\n" + escaped(program.footer) + "\n";
}

}  // namespace zvtext
