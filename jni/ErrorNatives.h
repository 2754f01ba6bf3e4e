// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_ERRORNATIVES_H_
#define ZVEX_JNI_ERRORNATIVES_H_

#include <jni.h>

namespace Zvex {

// Asks the kit's ZvError whether this is an engineering build, sets the process's log switches accordingly,
// and registers the class's one native. False, possibly with an exception pending, without the class or when
// the registration fails. If the class cannot tell, the switches stay as they are.
bool Error_OnLoad(JavaVM* vm);

}  // namespace Zvex

#endif  // ZVEX_JNI_ERRORNATIVES_H_
