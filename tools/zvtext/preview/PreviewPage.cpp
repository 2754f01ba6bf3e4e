// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <functional>

#include "scene/Png.h"
#include "scene/Values.h"
#include "tools/zvtext/page/Page.h"
#include "tools/zvtext/preview/Sheet.h"

namespace zvtext {

namespace {

constexpr char kReloadingBegin[] = "<script>\n// Until", kReloadingEnd[] = "</script>\n";

// A page opened from a file cannot fetch itself again, so it loads itself in a hidden frame, which posts its
// version.
std::string reloading(const std::string& version) {
    return kReloadingBegin +
           (" the preview ends: loads the page once more, unseen, and shows it if it is new.\n"
            "const version = \"" +
            version + "\";\n" + R"(if (window !== parent) {
  parent.postMessage(version, "*");
  stop();
} else addEventListener("DOMContentLoaded", () => {
  const probe = document.body.appendChild(document.createElement("iframe"));
  let answered = true;
  probe.hidden = true;
  addEventListener("message", event => {
    answered = true;
    if (event.data !== version) location.reload();
  });
  const timer = setInterval(() => {
    if (!answered) return clearInterval(timer);
    answered = false;
    probe.src = location.pathname + "?" + Date.now();
  }, 1000);
});
)" + kReloadingEnd);
}

std::string groundsOf(const Shown& shown, const std::vector<Ground>& grounds) {
    const std::string size = "--width:" + std::to_string(shown.picture.width) +
                             ";--height:" + std::to_string(shown.picture.height);
    std::string html = "<div class=\"grounds\" style=\"" + size + ";--picture:url(" +
                       dataAddress("image/png", encodePng(shown.picture)) + ")\">\n";
    for (const Ground& ground : grounds) {
        html += "<div class=\"ground\" style=\"--a:" + formatColor(ground.even) +
                ";--b:" + formatColor(ground.odd) + "\"><div class=\"shown\" role=\"img\" aria-label=\"" +
                escaped(shown.words) + "\"></div></div>\n";
    }
    return html + "</div>\n";
}

}  // namespace

std::string previewPage(const std::vector<ShownStyle>& styles, const std::vector<Ground>& grounds,
                        bool reloads) {
    Page page;
    page.title = "Preview";
    for (const ShownStyle& style : styles) {
        page.beginSection("style" + std::to_string(&style - styles.data()), style.name, style.description,
                          "wide");
        for (const Shown& shown : style.pictures) {
            page.sections += "<figure>\n" + groundsOf(shown, grounds) + "<figcaption>" +
                             escaped(shown.label) + "</figcaption>\n</figure>\n";
        }
        page.endSection();
    }
    if (reloads) page.head = reloading(std::to_string(std::hash<std::string>()(page.sections)));
    return page.html();
}

std::string withoutReloading(const std::string& page) {
    const size_t begin = page.find(kReloadingBegin), end = page.find(kReloadingEnd, begin);
    if (end == std::string::npos) return page;
    return page.substr(0, begin) + page.substr(end + sizeof kReloadingEnd - 1);
}

}  // namespace zvtext
