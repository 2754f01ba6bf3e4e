// SPDX-License-Identifier: Apache-2.0
#include "text/FontPath.h"

#include <vector>

#include "foundation/ZvString.h"

namespace Zvex {

namespace {

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

bool toUtf8(const ZvString* path, std::string& out) {
    const int size = path != nullptr ? path->GetUTF8Size() : -1;
    if (size < 0) return false;
    std::vector<char> bytes(static_cast<size_t>(size) + 1, '\0');
    if (size > 0 && path->GetUTF8(bytes.data(), size) == 0) return false;
    out = bytes.data();
    return true;
}

void styleFromPath(const std::string& path, int& weight, bool& italic) {
    static constexpr struct {
        const char* name;
        int weight;
    } kWeights[] = {{"Thin", 100}, {"Light", 300}, {"Medium", 500}, {"Black", 900}, {"Bold", 700}};

    italic = false;
    if (path.find('-', 1) == std::string::npos) return;  // a "-" at the start does not count
    italic = contains(path, "Italic");
    for (const auto& candidate : kWeights) {
        if (contains(path, candidate.name)) {
            weight = candidate.weight;
            return;
        }
    }
}

}  // namespace Zvex
