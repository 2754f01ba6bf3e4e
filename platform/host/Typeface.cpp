// SPDX-License-Identifier: Apache-2.0
#include <hwui/Typeface.h>

#include <algorithm>
#include <memory>

namespace android {

Typeface* Typeface::createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                       int weight, int italic) {
    auto typeface = std::make_unique<Typeface>();
    typeface->fFontCollection = std::make_shared<minikin::FontCollection>(families);

    minikin::FontStyle regular;
    if (!typeface->fFontCollection->families().empty()) {
        regular = typeface->fFontCollection->families()[0]->getClosestMatch(regular).font->style();
    }
    using Slant = minikin::FontStyle::Slant;
    const int wanted = weight < 0 ? regular.weight() : weight;
    const Slant slant = italic < 0 ? regular.slant() : (italic != 0 ? Slant::ITALIC : Slant::UPRIGHT);
    typeface->fStyle = minikin::FontStyle(static_cast<uint16_t>(std::clamp(wanted, 1, 1000)), slant);
    return typeface.release();
}

}  // namespace android
