// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FUZZ_FONTS_H_
#define ZVEX_FUZZ_FONTS_H_

#include <string>
#include <vector>

namespace fuzz {

// A font with a few characters of an installed one, made when the process starts: small, so that a changed
// byte matters.
struct Font {
    std::string name;
    std::string bytes;
    std::u32string characters;  // what it has, and some that join them
};

// TrueType outlines of several scripts, CFF outlines, colour strikes, a variable font off its defaults. Those
// that scripts/setup installs; one that is missing is said on standard error and left out. Never empty.
const std::vector<Font>& fonts();

}  // namespace fuzz

#endif  // ZVEX_FUZZ_FONTS_H_
