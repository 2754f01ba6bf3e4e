// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_GIVENVALUE_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_GIVENVALUE_H_

#include <CLI/CLI.hpp>
#include <string>

namespace zvtext {

// Refuses the empty value, for options that count as left out while their variable is empty: an unset
// variable of a script is an error, not the default.
inline CLI::Validator givenValue() {
    return CLI::Validator([](std::string& value) { return value.empty() ? "the value is empty" : ""; }, "");
}

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_GIVENVALUE_H_
