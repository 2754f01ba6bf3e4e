// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_WORDCACHE_H_
#define ZVEX_PLATFORM_HOST_WORDCACHE_H_

#include <memory>
#include <string>

#include "platform/host/WordShaper.h"

namespace host {

// The process keeps the words that were shaped last: at least kKeptWords, at most about twice as many. A key
// is all that a word depends on, as bytes. Any thread.
constexpr size_t kKeptWords = 2048;

std::shared_ptr<const Word> findWord(const std::string& key);  // null when not kept
void keepWord(const std::string& key, const std::shared_ptr<const Word>& word);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_WORDCACHE_H_
