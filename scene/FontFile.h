// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FONTFILE_H_
#define ZVEX_SCENE_FONTFILE_H_

#include <hb-ot.h>
#include <hb.h>
#include <minikin/MinikinFont.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"
#include "scene/FolderScope.h"

namespace Zvex::scene {

// One font: a file, the font's place in it, and where the axes of a variable one stand.
struct FontChoice {
    std::string path;
    int index = 0;           // in a collection
    unsigned instance = 0;   // the named instance whose places its axes take, from 1; 0: their defaults
    std::string variations;  // "wght=650,opsz=20", these win over the instance's places
    FolderScope scope;       // where the file may lie
    std::shared_ptr<const std::string> bytes;  // the font itself, in place of a file

    std::string name() const;  // "FILE", or "FILE#INDEX" where the index is not 0
};

// What a font says of itself, its axes considered.
struct FontFacts {
    float ascent = 0, descent = 0;  // ems, positive: how far its lines reach; the line gap counts below
    int weight = 400;               // 1 to 1000
    bool italic = false;
    std::string family, style;  // UTF-8; empty where the font states none
    std::string generic;        // "serif", "sans-serif" or "monospace" where it says so of itself
};

// A font of the process. Plain fonts go by their path as the key, from whose words their style is taken (see
// FontManager::GetMinikinFontFamilies); a font with axes away from their defaults and one from the midst of a
// collection by a name that says their weight.
struct LoadedFont {
    FontChoice choice;
    std::string key;
    std::shared_ptr<minikin::MinikinFont> font;
    std::shared_ptr<host::FontFace> face;  // of `font`
    FontFacts facts;
    int fontsInFile = 1;
};

// Reads the font, or finds it among those read before: a file is read once a process. `axes` is the value of
// `axesOption`, "wght=650,opsz=20", or empty; it wins over the axes of `choice`. Throws one line that starts
// with the option: Failure where the file is missing, a folder, empty, unreadable or no font that the port
// draws, UsageError for an index it lacks and for axes that it lacks or that do not go that far, listing
// those it has. One thread at a time.
std::shared_ptr<const LoadedFont> loadFont(const std::string& option, const FontChoice& choice,
                                           const std::string& axesOption = "", const std::string& axes = "");

// A string of the font's name table (HB_OT_NAME_ID_...), the English one where there are several; UTF-8, at
// most 511 bytes.
std::string fontString(hb_face_t* face, unsigned nameId);

// The font's axes, at most 64, and a tag as it is written, without the spaces that fill it up.
std::vector<hb_ot_var_axis_info_t> axesOf(hb_face_t* face);
std::string tagName(hb_tag_t tag);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FONTFILE_H_
