// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_
#define ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_

#include <functional>
#include <string>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

// Scenes for timing kernels: coverage of real text, made once through the port. Rows time a kernel beside its
// plain form.
namespace bench {

// The mask and the text box that a render passes to its effects.
struct TextScene {
    std::string name;  // "1024x256"
    Zvex::ZvBitmap mask;
    Zvex::ZvRect box;
};

const TextScene& smallText();  // 13 glyphs of 120 pixels in 1024x256
const TextScene& largeText();  // the same times 4 in 4096x1024

// Draws one effect. The record has the scene's mask and box, and a target of the mask's size.
using Draw = std::function<void(Zvex::ZvECore::ParamPostProcessing&)>;

// Registers the rows name/size/plain and name/size/fast. Both draw onto a transparent target; clearing it is
// not timed. Before the clock starts, the fast row compares its picture with the plain form's, and reports an
// error instead of a time if they differ. Without a plain form there is only the fast row, which compares its
// picture with that of the baseline instruction set.
void addRows(const std::string& name, const TextScene& scene, Draw fast, Draw plain);

// Registers a source file's rows before main: `const bench::Family stroke(addStrokeRows);`
struct Family {
    explicit Family(void (*addRows)());
};

}  // namespace bench

#endif  // ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_
