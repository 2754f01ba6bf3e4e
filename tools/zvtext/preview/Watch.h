// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PREVIEW_WATCH_H_
#define ZVEX_TOOLS_ZVTEXT_PREVIEW_WATCH_H_

#include <functional>
#include <memory>
#include <string>

#include "scene/Source.h"

namespace zvtext {

using namespace Zvex::scene;

// Notes the files that something is made from.
using NoteFile = std::function<void(const std::string& path)>;

// The same source; `note` hears of each name before it is read, in styles of the source too.
std::shared_ptr<const Source> notedSource(std::shared_ptr<const Source> source, NoteFile note);

// Calls `make` in a child process, and again whenever one of the files that it noted has changed, until
// SIGINT, SIGTERM or SIGHUP. A child that fails has said so; the next change is waited for then, too.
//
// Returns in each child: true, and `make` was called. An error that it throws is the child's. Returns in the
// parent: false, with `status` 0, or 2 where the first child ended with it: the command line is wrong.
bool watch(const std::function<void(const NoteFile& note)>& make, int& status);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PREVIEW_WATCH_H_
