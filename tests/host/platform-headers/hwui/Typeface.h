// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <minikin/FontFamily.h>

#include <memory>
#include <vector>

namespace android {

struct Typeface {
    static Typeface* createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                        int weight, int italic);

private:
    Typeface();
    Typeface(Typeface&&) = delete;
};

}  // namespace android
