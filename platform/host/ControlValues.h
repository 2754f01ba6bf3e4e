// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_CONTROLVALUES_H_
#define ZVEX_PLATFORM_HOST_CONTROLVALUES_H_

#include <ft2build.h>

#include <cstddef>
#include <cstdint>
#include <vector>
#include FT_SYSTEM_H

namespace host {

// A hinted font file whose control values are scaled as FreeType 2.9 does it, which the phone has. Later
// versions drop the lowest six bits of the scale, and some stems then round to another pixel. The file is
// read as it is but for its control value program: in front of it stand instructions (WCVTF) that set each
// control value anew from its font units, at the full scale.
class ControlValues {
public:
    // The bytes are borrowed. False when the font has nothing to scale or is damaged; also for variable
    // fonts, whose control values depend on their axes.
    bool open(const void* data, size_t size, int index);

    // The file for FT_Open_Face; valid while this object lives and stays where it is.
    FT_Stream stream() { return &mStream; }

private:
    struct Table {
        size_t record = 0, offset = 0, length = 0;  // record: where the table directory names it
    };
    bool findTable(size_t directory, const char* tag, Table* table) const;
    bool readNumber(size_t at, int bytes, uint32_t* number) const;
    unsigned long read(size_t offset, unsigned char* to, size_t count) const;
    static unsigned long readStream(FT_Stream stream, unsigned long offset, unsigned char* to,
                                    unsigned long count);

    const uint8_t* mData = nullptr;
    size_t mSize = 0;
    size_t mRecord = 0;             // of the program
    uint8_t mPlace[8] = {};         // its offset and length in the file made here
    std::vector<uint8_t> mProgram;  // behind the original file
    FT_StreamRec mStream = {};
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_CONTROLVALUES_H_
