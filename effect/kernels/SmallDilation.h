// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SMALLDILATION_H_
#define ZVEX_EFFECT_KERNELS_SMALLDILATION_H_

#include <memory>

#include "effect/kernels/Dilation.h"

namespace Zvex {

// The dilation of a picture so small that finding out what can be skipped costs more than reading every cell
// of the kernel: a title of 32 pixels with a stroke of 2. False for others; true, with null, if memory is
// short.
bool makeSmallDilation(const DilationParam& param, std::unique_ptr<Dilation>* dilation);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SMALLDILATION_H_
