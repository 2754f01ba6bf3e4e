// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/DistanceTransform.h"

#include <algorithm>
#include <cstddef>

namespace Zvex {

namespace {

float squareOf(int64_t offset) {
    return static_cast<float>(offset * offset);
}

// Where the parabolas over p and q > p cross.
float crossing(const float* values, int p, int q) {
    return ((values[q] + squareOf(q)) - (values[p] + squareOf(p))) / static_cast<float>(2 * (int64_t{q} - p));
}

}  // namespace

void LineTransform::find(const float* values, int begin, int end) const {
    int* vertices = mVertices.get();
    float* bounds = mBounds.get();
    int last = 0;
    vertices[0] = begin;
    bounds[0] = -kEndlessSquare;
    for (int q = begin + 1; q < end; ++q) {
        float bound = crossing(values, vertices[last], q);
        // The first parabola always stays: no image's parabolas cross before bounds[0].
        while (last > 0 && bound <= bounds[last]) bound = crossing(values, vertices[--last], q);
        ++last;
        vertices[last] = q;
        bounds[last] = bound;
    }
    bounds[last + 1] = kEndlessSquare;
}

void LineTransform::squares(float* result, const float* values, int begin, int end) const {
    const int* vertices = mVertices.get();
    const float* bounds = mBounds.get();
    int last = 0;
    for (int q = begin; q < end; ++q) {
        while (bounds[last + 1] < static_cast<float>(q)) ++last;
        const int vertex = vertices[last];
        result[q - begin] = values[vertex] + squareOf(int64_t{q} - vertex);
    }
}

bool squaredDistances(float* result, const float* values, int count) {
    if (result == nullptr || values == nullptr || count < 1) return true;
    LineTransform transform;
    if (!transform.allocate(count)) return false;
    transform.run(result, values, count);
    return true;
}

bool squaredDistances(float* plane, int width, int height) {
    if (plane == nullptr || width < 1 || height < 1) return true;
    LineTransform transform;
    Buffer<float> line, column;
    const int longest = std::max(width, height);
    if (!transform.allocate(longest) || !line.allocate(longest) || !column.allocate(longest)) return false;
    for (int x = 0; x < width; ++x) {
        float* top = plane + x;
        for (ptrdiff_t y = 0; y < height; ++y) line[static_cast<size_t>(y)] = top[y * width];
        transform.run(column.get(), line.get(), height);
        for (ptrdiff_t y = 0; y < height; ++y) top[y * width] = column[static_cast<size_t>(y)];
    }
    for (ptrdiff_t y = 0; y < height; ++y) {
        float* row = plane + y * width;
        std::copy_n(row, width, line.get());
        transform.run(row, line.get(), width);
    }
    return true;
}

}  // namespace Zvex
