// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_GRADIENTSTOPS_H_
#define ZVEX_EFFECT_GRADIENTSTOPS_H_

#include <memory>
#include <utility>

#include "effect/ZvProperty.h"
#include "foundation/OutOfMemory.h"

namespace Zvex {

// Owns an array of stops. Records only point at stops, so the owner of a record with stops keeps one of these
// beside it.
class GradientStops {
public:
    // Replaces the content by a copy of `count` stops; by none if count is below 1 or stops is null. False,
    // with the old content kept, if memory is short.
    bool copy(const ZvGradient* stops, int count);

    ZvGradient* data() const { return mStops.get(); }  // null if there are none
    int count() const { return mCount; }

private:
    std::unique_ptr<ZvGradient[]> mStops;
    int mCount = 0;
};

// Gives a layer new settings. *record, owned and null at first, becomes a copy of `settings` that points at a
// copy of its stops, which *stops keeps. If memory is short, both keep their old content, and the result is
// false. The settings may point at the old stops. A record without stops points at none, whatever its count.
template <typename Property>
void replaceRecord(const Property& settings, Property** record, GradientStops* stops) {
    auto copy = tryMake<Property>(settings);
    GradientStops copiedStops;
    if (copy == nullptr || !copiedStops.copy(settings.stops, settings.count)) return;
    copy->stops = copiedStops.data();
    delete *record;
    *record = copy.release();
    *stops = std::move(copiedStops);
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_GRADIENTSTOPS_H_
