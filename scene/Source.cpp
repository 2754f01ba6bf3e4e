// SPDX-License-Identifier: Apache-2.0
#include "scene/Source.h"

#include "scene/Failure.h"
#ifdef ZVEX_SCENE_FILES
#include "scene/FileSource.h"
#endif

namespace Zvex::scene {

namespace {

class NamedBytes : public Source {
public:
    explicit NamedBytes(std::map<std::string, Bytes> bytes) : mBytes(std::move(bytes)) {}

    Bytes read(const std::string& option, const std::string& name, size_t maxBytes) const override {
        const auto found = mBytes.find(name);
        if (found == mBytes.end() || found->second == nullptr)
            throw Failure(option + ": there is no '" + name + "'");
        if (found->second->size() > maxBytes) {
            throw Failure(option + ": '" + name + "' is larger than " + std::to_string(maxBytes) + " bytes");
        }
        return found->second;
    }
    bool has(const std::string& name) const override { return mBytes.count(name) != 0; }

private:
    const std::map<std::string, Bytes> mBytes;
};

}  // namespace

std::shared_ptr<const Source> namedBytes(std::map<std::string, Bytes> bytes) {
    return std::make_shared<NamedBytes>(std::move(bytes));
}

const Source& orDefault(const std::shared_ptr<const Source>& source) {
    // Never destroyed: threads may render as the process ends.
#ifdef ZVEX_SCENE_FILES
    static const auto& files = *new std::shared_ptr<const Source>(fileSource());
#else
    static const auto& files = *new std::shared_ptr<const Source>(namedBytes({}));
#endif
    return source != nullptr ? *source : *files;
}

}  // namespace Zvex::scene
