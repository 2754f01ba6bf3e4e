// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_

#include <CLI/App.hpp>

#include "tools/zvtext/batch/BatchRun.h"

namespace zvtext {

// Declares the options of batch on `command`; parsing fills `arguments`, which must outlive it.
void addBatchOptions(CLI::App& command, BatchArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_
