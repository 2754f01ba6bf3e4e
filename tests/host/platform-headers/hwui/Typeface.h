// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_TYPEFACE_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_TYPEFACE_H_

#include <minikin/FontFamily.h>

#include <memory>
#include <vector>

namespace android {

struct Typeface {
    static Typeface* createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                        int weight, int italic);

private:
    Typeface();
    Typeface(const Typeface&) = delete;
    void operator=(const Typeface&) = delete;
};

}  // namespace android

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_HWUI_TYPEFACE_H_
