// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PAGE_PAGE_H_
#define ZVEX_TOOLS_ZVTEXT_PAGE_PAGE_H_

#include <string>

namespace zvtext {

// An HTML page of pictures in sections, as page.html has it. The parts are HTML.
struct Page {
    std::string title, introduction;
    std::string head;      // more for the page's head
    std::string controls;  // above the sections
    std::string links, sections;

    // Begins a section with a heading, and links to it from the top of the page. `name` is its id.
    void beginSection(const std::string& name, const std::string& title, const std::string& introduction,
                      const std::string& classes = "");
    void endSection() { sections += "</section>\n"; }

    std::string html() const;
};

// The text as HTML.
std::string escaped(const std::string& text);

// The bytes as a data: address.
std::string dataAddress(const std::string& mediaType, const std::string& bytes);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PAGE_PAGE_H_
