// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/CommandTree.h"

#include <CLI/CLI.hpp>
#include <cctype>

#include "tools/zvtext/GalleryScenes.h"
#include "tools/zvtext/Presets.h"
#include "tools/zvtext/Values.h"

namespace zvtext {

namespace {

ValueHint hintOf(const std::string& value) {
    ValueHint hint;
    for (const std::string& part : split(value, '|')) {
        if (part == "FILE" || part == "FONT" || part.rfind("FILE,", 0) == 0) hint.files = true;
        if (part == "DIR") hint.folders = true;
        if (part == "PRESET") {
            for (const Preset& preset : presets()) hint.words.emplace_back(preset.name);
        }
        if (part == "GROUP") {
            for (const GalleryGroup& group : galleryGroups()) hint.words.emplace_back(group.name);
        }
        if (!part.empty() && std::islower(static_cast<unsigned char>(part[0])) != 0)
            hint.words.push_back(part);
    }
    return hint;
}

OptionNode nodeOf(const CLI::Option& option) {
    OptionNode node;
    for (const std::string& name : option.get_snames()) node.flags.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) node.flags.push_back("--" + name);
    if (option.get_items_expected_max() > 0) node.value = option.get_type_name();
    node.help = option.get_description();
    node.start = option.get_default_str();
    node.hint = hintOf(node.value);
    node.required = option.get_required();
    return node;
}

void collect(const CLI::App& app, const std::vector<std::string>& path, std::vector<CommandNode>& tree) {
    CommandNode node;
    node.path = path;
    node.help = app.get_description();
    node.footer = app.get_footer();
    for (const CLI::Option* option : app.get_options()) {
        (option->nonpositional() ? node.options : node.arguments).push_back(nodeOf(*option));
    }
    const std::vector<const CLI::App*> below = app.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* command : below) node.commands.push_back(command->get_name());
    tree.push_back(std::move(node));
    for (const CLI::App* command : below) {
        std::vector<std::string> longer = path;
        longer.push_back(command->get_name());
        collect(*command, longer, tree);
    }
}

}  // namespace

std::string CommandNode::name() const {
    std::string text;
    for (const std::string& part : path) text += (text.empty() ? "" : " ") + part;
    return text;
}

std::vector<CommandNode> commandTree(const CLI::App& app) {
    std::vector<CommandNode> tree;
    collect(app, {}, tree);
    return tree;
}

}  // namespace zvtext
