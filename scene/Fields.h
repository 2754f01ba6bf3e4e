// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FIELDS_H_
#define ZVEX_SCENE_FIELDS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "scene/FolderScope.h"
#include "scene/Values.h"

namespace Zvex::scene {

// Settings described once. A settings struct has an overload fieldsOf(Settings&) that lists its fields: the
// key each goes by, what it takes, and where its value lies. Reading KEY=VALUE text, reading and writing
// JSON, and the help are written against this list, so a setting is spelled and limited in one place. Fields
// point into the settings they were made from and are short-lived.

// A colour with an opacity of its own; the colour's alpha multiplies into it.
struct Tint {
    uint32_t color = 0xFF000000;
    double opacity = 1;
};

// One stop of a gradient.
struct Stop {
    uint32_t color = 0xFF000000;
    double position = 0;  // percent of the way
    double opacity = 1;
};

// A way in the picture: pixels to the right and down.
struct Offset {
    double x = 0, y = 0;
};

struct Canvas;

constexpr size_t kMaxStops = 256;
constexpr size_t kMaxFieldBytes = 4096;  // of a text; every line is shaped with every feature of a list

struct NumberField {
    double* value;
    NumberRange range;
};
struct ShareField {
    double* value;
};
struct ColorField {
    uint32_t* value;
};
struct OptionalColorField {
    std::optional<uint32_t>* value;
};
struct ChoiceField {
    int* value;
    std::vector<std::pair<const char*, int>>
        choices;  // their names, and the numbers the library has for them
};
struct FlagField {  // true or false
    bool* value;
};
struct OffsetField {  // X:Y, whole pixels; in JSON [X, Y]
    Offset* value;
};
struct CanvasField {  // as parseCanvas reads it; in JSON an effect's object, too
    std::optional<Canvas>* value;
};
struct TintField {  // COLOR[@OPACITY]
    Tint* value;
};
struct StopsField {  // COLOR@POSITION[@OPACITY]:COLOR@POSITION...; positions never fall
    std::vector<Stop>* value;
};
struct TextField {
    std::string* value;
};
struct FileField {  // a path; from a style file, relative to the style's folder
    std::string* value;
    FolderScope* scope;  // where the file may lie
};

struct Field {
    const char* name;
    std::variant<NumberField, ShareField, ColorField, OptionalColorField, ChoiceField, FlagField, OffsetField,
                 CanvasField, TintField, StopsField, TextField, FileField>
        value;
    bool required = false;
};
using Fields = std::vector<Field>;

Fields fieldsOf(Tint& tint);
Fields fieldsOf(Stop& stop);
Fields fieldsOf(Offset& offset);

// The numbers of these fields that are lengths, and of the fields within them.
Fields lengthsOf(const Fields& fields);

// Puts the value written in `text` into the field. `where` opens the message of the UsageError thrown where
// the text is not exactly one value the field takes.
void readValue(const std::string& where, const Field& field, const std::string& text);

// Reads "KEY=VALUE,KEY=VALUE" into the fields; what is not named keeps its value. Where the first field is a
// file, the list may begin with its value alone. Throws UsageError for an unknown key (listing the known
// ones), a key given twice or without a value, and a required one that is missing.
void readKeyValues(const std::string& where, const Fields& fields, const std::string& text);

// "angle, distance, size"
std::string namesOf(const Fields& fields);

// What the field takes, in words: "a number from 0 to 100 (px)".
std::string wantedBy(const Field& field);

// The field's value as readValue takes it; empty for no stops and no text.
std::string formatValue(const Field& field);

// Positions rise or stay; the index of the first stop that falls behind the one before it, or npos.
size_t findFallingStop(const std::vector<Stop>& stops);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FIELDS_H_
