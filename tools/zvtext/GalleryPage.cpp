// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/GalleryPage.h"

namespace zvtext {

namespace {

// The grounds are radio buttons that come before the pictures, so that plain CSS can follow them.
constexpr char kHead[] = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Text effects</title>
<style>
:root { color-scheme: light dark; --page: #fafaf8; --ink: #222; --faint: #666; --line: #ddd; --code: #f0efeb; }
@media (prefers-color-scheme: dark) {
  :root { --page: #191a1c; --ink: #e8e6e3; --faint: #a09c96; --line: #36383c; --code: #26282b; }
}
body { margin: 0 auto; max-width: 92rem; padding: 1.5rem; background: var(--page); color: var(--ink);
  font: 1rem/1.5 system-ui, sans-serif; }
h1 { margin: 0; }
h2 { margin: 2.5rem 0 0; }
p { margin: .25rem 0 1rem; color: var(--faint); }
nav a { margin-right: .8rem; color: inherit; }
input { margin: 1rem .3rem 0 0; }
label { margin-right: 1rem; }
section { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(100%, 28rem), 1fr)); gap: 1.25rem; }
section > header { grid-column: 1 / -1; }
section > header > p { margin-bottom: 0; }
figure { margin: 0; display: flex; flex-direction: column; border: 1px solid var(--line); border-radius: .5rem;
  overflow: hidden; }
.ground { flex: 1; display: flex; align-items: center; justify-content: center; min-height: 11rem; padding: 1rem;
  background: repeating-conic-gradient(var(--a) 0% 25%, var(--b) 0% 50%) 0 0 / 16px 16px; }
.light, #light:checked ~ main .ground { --a: #fff; --b: #ececec; }
.dark, #dark:checked ~ main .ground { --a: #17181c; --b: #212329; }
img { max-width: 100%; height: auto; }
figcaption { padding: .6rem .8rem; border-top: 1px solid var(--line); }
pre { margin: .4rem 0 0; padding: .5rem .6rem; background: var(--code); border-radius: .3rem; white-space: pre-wrap;
  overflow-wrap: anywhere; font-size: .75rem; line-height: 1.4; }
</style>
</head>
<body>
<h1>Text effects</h1>
<p>Each picture with the command that made it; run from this page's folder, it makes the picture again.</p>
)html";

constexpr char kGrounds[] =
    R"html(<input type="radio" name="ground" id="own" checked><label for="own">Each on its ground</label>
<input type="radio" name="ground" id="light"><label for="light">All on light</label>
<input type="radio" name="ground" id="dark"><label for="dark">All on dark</label>
<main>
)html";

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string figure(const GalleryPicture& picture) {
    const GalleryScene& scene = *picture.scene;
    return std::string("<figure>\n<div class=\"ground ") + (scene.ground == Ground::Dark ? "dark" : "light") +
           "\"><img src=\"" + scene.name + ".png\" width=\"" + std::to_string(picture.width) +
           "\" height=\"" + std::to_string(picture.height) + "\" alt=\"" + escaped(scene.text) +
           "\" loading=\"lazy\"></div>\n<figcaption>" + escaped(scene.title) + "\n<pre><code>" +
           escaped(picture.command) + "</code></pre></figcaption>\n</figure>\n";
}

}  // namespace

std::string galleryPage(const std::vector<GalleryPicture>& pictures) {
    std::string links, sections;
    const GalleryGroup* group = nullptr;
    for (const GalleryPicture& picture : pictures) {
        if (picture.group != group) {
            if (group != nullptr) sections += "</section>\n";
            group = picture.group;
            links += std::string("<a href=\"#") + group->name + "\">" + escaped(group->title) + "</a>\n";
            sections += std::string("<section id=\"") + group->name + "\">\n<header>\n<h2>" +
                        escaped(group->title) + "</h2>\n<p>" + escaped(group->introduction) +
                        "</p>\n</header>\n";
        }
        sections += figure(picture);
    }
    if (group != nullptr) sections += "</section>\n";
    return std::string(kHead) + "<nav>\n" + links + "</nav>\n" + kGrounds + sections +
           "</main>\n</body>\n</html>\n";
}

}  // namespace zvtext
