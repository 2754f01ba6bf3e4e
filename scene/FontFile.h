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
#include "scene/Source.h"

namespace Zvex::scene {

// One font: a file, the font's index in it, and the axis values of a variable font.
struct FontChoice {
    std::string path;
    int index = 0;           // in a collection
    unsigned instance = 0;   // the named instance that gives the axis values, from 1; 0: their defaults
    std::string variations;  // "wght=650,opsz=20"; overrides the instance's values
    std::shared_ptr<const Source> source;  // of the file; null: see orDefault
    Bytes bytes;                           // the font's bytes, instead of a file

    std::string name() const;  // "FILE", or "FILE#INDEX" where the index is not 0
};

// A font's description of itself, at its axis values.
struct FontFacts {
    float ascent = 0, descent = 0;  // ems, never negative: line height; descent includes the line gap
    int weight = 400;               // 1 to 1000
    bool italic = false;
    std::string family, style;  // UTF-8; empty if the font states none
    std::string generic;        // "serif", "sans-serif" or "monospace" if the font states it
};

// A loaded font. For a plain font the key is its path, whose words give its style (see
// FontManager::GetMinikinFontFamilies). A font with axis values other than the defaults, or from inside a
// collection, has a key that states its weight; so has one of a Source under a name that is no file's.
struct LoadedFont {
    FontChoice choice;
    std::string key;
    std::shared_ptr<minikin::MinikinFont> font;
    std::shared_ptr<host::FontFace> face;  // of `font`
    FontFacts facts;
    int fontsInFile = 1;
};

// Reads the font, or returns it if it was read before: each file is read once. `axes` is the value of
// `axesOption`, "wght=650,opsz=20", or empty; it overrides the axes of `choice`. Throws one line that starts
// with the option: Failure if the file is missing, a folder, empty, unreadable or no font that the port can
// draw; UsageError for an index that it lacks, and for axes that it lacks or values beyond their range,
// listing the axes that it has. One thread at a time.
std::shared_ptr<const LoadedFont> loadFont(const std::string& option, const FontChoice& choice,
                                           const std::string& axesOption = "", const std::string& axes = "");
// They stay loaded. One thread at a time.
size_t loadedFontCount();

bool endsAsFontFile(const std::string& path);

// A string of the font's name table (HB_OT_NAME_ID_...), in English if there are several; UTF-8, at most 511
// bytes.
std::string fontString(hb_face_t* face, unsigned nameId);

// The font's axes, at most 64; and a tag as text, without its trailing spaces.
std::vector<hb_ot_var_axis_info_t> axesOf(hb_face_t* face);
std::string tagName(hb_tag_t tag);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FONTFILE_H_
