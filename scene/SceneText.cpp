// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneText.h"

#include <unicode/casemap.h>
#include <unicode/edits.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <new>

#include "scene/Language.h"

namespace Zvex::scene {

namespace {

std::u16string unitsOf(const std::string& text, std::vector<uint32_t>& offsets) {
    std::u16string units;
    const auto length = static_cast<int64_t>(text.size());
    offsets.reserve(text.size() + 1);
    for (int64_t i = 0; i < length;) {
        const auto offset = static_cast<uint32_t>(i);
        UChar32 c;
        U8_NEXT(text.data(), i, length, c);
        if (c > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(c));
        units += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c < 0 ? 0xFFFD : c);
        offsets.resize(units.size(), offset);
    }
    offsets.push_back(static_cast<uint32_t>(length));
    return units;
}

// Letters may become several, such as ß, or fewer. Each takes the place of the one that it comes from.
std::u16string upperCaseOf(const std::u16string& units, const std::string& locale,
                           std::vector<uint32_t>& offsets) {
    std::u16string upper(units.size() * 3, u'\0');  // no letter grows more
    icu::Edits edits;
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        icu::CaseMap::toUpper(locale.c_str(), 0, units.data(), static_cast<int32_t>(units.size()), &upper[0],
                              static_cast<int32_t>(upper.size()), &edits, status);
    if (U_FAILURE(status)) throw std::bad_alloc();
    upper.resize(static_cast<size_t>(length));
    std::vector<uint32_t> moved;
    moved.reserve(upper.size() + 1);
    for (auto edit = edits.getFineIterator(); edit.next(status);) {
        const auto from = static_cast<size_t>(edit.sourceIndex());
        for (size_t i = 0; i < static_cast<size_t>(edit.newLength()); ++i)
            moved.push_back(offsets[edit.hasChange() ? from : from + i]);
    }
    moved.push_back(offsets.back());
    offsets = std::move(moved);
    return upper;
}

std::u16string shownUnits(const Scene& scene, const std::string& locale, std::vector<uint32_t>& offsets) {
    std::u16string units = unitsOf(scene.text, offsets);
    if (scene.tabStops.empty()) std::replace(units.begin(), units.end(), u'\t', u' ');
    return scene.style.upperCase ? upperCaseOf(units, locale, offsets) : units;
}

}  // namespace

SceneText::SceneText(const Scene& scene)
    : units(shownUnits(scene, localeOf(scene.language), offsets)),
      locale(localeOf(scene.language)),
      directions(units, scene.direction) {}

}  // namespace Zvex::scene
