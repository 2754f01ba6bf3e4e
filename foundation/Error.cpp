// SPDX-License-Identifier: Apache-2.0
#include "foundation/Error.h"

namespace Zvex {

namespace {
thread_local uint32_t lastError = ZV_ERROR_NONE;
}

void Error::SetError(unsigned long code) {
    lastError = static_cast<uint32_t>(code);
}

unsigned long Error::GetError() {
    return lastError;
}

}  // namespace Zvex
