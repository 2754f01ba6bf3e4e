// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SOURCE_H_
#define ZVEX_SCENE_SOURCE_H_

#include <map>
#include <memory>
#include <string>

namespace Zvex::scene {

// Bytes that are shared and never change.
using Bytes = std::shared_ptr<const std::string>;

// Gives the bytes that scenes name: style files, their patterns, fonts. Fonts are read by one thread at a
// time, patterns by any.
class Source {
public:
    virtual ~Source() = default;

    // The bytes of this name. Throws Failure, its message starting with `option`, where there are none and
    // where they are more than `maxBytes`.
    virtual Bytes read(const std::string& option, const std::string& name, size_t maxBytes) const = 0;

    // Whether read() would find the name. A font's name that it does not find may be one of the system's.
    virtual bool has(const std::string& name) const = 0;

    // Throws Failure where the name may not be read, although its bytes are known from before.
    virtual void check(const std::string& /*option*/, const std::string& /*name*/) const {}

    // Sources of the same realm give the same bytes for a name as long as the process lives. Null for the
    // machine's files, which may change.
    virtual const void* realm() const { return this; }

    // The source for the files that the style of this name refers to; null: this one.
    virtual std::shared_ptr<const Source> ofStyle(const std::string& /*name*/) const { return nullptr; }

    // The name as a style is written with it, good from any folder.
    virtual std::string fullName(const std::string& name) const { return name; }
};

// Bytes by their names, for programs without files. Names are compared as they are.
std::shared_ptr<const Source> namedBytes(std::map<std::string, Bytes> bytes);

// `source`; if it is null, the machine's files without limits (none if ZVEX_SCENE_FILES is off).
const Source& orDefault(const std::shared_ptr<const Source>& source);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SOURCE_H_
