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

// The process keeps the words that were shaped last, until a font of theirs goes: at least kKeptWords, at
// most about twice as many. Any thread.
constexpr size_t kKeptWords = 2048;

// A number for a collection of fonts, not 0, from all that layouts with it depend on, as bytes: equal bytes
// give the same number for a while, others never. `faceIds` are its fonts' FontFace::uniqueId().
uint64_t numberOfCollection(const std::string& bytes, const std::vector<uint32_t>& faceIds);
// What was kept for collections with this font goes.
void forgetWords(uint32_t faceId);

// A key is the collection's number and whatever else a word depends on, as bytes.
std::shared_ptr<const Word> findWord(const std::string& key);  // null when not kept
void keepWord(const std::string& key, const std::shared_ptr<const Word>& word);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_WORDCACHE_H_
