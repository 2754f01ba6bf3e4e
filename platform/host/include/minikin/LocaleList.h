// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_

#include <cstdint>
#include <string>

namespace minikin {

// The id of a list of locales: BCP-47 tags, comma-separated, the most wanted first. The same list gives the
// same id for the life of the process; two tags are the same if they have the same language, script and
// region after the likely ones are filled in ("ja" is "ja-Jpan-JP"). Malformed tags and tags after the first
// 64 are skipped. A list without any tag has the id 0, and so does a new list after 8192 others in this
// process. May be called from any thread.
uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LOCALELIST_H_
