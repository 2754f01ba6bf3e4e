// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_CONTROLVALUES_H_
#define ZVEX_PLATFORM_HOST_CONTROLVALUES_H_

#include <ft2build.h>

#include <cstddef>
#include <cstdint>
#include <vector>
#include FT_SYSTEM_H

namespace host {

// A hinted font file whose control values are scaled as in FreeType 2.9, the phone's version. Later versions
// drop the lowest six bits of the scale, and then some stems round to another pixel. Only the control value
// program of the file changes: instructions in front of it (WCVTF) set each control value again from its font
// units, at the full scale.
class ControlValues {
public:
    // Borrows the bytes. False if the font has nothing to scale or is damaged; also for variable fonts, whose
    // control values depend on their axes.
    bool open(const void* data, size_t size, int index);

    // The file for FT_Open_Face; valid while this object lives and is not moved.
    FT_Stream stream() { return &mStream; }

private:
    struct Table {
        size_t record = 0, offset = 0, length = 0;  // record: position of its entry in the table directory
    };
    bool findTable(size_t directory, const char* tag, Table* table) const;
    bool readNumber(size_t at, int bytes, uint32_t* number) const;
    unsigned long read(size_t offset, unsigned char* to, size_t count) const;
    static unsigned long readStream(FT_Stream stream, unsigned long offset, unsigned char* to,
                                    unsigned long count);

    const uint8_t* mData = nullptr;
    size_t mSize = 0;
    size_t mRecord = 0;             // the program's entry
    uint8_t mPlace[8] = {};         // the program's offset and length in the changed file
    std::vector<uint8_t> mProgram;  // follows the original file
    FT_StreamRec mStream = {};
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_CONTROLVALUES_H_
