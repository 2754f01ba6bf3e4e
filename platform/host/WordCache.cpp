// SPDX-License-Identifier: Apache-2.0
// Each shelf has two maps. Words are put into the young one; when it is full it becomes the old one, whose
// words go unless they were asked for meanwhile.
#include "platform/host/WordCache.h"

#include <cstddef>
#include <functional>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace host {
namespace {

constexpr size_t kShelves = 16;  // threads seldom wait for each other
constexpr size_t kWordsOfShelf = kKeptWords / kShelves;

class Shelf {
public:
    std::shared_ptr<const Word> find(const std::string& key) {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto young = mYoung.find(key);
        if (young != mYoung.end()) return young->second;
        const auto old = mOld.find(key);
        if (old == mOld.end()) return nullptr;
        std::shared_ptr<const Word> word = old->second;
        put(key, word);
        return word;
    }

    void keep(const std::string& key, const std::shared_ptr<const Word>& word) {
        const std::lock_guard<std::mutex> lock(mMutex);
        put(key, word);
    }

private:
    using Words = std::unordered_map<std::string, std::shared_ptr<const Word>>;

    void put(const std::string& key, const std::shared_ptr<const Word>& word) {
        if (mYoung.size() >= kWordsOfShelf) {
            mOld.swap(mYoung);
            mYoung.clear();
        }
        mYoung.emplace(key, word);
    }

    std::mutex mMutex;
    Words mYoung, mOld;
};

// Never destroyed: text may be laid out while the process ends.
Shelf& shelfOf(const std::string& key) {
    static Shelf* const shelves = new Shelf[kShelves];
    return shelves[std::hash<std::string>()(key) % kShelves];
}

}  // namespace

std::shared_ptr<const Word> findWord(const std::string& key) {
    return shelfOf(key).find(key);
}

void keepWord(const std::string& key, const std::shared_ptr<const Word>& word) {
    shelfOf(key).keep(key, word);
}

}  // namespace host
