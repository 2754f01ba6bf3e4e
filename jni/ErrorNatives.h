// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_ERRORNATIVES_H_
#define ZVEX_JNI_ERRORNATIVES_H_

#include <jni.h>

namespace Zvex {

// Asks the kit's ZvError whether this is an engineering build, which settles the log switches of the process,
// and registers the class's one native. False, perhaps with an exception pending, without the class or when
// the registration fails. A class that cannot tell leaves the switches as they are.
bool Error_OnLoad(JavaVM* vm);

}  // namespace Zvex

#endif  // ZVEX_JNI_ERRORNATIVES_H_
