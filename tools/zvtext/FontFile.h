// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_FONTFILE_H_

#include <memory>
#include <string>
#include <vector>

#include "platform/host/FontFace.h"

namespace zvtext {

// Where an axis of a variable font stands.
struct AxisValue {
    std::string tag;
    double value = 0;
};

// One font: a file, the font's place in it, and where its axes stand.
struct FontChoice {
    std::string path;
    int index = 0;                // in a collection
    std::vector<AxisValue> axes;  // one that is not named stands at its default

    std::string name() const;  // "FILE", or "FILE#INDEX" where the index is not 0
};

// What a font says of itself, its axes considered.
struct FontFacts {
    float ascent = 0, descent = 0;  // ems, positive: how far its lines reach; the line gap counts below
    int weight = 400;               // 1 to 1000
    bool italic = false;
    std::string family, style;  // UTF-8; empty where the font states none
};

// A font that the process's font manager holds, as index 0 of `key`. Plain fonts go by their path, from whose
// words the manager takes a style; a font with axes or from the midst of a collection is rebuilt as a file of
// its own and goes by a name that says its weight.
struct LoadedFont {
    FontChoice choice;  // its axes: those asked for
    std::string key;
    std::shared_ptr<host::FontFace> face;
    FontFacts facts;
    int fontsInFile = 1;
};

// Reads the font and hands it to the font manager, or finds it among those handed over before: a file is read
// once a process. `axes` is the value of `axesOption`, "wght=650,opsz=20", or empty; it wins over the axes of
// `choice`. Throws one line that starts with the option: Failure where the file is missing, a folder, empty,
// unreadable or no font that the port draws, UsageError for an index it lacks and for axes that it lacks or
// that do not go that far, listing those it has. One thread at a time.
std::shared_ptr<const LoadedFont> loadFont(const std::string& option, const FontChoice& choice,
                                           const std::string& axesOption = "", const std::string& axes = "");

// A string of the font's name table (HB_OT_NAME_ID_...), the English one where there are several; UTF-8.
std::string fontString(hb_face_t* face, unsigned nameId);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_FONTFILE_H_
