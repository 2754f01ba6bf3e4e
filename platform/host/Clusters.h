// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_CLUSTERS_H_
#define ZVEX_PLATFORM_HOST_CLUSTERS_H_

#include <cstddef>
#include <cstdint>

namespace host {

// The end of the cluster that starts at `start`: a character with the marks, joiners, selectors and modifiers
// that belong to it, a flag, an emoji sequence, or a Hangul syllable (the extended grapheme clusters of
// Unicode). start < end. A surrogate without its partner is a character of its own. Allocates nothing, any
// thread.
size_t clusterEnd(const uint16_t* text, size_t start, size_t end);

// Whether the character is invisible and needs no glyph: soft hyphen, joiners, directional marks, selectors.
bool isDefaultIgnorable(uint32_t codePoint);

// Whether the character selects a variant of the one before it, as fonts' variation tables define it.
bool selectsVariation(uint32_t codePoint);

// Reads the code point at *at and moves *at past it; U+FFFD for a surrogate without its partner. *at < end.
uint32_t nextCodePoint(const uint16_t* text, size_t* at, size_t end);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_CLUSTERS_H_
