// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FUZZ_FONTS_H_
#define ZVEX_FUZZ_FONTS_H_

#include <string>
#include <vector>

namespace fuzz {

// A font with a few characters of an installed one, made when the process starts. It is small, so that most
// changed bytes matter.
struct Font {
    std::string name;
    std::string bytes;
    std::u32string characters;  // its characters, and some that join them
};

// TrueType outlines of several scripts, CFF outlines, colour strikes, and a variable font with other than the
// default axis values. scripts/setup installs their sources; a missing one is reported on standard error and
// left out. Never empty.
const std::vector<Font>& fonts();

}  // namespace fuzz

#endif  // ZVEX_FUZZ_FONTS_H_
