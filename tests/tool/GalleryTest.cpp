// SPDX-License-Identifier: Apache-2.0
#include "tests/tool/Program.h"

namespace {

class GalleryCommand : public Program {
protected:
    // The parts of the page between `before` and `after`, as a browser reads them.
    static std::vector<std::string> between(const std::string& page, const std::string& before,
                                            const std::string& after) {
        std::vector<std::string> parts;
        size_t begin = 0;
        while ((begin = page.find(before, begin)) != std::string::npos) {
            begin += before.size();
            std::string part = page.substr(begin, page.find(after, begin) - begin);
            for (const auto& [entity, character] :
                 {std::pair("&lt;", "<"), {"&gt;", ">"}, {"&quot;", "\""}, {"&amp;", "&"}}) {
                for (size_t at = 0; (at = part.find(entity, at)) != std::string::npos; ++at) {
                    part.replace(at, std::string(entity).size(), character);
                }
            }
            parts.push_back(part);
        }
        return parts;
    }
};

TEST_F(GalleryCommand, CaptionsMakeTheirPicturesAgain) {
    const Result result =
        zvtext("gallery $DIR/gallery --only stroke --only pattern --only styles --only picture");
    ASSERT_EQ(result.status, 0) << result.err;
    const std::string page = slurp(file("gallery/index.html"));
    const std::vector<std::string> pictures = between(page, "<img src=\"", "\"");
    const std::vector<std::string> commands = between(page, "<code>", "</code>");
    EXPECT_GT(pictures.size(), 20u);
    ASSERT_EQ(pictures.size(), commands.size());
    EXPECT_EQ(result.out,
              file("gallery/index.html").string() + ": " + std::to_string(pictures.size()) + " pictures\n");
    EXPECT_EQ(page.find("http"), std::string::npos) << "nothing from elsewhere";
    const std::string path = "PATH=" + fs::path(ZVTEXT_BINARY).parent_path().string() + ":$PATH ";
    for (size_t i = 0; i < pictures.size(); ++i) {
        const fs::path picture = file("gallery") / pictures[i];
        const std::string before = slurp(picture);
        fs::remove(picture);
        const std::string command =
            "cd " + file("gallery").string() + " && " + path + commands[i] + " >/dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        EXPECT_GT(readPng(picture).ink(), 0u) << picture;
        EXPECT_EQ(slurp(picture), before) << commands[i];
    }
}

TEST_F(GalleryCommand, LeavesOutWhatItLacksTheFontFor) {
    fs::create_directory(file("empty"));
    const Result result = zvtext("gallery $DIR/gallery --font-dir $DIR/empty --only stroke");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.err.find("gallery: 1 of 5, stroke-outside\nzvtext: warning: left out, no DejaVuSans-Bold.ttf"),
        0u);
    EXPECT_FALSE(fs::exists(file("gallery/index.html")));
}

}  // namespace
