// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_SCENE_REFUSAL_H_
#define ZVEX_TESTS_SCENE_REFUSAL_H_

#include <functional>
#include <string>

#include "scene/Failure.h"

namespace Zvex::scene {

// The message of the Error that `call` throws, as the command line says it; empty when it throws nothing.
inline std::string refusal(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error.onCommandLine();
    }
    return "";
}

}  // namespace Zvex::scene

#endif  // ZVEX_TESTS_SCENE_REFUSAL_H_
