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

    // What it is open on, by this name: /proc/self/fd/N.
    std::string name() const { return "/proc/self/fd/" + std::to_string(mNumber); }

private:
    int mNumber;
};

// Where the files may lie that a style or a line of a batch names: those who write the one and those who run
// the program need not be the same. Anywhere, or in some folders and below them. Names with "..", absolute
// ones and links are all good, as long as they end there.
class FolderScope {
public:
    FolderScope() = default;  // anywhere

    // Folders that are not there hold nothing. `user` opens the rest of a refusal: "a style may read; ...".
    FolderScope(const std::vector<std::string>& folders, std::string user);

    // Adds folders that refusals do not name.
    void addQuietly(const std::vector<std::string>& folders);

    bool isAnywhere() const { return mAnywhere; }

    // Whether both hold the same.
    bool operator==(const FolderScope& other) const {
        return mAnywhere == other.mAnywhere && mFolders == other.mFolders &&
               mQuietFolders == other.mQuietFolders;
    }

    // Whether the path, without links and dots, is one of the folders or below one.
    bool holds(const std::string& resolved) const;
    // The same of what the descriptor is open on.
    bool holds(const Descriptor& descriptor) const;

    // Opens a regular file below the folders to read it; nothing else is opened on the way, so that neither a
    // pipe waits for a writer nor a device stirs. Throws Failure, its message starting with `option`. Only
    // where the scope is not anywhere.
    Descriptor openFile(const std::string& option, const std::string& path) const;

    // Opens the folder without reading it, and makes it, with those around it, where it is missing. Throws
    // Failure as openFile does; only where the scope is not anywhere.
    Descriptor makeFolder(const std::string& option, const std::string& path) const;

    // "--font: '/etc/x' lies outside '/home/me', where a style may read; ..."
    std::string refusal(const std::string& option, const std::string& path) const;

    // Whether a path that cannot be opened would lie inside: judged by its deepest folder that exists.
    // Messages about a path outside must not depend on what is there.
    bool wouldHold(const std::string& path) const;

private:
    bool mAnywhere = true;
    std::vector<std::string> mFolders, mQuietFolders;  // without links and dots
    std::string mUser;
};

// The path without links and dots; empty when nothing lies there.
std::string resolvedPath(const std::string& path);

// What the command line lets files name beyond their own folders.
struct ReadOptions {
    std::vector<std::string> folders;
    bool anywhere = false;

    // These folders and `own`. `user` as above, without what it may do.
    FolderScope scopeWith(std::vector<std::string> own, const std::string& user) const;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FOLDERSCOPE_H_
