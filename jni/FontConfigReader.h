// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_FONTCONFIGREADER_H_
#define ZVEX_JNI_FONTCONFIGREADER_H_

#include <jni.h>

namespace Zvex {

class List;

// Reads the system's font configuration, an android.text.FontConfig, and appends a ZvFontFamily for each
// useful family to `out`, in the configuration's order; the caller owns them.
//
// Of the named families only the first is kept: the default font, loaded at once. The others serve fonts
// chosen by name, which this library does not do. Unnamed families are the fallbacks; those without a
// language and the two for emoji and symbols are loaded at once, the rest when a text needs their language
// (FontManager::EnsureMinikinFontFamily). A family is useful if it has an upright font that is not the
// fallback of a named family and whose file is readable in the build's ZVEX_SYSTEM_FONT_DIR.
//
// False, with an error line, when the configuration, a family or a font lacks a method; and when a method
// throws: the exception is pending then. `out` may have families already in either case.
bool ConvertToFontFamilies(JNIEnv* env, jobject config, List* out);

}  // namespace Zvex

#endif  // ZVEX_JNI_FONTCONFIGREADER_H_
