// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FOLDERSCOPE_H_
#define ZVEX_SCENE_FOLDERSCOPE_H_

#include <string>
#include <utility>
#include <vector>

namespace Zvex::scene {

// Owns a file descriptor; below 0: none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : mNumber(number) {}
    Descriptor(Descriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mNumber, other.mNumber);
        return *this;
    }
    ~Descriptor();

    int number() const { return mNumber; }
    explicit operator bool() const { return mNumber >= 0; }

    // The name of the open file: /proc/self/fd/N.
    std::string name() const { return "/proc/self/fd/" + std::to_string(mNumber); }

private:
    int mNumber;
};

// The folders that files named in a style or a batch line may be in; the author of the style need not be the
// user of the program. Either anywhere, or in some folders and below them. Names with "..", absolute names
// and links are allowed if they lead there.
class FolderScope {
public:
    FolderScope() = default;  // anywhere

    // Missing folders hold nothing. `user` opens the rest of a refusal: "a style may read; ...".
    FolderScope(const std::vector<std::string>& folders, std::string user);

    // Adds folders that refusals do not mention.
    void addQuietly(const std::vector<std::string>& folders);

    bool isAnywhere() const { return mAnywhere; }

    // Whether both hold the same.
    bool operator==(const FolderScope& other) const {
        return mAnywhere == other.mAnywhere && mFolders == other.mFolders &&
               mQuietFolders == other.mQuietFolders;
    }

    // Whether the path, without links and dots, is one of the folders or below one.
    bool holds(const std::string& resolved) const;
    // The same for the descriptor's file.
    bool holds(const Descriptor& descriptor) const;

    // Opens a regular file below the folders for reading. It opens nothing else on the way, so that no pipe
    // waits for a writer and no device is touched. Throws Failure, its message starting with `option`. Only
    // for scopes that are not anywhere.
    Descriptor openFile(const std::string& option, const std::string& path) const;

    // Opens the folder without reading it, and creates it and its parents if missing. Throws Failure as
    // openFile does. Only for scopes that are not anywhere.
    Descriptor makeFolder(const std::string& option, const std::string& path) const;

    // "--font: '/etc/x' lies outside '/home/me', where a style may read; ...". If that folder is gone, it
    // says so instead.
    std::string refusal(const std::string& option, const std::string& path) const;

    // Whether a path that cannot be opened would be inside, judged by its deepest existing folder. Messages
    // about a path outside must not depend on what exists there.
    bool wouldHold(const std::string& path) const;

private:
    bool mAnywhere = true;
    std::vector<std::string> mFolders, mQuietFolders;  // without links and dots
    std::string mUser;
};

// The path without links and dots; empty if nothing is there.
std::string resolvedPath(const std::string& path);

// The folders that the command line lets files name, besides their own.
struct ReadOptions {
    std::vector<std::string> folders;
    bool anywhere = false;

    // These folders and `own`. `user` as above, without the verb.
    FolderScope scopeWith(std::vector<std::string> own, const std::string& user) const;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FOLDERSCOPE_H_
