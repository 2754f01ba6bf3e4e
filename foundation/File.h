// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_FILE_H_
#define ZVEX_FOUNDATION_FILE_H_

#include <cstdio>

namespace Zvex {

class ZvString;

// Owns a C stream. Constructed in two phases; logs under the tag "ZV_File". One thread at a time.
//
// Without a stream (never constructed, failed to open, closed) every operation reports code 8; Read and Write
// return 0, the others -1. Otherwise results are those of the corresponding C call.
class File {
public:
    File() = default;
    ~File();  // as Close
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Opens as fopen does; a wide path is converted to UTF-8. A null path or mode or an empty wide path fails
    // with 7, a file that cannot be opened with 11. Once the path has been tried, the object counts as
    // constructed, so a second Construct fails with 4 even if the first one failed. keepOpen: the object
    // never closes the stream; the user of GetFilePointer does.
    bool Construct(const ZvString* path, const char* mode, bool keepOpen);
    bool Construct(const char* path, const char* mode);

    // fread, fwrite, fseek, ftell, feof, ferror and fileno.
    unsigned long Read(void* buffer, unsigned long size, unsigned long count);
    unsigned long Write(const void* buffer, unsigned long size, unsigned long count);
    int Seek(long offset, int whence);
    long Tell();
    int Eof();
    int Error();
    int GetFileDescriptor();
    FILE* GetFilePointer();  // null without a stream; sets no code

    // Flushes and closes; a stream opened to write or append is synced to storage first. Does nothing for a
    // stream opened with keepOpen.
    void Close();

    // access, unlink and rename: 0 on success, -1 on failure with errno set. A null path, or a wide path
    // whose UTF-8 form is empty, gives -1 with code 7.
    static int IsAccessible(const ZvString* path, int mode);
    static int IsAccessible(const char* path, int mode);
    static int Unlink(const ZvString* path);
    static int Unlink(const char* path);
    static int Rename(const ZvString* oldPath, const ZvString* newPath);
    static int Rename(const char* oldPath, const char* newPath);

private:
    struct Impl;
    bool attachImpl(const void* path, const char* mode);
    bool open(const char* path, const char* mode, bool keepOpen);
    FILE* openStream();  // null, reported, without a stream

    Impl* mImpl = nullptr;  // null: not constructed
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_FILE_H_
