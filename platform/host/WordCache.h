// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_WORDCACHE_H_
#define ZVEX_PLATFORM_HOST_WORDCACHE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/host/WordShaper.h"

namespace host {

// The process keeps recently shaped words until one of their fonts is destroyed: at least kKeptWords, at most
// about twice as many. Any thread.
constexpr size_t kKeptWords = 2048;

// A number, not 0, for a collection of fonts. `bytes` are everything in the collection that layouts depend
// on. Equal bytes may get a new number after a while, but different bytes never share one. `faceIds` are its
// fonts' FontFace::uniqueId().
uint64_t numberOfCollection(const std::string& bytes, const std::vector<uint32_t>& faceIds);
// Drops the words of all collections with this font.
void forgetWords(uint32_t faceId);

// A key is the collection's number and everything else that a word depends on, as bytes.
std::shared_ptr<const Word> findWord(const std::string& key);  // null when not kept
void keepWord(const std::string& key, const std::shared_ptr<const Word>& word);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_WORDCACHE_H_
