// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FIELDJSON_H_
#define ZVEX_SCENE_FIELDJSON_H_

#include <set>
#include <string>

#include "scene/Fields.h"
#include "scene/Json.h"
#include "scene/Style.h"

namespace Zvex::scene {

// Fields in JSON: numbers and opacities are numbers, choices and colours strings as in text, stops and tints
// objects. `place` opens the messages of the UsageErrors thrown: "effects[2].size". With a `start`, the same
// field of settings at their start, the field holds what another style said, and an object changes only the
// members that it has.
void readJson(const std::string& place, const Field& field, const Json& json, const FilePlaces& places,
              const Field* start = nullptr);

// An object's members into the fields; null is as if the member were not there. The other keys belong to the
// object as well and are read elsewhere. With `starts` the fields hold what another style said: none is
// required, and null gives one the value that it has there.
void readObject(const std::string& place, const Fields& fields, const std::set<std::string>& otherKeys,
                const Json& json, const FilePlaces& places, const Fields* starts = nullptr);

// An object with the effect's "type", one of the `names` that `find` knows, and its keys; of the other keys
// as above. What it leaves out is as in `base`, an effect of the same kind, or at its start without one.
EffectSettings readEffect(const std::string& place, const Json& json, const std::string& names,
                          const EffectKind* (*find)(const std::string&), const FilePlaces& places,
                          const std::set<std::string>& otherKeys = {"type"},
                          const EffectSettings* base = nullptr);

// A style, as readStyleText reads it.
void readStyleJson(const std::string& option, const Json& json, Style& style,
                   const std::shared_ptr<const Source>& source);

// Leaves out what is empty: no background, no features, no stops. With `starts`, also what is as there.
Json writeObject(const Fields& fields, const Fields* starts = nullptr);
Json writeEffect(EffectSettings settings);

// "[3]", or "this array" where it is long: for messages.
std::string shown(const Json& json);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FIELDJSON_H_
