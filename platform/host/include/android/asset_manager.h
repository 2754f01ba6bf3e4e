// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_H_

#include <sys/types.h>

#include <cstddef>

// An application's assets: here the files below one folder. Any thread may open assets; an asset belongs to
// one thread at a time.

struct AAssetManager;
struct AAsset;

enum { AASSET_MODE_UNKNOWN = 0, AASSET_MODE_RANDOM = 1, AASSET_MODE_STREAMING = 2, AASSET_MODE_BUFFER = 3 };

extern "C" {

// Opens the regular file of that name, relative to the folder, for reading. Null if there is none, or if the
// name leaves the folder: an absolute one, one with a ".." in it, or one that leads out through a link. The
// mode says how the caller will read; it has no effect here.
AAsset* AAssetManager_open(AAssetManager* manager, const char* name, int mode);

off_t AAsset_getLength(AAsset* asset);  // bytes in all

// Reads on from where the last read ended. Returns the number of bytes read, which may be fewer than asked
// for; 0 at the end, negative on failure.
int AAsset_read(AAsset* asset, void* buffer, size_t count);

void AAsset_close(AAsset* asset);  // null is ignored
}

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_ASSET_MANAGER_H_
