// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVFONTMANAGERIMPL_H_
#define ZVEX_TEXT_ZVFONTMANAGERIMPL_H_

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "text/FontFamilyIndex.h"
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
    FontFamilyIndex index;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVFONTMANAGERIMPL_H_
