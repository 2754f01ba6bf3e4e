// SPDX-License-Identifier: Apache-2.0
//
// Each shelf has two maps. New words go into the young one. When it is full it becomes the old one, and the
// old map's words are dropped unless they were used since.
#include "platform/host/WordCache.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <iterator>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace host {
namespace {

constexpr size_t kShelves = 16;  // many, so that threads seldom wait for each other
constexpr size_t kWordsOfShelf = kKeptWords / kShelves;
constexpr size_t kKeptNumbers = 256;

class Shelf {
public:
    Shelf() {
        mYoung.reserve(kWordsOfShelf);
        mOld.reserve(kWordsOfShelf);
    }

    std::shared_ptr<const Word> find(const std::string& key) {
        std::shared_ptr<const Word> word;
        {
            const std::shared_lock<std::shared_mutex> lock(mMutex);
            const auto young = mYoung.find(key);
            if (young != mYoung.end()) return young->second;
            const auto old = mOld.find(key);
            if (old == mOld.end()) return nullptr;
            word = old->second;
        }
        keep(key, word);
        return word;
    }

    void keep(const std::string& key, const std::shared_ptr<const Word>& word) {
        Words dropped;  // after the lock, because that takes a while
        Words entry;
        entry.emplace(key, word);
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        if (mYoung.size() >= kWordsOfShelf) {
            dropped.reserve(kWordsOfShelf);
            dropped.swap(mOld);
            mOld.swap(mYoung);
        }
        mYoung.insert(entry.extract(entry.begin()));
    }

    void forget(uint64_t collection) {
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        for (Words* words : {&mYoung, &mOld}) {
            for (auto entry = words->begin(); entry != words->end();) {
                const bool gone = std::memcmp(entry->first.data(), &collection, sizeof collection) == 0;
                entry = gone ? words->erase(entry) : std::next(entry);
            }
        }
    }

private:
    using Words = std::unordered_map<std::string, std::shared_ptr<const Word>>;

    std::shared_mutex mMutex;
    Words mYoung, mOld;
};

// Never destroyed, like the numbers below, because text may be laid out while the process ends.
Shelf* shelves() {
    static Shelf* const made = new Shelf[kShelves];
    return made;
}
Shelf& shelfOf(const std::string& key) {
    return shelves()[std::hash<std::string>()(key) % kShelves];
}

struct Collections {
    struct Entry {
        uint64_t number;
        std::vector<uint32_t> faceIds;
    };
    std::shared_mutex mutex;
    uint64_t last = 0;
    std::unordered_map<std::string, Entry> numbers;
};
Collections& collections() {
    static auto* const made = [] {
        auto* collections = new Collections;
        collections->numbers.reserve(kKeptNumbers);
        return collections;
    }();
    return *made;
}

}  // namespace

uint64_t numberOfCollection(const std::string& bytes, const std::vector<uint32_t>& faceIds) {
    Collections& known = collections();
    {
        const std::shared_lock<std::shared_mutex> lock(known.mutex);
        const auto entry = known.numbers.find(bytes);
        if (entry != known.numbers.end()) return entry->second.number;
    }
    const std::lock_guard<std::shared_mutex> lock(known.mutex);
    const auto entry = known.numbers.find(bytes);  // another thread may have added it
    if (entry != known.numbers.end()) return entry->second.number;
    if (known.numbers.size() >= kKeptNumbers) {
        for (const auto& [key, value] : known.numbers) {
            for (size_t i = 0; i < kShelves; ++i) shelves()[i].forget(value.number);
        }
        known.numbers.clear();
    }
    const uint64_t number = ++known.last;
    known.numbers.emplace(bytes, Collections::Entry{number, faceIds});
    return number;
}

// Called when fonts are destroyed, so it allocates nothing.
void forgetWords(uint32_t faceId) {
    Collections& known = collections();
    const std::lock_guard<std::shared_mutex> lock(known.mutex);
    for (auto entry = known.numbers.begin(); entry != known.numbers.end();) {
        const std::vector<uint32_t>& faces = entry->second.faceIds;
        if (std::find(faces.begin(), faces.end(), faceId) == faces.end()) {
            ++entry;
            continue;
        }
        for (size_t i = 0; i < kShelves; ++i) shelves()[i].forget(entry->second.number);
        entry = known.numbers.erase(entry);
    }
}

std::shared_ptr<const Word> findWord(const std::string& key) {
    return shelfOf(key).find(key);
}

void keepWord(const std::string& key, const std::shared_ptr<const Word>& word) {
    shelfOf(key).keep(key, word);
}

}  // namespace host
