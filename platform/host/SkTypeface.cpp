// SPDX-License-Identifier: Apache-2.0
#include <SkStream.h>
#include <SkTypeface.h>

#include <utility>

#include "platform/host/FontFace.h"

SkMemoryStream::SkMemoryStream(const void* data, size_t length, bool copyData)
    : mData(data), mLength(data != nullptr ? length : 0) {
    if (!copyData || mLength == 0) return;
    const uint8_t* bytes = static_cast<const uint8_t*>(data);
    mCopy.assign(bytes, bytes + mLength);
    mData = mCopy.data();
}

SkTypeface::SkTypeface(std::shared_ptr<host::FontFace> face) : mFace(std::move(face)) {}

sk_sp<SkTypeface> SkTypeface::MakeFromStream(SkStreamAsset* stream, int index) {
    if (stream == nullptr) return nullptr;
    const std::shared_ptr<SkStreamAsset> owner(stream);
    std::shared_ptr<host::FontFace> face =
        host::FontFace::open(owner->getMemoryBase(), owner->getLength(), index, owner);
    if (face == nullptr) return nullptr;
    return sk_sp<SkTypeface>(new SkTypeface(std::move(face)));
}

SkFontID SkTypeface::uniqueID() const {
    return mFace->uniqueId();
}
