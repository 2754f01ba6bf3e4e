// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FIELDS_H_
#define ZVEX_SCENE_FIELDS_H_

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "scene/Picture.h"
#include "scene/Source.h"
#include "scene/Values.h"

namespace Zvex::scene {

// Settings described once. A settings struct has an overload fieldsOf(Settings&) that lists its fields: the
// key of each, the values it takes, where its value is stored, and what it does. The command line, the lines
// of a batch, style files, their schema, the help and the completions are all made from these lists, so a new
// setting is one more line in one of them. Fields point into the settings that they were made from and are
// short-lived.

// A colour with its own opacity, which the colour's alpha multiplies.
struct Tint {
    uint32_t color = 0xFF000000;
    double opacity = 1;
};

// One stop of a gradient.
struct Stop {
    uint32_t color = 0xFF000000;
    double position = 0;  // percent along the gradient
    double opacity = 1;
};

// A displacement in the picture: pixels to the right and down.
struct Offset {
    double x = 0, y = 0;
};

struct Canvas;
struct EffectKind;
struct Font;
struct Look;
struct Style;

constexpr size_t kMaxStops = 256;
constexpr size_t kMaxNumbers = 256;      // of a list
constexpr size_t kMaxFonts = 256;        // of a list; each is held in the memory
constexpr size_t kMaxFieldBytes = 4096;  // for a text; every line is shaped with every feature of a list

// A number outside the range stands for none.
class NumberField {
public:
    NumberField(double* value, NumberRange range) : range(range), mValue(value) {}
    NumberField(int* value, NumberRange range) : range(range), mWhole(value) { this->range.whole = true; }

    double get() const { return mValue != nullptr ? *mValue : *mWhole; }
    void set(double value) const {
        if (mValue != nullptr) *mValue = value;
        if (mWhole != nullptr) *mWhole = static_cast<int>(value);
    }

    // 0 stands for none, though the range does not hold it.
    NumberField orNone() const {
        NumberField field = *this;
        field.mOptional = true;
        return field;
    }
    bool isNone() const { return mOptional && get() == 0; }

    NumberRange range;

private:
    bool mOptional = false;
    double* mValue = nullptr;
    int* mWhole = nullptr;
};
struct ColorField {
    uint32_t* value;
};
struct OptionalColorField {
    std::optional<uint32_t>* value;
};
// One of several, by its name; the value is a number or an enumerator.
struct ChoiceField {
    template <typename Choice>
    ChoiceField(Choice* value, const std::vector<std::pair<const char*, Choice>>& named)
        : get([value] { return static_cast<int>(*value); }),
          set([value](int number) { *value = static_cast<Choice>(number); }) {
        for (const auto& [name, choice] : named) choices.emplace_back(name, static_cast<int>(choice));
    }
    std::function<int()> get;
    std::function<void(int)> set;
    std::vector<std::pair<const char*, int>> choices;
};
struct FlagField {  // true or false
    bool* value;
    bool given = true;  // what the value is where the flag is true
};
struct OptionalFlagField {  // true or false, with a value on the command line, too
    std::optional<bool>* value;
};
struct OffsetField {  // X:Y, whole pixels; in JSON [X, Y]
    Offset* value;
};
struct NumbersField {  // N,N,..., rising; in JSON [N, N]
    std::vector<double>* value;
    NumberRange each;
};
struct PaddingField {
    Padding* value;
};
struct CanvasField {  // as parseCanvas reads it; in JSON also an effect's object
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
    size_t mostBytes = kMaxFieldBytes;
    const char* wanted = "";  // what it takes, where that is more than any text; it must not be empty then
    bool (*takes)(const std::string& text) = nullptr;  // instead: whether it takes the text
};
struct FileField {  // a path; from a style file, relative to the style's folder
    std::string* value;
    std::shared_ptr<const Source>* source;  // of the file
};
struct FontField {  // a file or a name, as chooseFont reads it
    Font* value;
};
struct FontsField {
    std::vector<Font>* value;
};
struct EffectField {  // as parseEffect reads it; in JSON its object, too. Added, or replaces the one of its
                      // kind.
    Look* look;
    const EffectKind* kind;
};
struct StyleField {  // a style file, or a style itself
    Style* style;
};
struct PresetField {
    Style* style;
};

struct Field {
    using Value =
        std::variant<NumberField, ColorField, OptionalColorField, ChoiceField, FlagField, OptionalFlagField,
                     OffsetField, NumbersField, PaddingField, CanvasField, TintField, StopsField, TextField,
                     FileField, FontField, FontsField, EffectField, StyleField, PresetField>;
    const char* name;
    Value value;
    const char* help = "";         // what it does, in plain words
    const char* placeholder = "";  // for its value in help; empty: the kind's own
    const char* flag = "";         // the letter of a short option
    bool required = false;
    const char* group = "";  // the heading of its help
};
using Fields = std::vector<Field>;

Fields fieldsOf(Tint& tint);
Fields fieldsOf(Stop& stop);
Fields fieldsOf(Offset& offset);

// "compression": how a picture's file is compressed, an option wherever one is written.
Field compressionField(Compression& value);

Field required(Field field);

// Puts `more` behind `fields`, under a heading.
void addFields(Fields& fields, Fields more, const char* group = "");

// The field of that name; null when there is none.
const Field* findField(const Fields& fields, const std::string& name);

// The numbers that are set and are lengths, those within other fields too. Padding and offset must stay where
// they are as long as these are used.
std::vector<std::pair<std::string, NumberField>> lengthsOf(const Fields& fields);

// Where files lie that values name, and where warnings about values go.
struct FilePlaces {
    std::string folder;                    // what relative names are relative to; empty: the working folder
    std::shared_ptr<const Source> source;  // of files and styles; null: see orDefault
    std::shared_ptr<const Source> fonts;
    std::vector<std::string>* warnings = nullptr;  // each begins with its place; null: nobody wants them
};

// Reads `text` into the field. `where` opens the message of the UsageError thrown if the text is not exactly
// one valid value; an invalid style file is a Failure.
void readValue(const std::string& where, const Field& field, const std::string& text,
               const FilePlaces& places = {});

// Reads "KEY=VALUE,KEY=VALUE" into the fields; fields that are not named keep their values. If the first
// field is a file, the list may begin with just its value. Throws UsageError for an unknown key (listing the
// known ones), for a key given twice or without a value, and for a missing required one.
void readKeyValues(const std::string& where, const Fields& fields, const std::string& text,
                   const FilePlaces& places = {});

// "angle, distance, size"
std::string namesOf(const Fields& fields);

// The values that the field takes, in words: "a number from 0 to 100 (px)".
std::string wantedBy(const Field& field);

// What stands for its value in help: "PX", "left|center|right".
std::string placeholderOf(const Field& field);

// Gives the field the value of another one of the same settings, which must not be a font, an effect or a
// style.
void copyValue(const Field& to, const Field& from);

// The field's value as text for readValue; empty if it is not set, and for fonts, effects and styles.
std::string formatValue(const Field& field);

// Spreads the stops without a position evenly, in hundredths of a percent: the first is at 0, the last at
// 100, the others between those that have one.
constexpr double kNoPosition = std::numeric_limits<double>::quiet_NaN();
void spreadStops(std::vector<Stop>& stops);

// Index of the first number that is not above the one before it, or npos.
size_t findUnrisen(const std::vector<double>& numbers);

// Positions must not fall. Returns the index of the first stop that is before the previous one, or npos.
size_t findFallingStop(const std::vector<Stop>& stops);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FIELDS_H_
