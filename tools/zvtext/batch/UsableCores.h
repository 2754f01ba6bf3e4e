// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_USABLECORES_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_USABLECORES_H_

#include <string>

namespace zvtext {

// How many processes of this one's can run at once, 1 or more: the cores of its CPU set, and not more than
// the quotas of its control groups (versions 1 and 2, rounded up) and SLURM_CPUS_PER_TASK allow. /proc and
// /sys are looked for in `root`.
int usableCores(const std::string& root = "");

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_USABLECORES_H_
