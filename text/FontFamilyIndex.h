// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_FONTFAMILYINDEX_H_
#define ZVEX_TEXT_FONTFAMILYINDEX_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <string>
#include <vector>

namespace Zvex {

class List;
struct ZvFontEntry;

struct IndexedFont {
    bool exists = false;  // otherwise the list holds a null
    std::wstring path;    // of the entry
    std::string file;     // the same in UTF-8, empty for an entry without a path
    int32_t index = 0, weight = 0;
    bool italic = false;

    void read(const ZvFontEntry* entry);
    bool isOf(const ZvFontEntry* entry) const;
};

struct IndexedFamily {
    uint32_t localeListId;
    int32_t variant;
    std::vector<IndexedFont> fonts;
};

// A copy of the loaded families. Walking a List moves its cursor, so drawings on several threads walk this
// copy instead.
class FontFamilyIndex {
public:
    using Families = std::vector<IndexedFamily>;

    // The copy of `families` (of ZvFontFamily*, may be null). If the families have changed since the last
    // call, makes a new copy and adds 1 to `changes`. Any number of threads may call this at once. Throws
    // std::bad_alloc.
    std::shared_ptr<const Families> update(List* families, std::atomic<uint64_t>& changes);
    void clear() { mFamilies.reset(); }

private:
    bool isCurrent(List* families) const;

    std::shared_ptr<const Families> mFamilies;  // null: not made
    std::shared_mutex mMutex;                   // for mFamilies and the cursors of the lists
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_FONTFAMILYINDEX_H_
