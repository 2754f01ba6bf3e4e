// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_

#include <cstdint>
#include <string>

namespace minikin {

// The id of a list of locales: BCP-47 tags, comma-separated, the most wanted first. The same list gives the
// same id for the life of the process; two tags are the same when they mean the same language, script and
// region once the likely ones are filled in ("ja" is "ja-Jpan-JP"). A tag that cannot be read is left out; a
// list without any tag has the id 0, and so has a new list after 8192 others in this process. Tags beyond the
// first 64 of a list are left out. May be called from any thread.
uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_
