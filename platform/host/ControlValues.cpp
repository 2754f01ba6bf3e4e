// SPDX-License-Identifier: Apache-2.0
#include "platform/host/ControlValues.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr uint8_t kPushTwoWords = 0xB9, kWriteFontUnits = 0x70;
constexpr size_t kMaxValues = 1 << 15;  // an index is a signed word

void writeNumber(uint32_t number, uint8_t* to) {
    for (int i = 0; i < 4; ++i) to[i] = static_cast<uint8_t>(number >> (24 - 8 * i));
}

}  // namespace

bool ControlValues::readNumber(size_t at, int bytes, uint32_t* number) const {
    if (at > mSize || mSize - at < static_cast<size_t>(bytes)) return false;
    *number = 0;
    for (int i = 0; i < bytes; ++i) *number = *number << 8 | mData[at + static_cast<size_t>(i)];
    return true;
}

bool ControlValues::findTable(size_t directory, const char* tag, Table* table) const {
    uint32_t count = 0;
    if (!readNumber(directory + 4, 2, &count)) return false;
    for (size_t i = 0; i < count; ++i) {
        const size_t record = directory + 12 + 16 * i;
        uint32_t offset = 0, length = 0;
        if (!readNumber(record + 8, 4, &offset) || !readNumber(record + 12, 4, &length)) return false;
        if (std::memcmp(mData + record, tag, 4) != 0) continue;
        *table = {record, offset, length};
        return offset <= mSize && length <= mSize - offset;
    }
    return false;
}

bool ControlValues::open(const void* data, size_t size, int index) {
    mData = static_cast<const uint8_t*>(data);
    mSize = size;
    size_t directory = 0;
    uint32_t count = 0, place = 0;
    if (size >= 4 && std::memcmp(data, "ttcf", 4) == 0) {
        if (index < 0 || !readNumber(8, 4, &count) || static_cast<uint32_t>(index) >= count) return false;
        if (!readNumber(12 + 4 * static_cast<size_t>(index), 4, &place)) return false;
        directory = place;
    }
    if (directory > size) return false;
    Table values, program, variations;
    if (findTable(directory, "fvar", &variations)) return false;
    if (!findTable(directory, "cvt ", &values) || !findTable(directory, "prep", &program)) return false;
    const size_t valueCount = std::min(values.length / 2, kMaxValues);
    mProgram.reserve(6 * valueCount + program.length);
    for (size_t i = 0; i < valueCount; ++i) {
        const uint8_t* units = mData + values.offset + 2 * i;
        const uint8_t set[] = {
            kPushTwoWords,  static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i), units[0], units[1],
            kWriteFontUnits};
        mProgram.insert(mProgram.end(), std::begin(set), std::end(set));
    }
    mProgram.insert(mProgram.end(), mData + program.offset, mData + program.offset + program.length);
    if (size + mProgram.size() > UINT32_MAX) return false;
    mRecord = program.record;
    writeNumber(static_cast<uint32_t>(size), mPlace);
    writeNumber(static_cast<uint32_t>(mProgram.size()), mPlace + 4);
    mStream.size = size + mProgram.size();
    mStream.descriptor.pointer = this;
    mStream.read = readStream;
    return true;
}

unsigned long ControlValues::read(size_t offset, unsigned char* to, size_t count) const {
    const size_t end = mSize + mProgram.size();
    if (offset > end) return 0;
    count = std::min(count, end - offset);
    const size_t original = offset < mSize ? std::min(count, mSize - offset) : 0;
    if (original > 0) std::memcpy(to, mData + offset, original);
    if (count > original) std::memcpy(to + original, &mProgram[offset + original - mSize], count - original);
    for (size_t i = 0; i < sizeof mPlace; ++i) {
        const size_t at = mRecord + 8 + i;
        if (offset <= at && at < offset + count) to[at - offset] = mPlace[i];
    }
    return static_cast<unsigned long>(count);
}

// FreeType asks with a count of 0 whether the file can be read from there: 0 means yes.
unsigned long ControlValues::readStream(FT_Stream stream, unsigned long offset, unsigned char* to,
                                        unsigned long count) {
    const auto& file = *static_cast<const ControlValues*>(stream->descriptor.pointer);
    if (count == 0) return offset > stream->size ? 1 : 0;
    return file.read(offset, to, count);
}

}  // namespace host
