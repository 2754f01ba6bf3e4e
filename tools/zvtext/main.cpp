// SPDX-License-Identifier: Apache-2.0
// zvtext: renders text with effects to pictures, through the same library that runs on the phone.
#include "tools/zvtext/Program.h"

int main(int argc, char** argv) {
    return zvtext::runProgram(argc, argv);
}
