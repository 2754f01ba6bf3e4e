// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVFONTMANAGERIMPL_H_
#define ZVEX_TEXT_ZVFONTMANAGERIMPL_H_

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "text/FontManager.h"

namespace Zvex {

// What a FontManager holds. FontManager.h has the contract.
class ZvFontManagerImpl {
public:
    ~ZvFontManagerImpl();

    // Releases only the manager's own references: a font still in use by a drawing keeps itself and its bytes
    // alive.
    void ClearFontFamilies();
    void ClearFontMaps();

    // Font key: path, '0' + index as one character, NUL. Data key: path, NUL. The NUL is part of the key.
    static std::string fontKey(const char* path, int index);
    static std::string dataKey(const char* path);

    // A copy of the loaded families. Walking a List moves its cursor, so drawings on several threads walk
    // this copy instead.
    struct IndexedFont {
        bool exists = false;  // or the list holds a null
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
    using FamilyIndex = std::vector<IndexedFamily>;
    // The copy, made anew, and counted as a change, where the families are not what it says. By whichever of
    // the readers side by side comes first. Throws std::bad_alloc.
    std::shared_ptr<const FamilyIndex> indexedFamilies();

    // What FontManager's operations do. Throw std::bad_alloc.
    bool isExisting(const char* path, int index) const;
    bool addFont(const char* path, std::unique_ptr<char[]> handedOver, unsigned int size, int index,
                 bool checkExisting);
    bool buildFamily(const ZvFontFamily* family);
    bool loadFamily(unsigned int localeListId);
    bool findFont(std::shared_ptr<minikin::MinikinFont>& out, const ZvString* path, int index) const;
    bool findFont(std::shared_ptr<minikin::MinikinFont>& out, const char* path, int index) const;
    void collectFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& out, const ZvString* path,
                         int& weight);

    std::atomic<uint64_t> changes{0};  // to fontMap and families
    double totalSize = 0;              // font bytes read from files so far, in units of 1024000
    std::map<std::string, std::shared_ptr<ZvFontData>> dataMap;
    std::map<std::string, std::shared_ptr<minikin::MinikinFont>> fontMap;  // each an android::MinikinFontSkia
    List* families = nullptr;  // owned; of ZvFontFamily*, owned too
    bool familiesSet = false;
    std::shared_ptr<const FamilyIndex> index;  // null: not made
    std::mutex indexing;                       // of the two above, which readers side by side walk

private:
    static bool isIndexed(const ZvFontFamily& family, const IndexedFamily& indexed);
    bool isIndexed() const;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVFONTMANAGERIMPL_H_
