// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_FONTMANAGER_H_
#define ZVEX_TEXT_FONTMANAGER_H_

#include <minikin/FontFamily.h>
#include <minikin/MinikinFont.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Zvex {

class List;
class ZvFontManagerImpl;
class ZvString;

// One font file's bytes. Owned by the manager's data map and by every font made from them: freed with the
// last of these.
struct ZvFontData {
    char* data = nullptr;  // owned, from new char[]
    uint32_t size = 0;     // bytes

    ZvFontData() = default;
    ZvFontData(char* ownedData, uint32_t sizeInBytes) : data(ownedData), size(sizeInBytes) {}
    ~ZvFontData() { delete[] data; }
    ZvFontData(const ZvFontData&) = delete;
    ZvFontData& operator=(const ZvFontData&) = delete;
};

// One font of a system family. A plain record: freeFontEntry frees what it owns.
struct ZvFontEntry {
    ZvString* path = nullptr;   // owned; the full path of the file
    int32_t index = 0;          // of the font inside a collection file
    int32_t weight = 400;       // 100..900
    bool italic = false;        // else upright
    ZvString* spare = nullptr;  // owned; unused, but freed if a caller set it
};

// One family of the system's font configuration. A plain record: freeFontFamily frees what it owns.
struct ZvFontFamily {
    int32_t loaded = 0;         // non-zero once its fonts have been added to the font map
    uint32_t localeListId = 0;  // minikin's id of the family's language, 0 for none
    int32_t variant = 0;        // a minikin::FontFamily::Variant
    List* fonts = nullptr;      // owned; of ZvFontEntry*, which are owned too
};

// Free the record, its strings and, for a family, its list and the entries in it. Null is ignored.
void freeFontEntry(ZvFontEntry* entry);
void freeFontFamily(ZvFontFamily* family);

// Reads a whole file into a new array, which the caller frees with delete[], and writes its length to `size`.
// Null, with `size` unchanged and a debug line naming the failed step, for a missing path, a directory, a
// pipe, an empty file, a file of 4 GiB or more, or one that shrinks meanwhile.
char* getFontData(const char* path, unsigned int& size);

// The process's store of fonts. It reads each font file once and keeps its bytes and a platform font for each
// (path, collection index) pair. It holds the system's font families, loads them when a text needs their
// language, and assembles the families that a drawing searches.
//
// A font's key is its path, the character '0' + index and a NUL; a "path" may also be any name under which a
// font was handed over as bytes.
//
// Bytes. A buffer handed to AddMinikinFont comes from new char[] and belongs to the manager from the call on,
// whatever the call returns: it is freed at once if not needed, else together with the font made from it.
// Bytes read from a file belong to the data map and to the fonts made from them. A font lives as long as the
// manager or anyone else (a family in use by a drawing) holds it, and its bytes live at least as long.
//
// Failure: false. If the implementation could not be allocated, every operation but GetGeneration reports
// error 8. No other code is set; lines are logged under "ZvFontManager".
//
// Threads: no locks. Callers keep other threads out while anything here changes. IsExisting, GetMinikinFont,
// GetMinikinFontFamilies, GetGeneration and IsSystemFontFamiliesAlreadySet only read: they may run side by
// side.
class FontManager {
public:
    // The process's manager, made on first use and never destroyed.
    static FontManager* GetInstance();

    // A manager beside the process's own, with fonts of its own: for tools and tests.
    FontManager();
    ~FontManager();
    FontManager(const FontManager&) = delete;
    FontManager& operator=(const FontManager&) = delete;

    // Whether the font of (path, index) is held. A null or empty path: false.
    bool IsExisting(const char* path, int index) const;

    // Adds the font `index` of the file `path`, or of the `size` bytes at `buffer` if that is not null. True
    // when the font is held afterwards. With `checkExisting`, a font already held is kept untouched and
    // nothing is read; without it the bytes are wrapped again, but a font already held still wins. A file
    // that could not be read or that is no font leaves nothing behind, so a later call tries it afresh.
    // Indices above 9 make keys with characters beyond '9' and are equal modulo 256.
    bool AddMinikinFont(const char* path, char* buffer, unsigned int size, int index, bool checkExisting);
    bool AddMinikinFont(ZvString* path, char* buffer, unsigned int size, int index, bool checkExisting);

    // Adds all fonts of the family, in order, up to the first that fails. False for null and for a family
    // without fonts. Leaves `family->loaded` to the caller.
    bool BuildMinikinFamily(ZvFontFamily* family);

    // Builds the first family not yet loaded whose localeListId is `localeListId` and keeps the outcome in
    // its `loaded`. True when there was such a family, even if building it failed; false, with the family
    // unchanged, if memory is short.
    bool LoadMinikinFontFamily(unsigned int localeListId);
    // The same, but true too if no family has that language; false only if memory is short.
    bool EnsureMinikinFontFamily(unsigned int localeListId);

    // Takes ownership of the list of ZvFontFamily* and all in it. They may be changed later while nothing is
    // drawn; the next drawing sees it. Once a list has been taken, later ones are ignored and stay the
    // caller's. True either way.
    bool SetSystemFontFamilies(List* families);
    bool IsSystemFontFamiliesAlreadySet() const;

    // Writes the font of (path, index) to `out`; false, with `out` unchanged, if it is not held.
    bool GetMinikinFont(std::shared_ptr<minikin::MinikinFont>& out, ZvString* path, int index) const;

    // Appends the families that a drawing with the font `path` searches, first choice first: the font itself
    // as a family of one, then the loaded system families. True also when nothing was appended.
    //
    // The file name tells the style. If `path` has a "-" after its first character, "Italic" anywhere in it
    // makes the font italic and the first of Thin 100, Light 300, Medium 500, Black 900, Bold 700 that occurs
    // anywhere in it replaces `weight`; otherwise `weight` stays as given. A null path gives the system
    // families alone, and so does one that contains the system font folder followed by "/Roboto-": the system
    // families hold that font already. The folder is the build's ZVEX_SYSTEM_FONT_DIR, "/system/fonts" unless
    // set otherwise.
    bool GetMinikinFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& out, ZvString* path,
                                int& weight) const;

    // Changes with every change to the result of GetMinikinFontFamilies. Reads only.
    uint64_t GetGeneration() const;

    // Release the system families (a new list may be set afterwards), and all fonts and bytes. Fonts still in
    // use elsewhere live on with their bytes.
    void ClearFontFamilies();
    void ClearFontMaps();

    ZvFontManagerImpl* mImpl;  // owned
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_FONTMANAGER_H_
