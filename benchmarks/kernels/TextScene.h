// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_
#define ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_

#include <functional>
#include <string>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

// What the kernels are timed on: coverage of real text, made once through the port, and rows that put a
// kernel beside its plain form.
namespace bench {

// The mask and the text box that a render hands to its effects.
struct TextScene {
    std::string name;  // "1024x256"
    Zvex::ZvBitmap mask;
    Zvex::ZvRect box;
};

const TextScene& smallText();  // 13 glyphs of 120 pixels in 1024x256
const TextScene& largeText();  // the same times 4 in 4096x1024

// Draws one effect: the record has the scene's mask and box and a target of the mask's size.
using Draw = std::function<void(Zvex::ZvECore::ParamPostProcessing&)>;

// Registers the rows name/size/plain and name/size/fast, both drawing onto a transparent target that is
// cleared outside the time. The fast row compares its picture with the plain form's before the clock starts,
// and reports an error instead of a time if they differ. Without a plain form there is only the fast row, and
// the picture is compared with that of the baseline instruction set.
void addRows(const std::string& name, const TextScene& scene, Draw fast, Draw plain);

// A source file's rows, registered before main: `const bench::Family stroke(addStrokeRows);`
struct Family {
    explicit Family(void (*addRows)());
};

}  // namespace bench

#endif  // ZVEX_BENCHMARKS_KERNELS_TEXTSCENE_H_
