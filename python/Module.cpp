// SPDX-License-Identifier: Apache-2.0
//
// The module zvex._zvex: scenes made from options in JSON, and pictures as buffers. zvex/__init__.py makes it
// the module that people use.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "scene/Failure.h"
#include "scene/Png.h"
#include "scene/Presets.h"
#include "scene/Renderer.h"
#include "scene/SceneFonts.h"
#include "scene/SceneOptions.h"
#include "scene/StyleSchema.h"
#include "scene/WebpWriter.h"

namespace py = pybind11;
using namespace Zvex::scene;

namespace {

// Rows of bytes that Python's buffers refer to: `channels` for each pixel.
struct Pixels {
    std::vector<uint32_t> words;
    py::ssize_t width = 0, height = 0, channels = 4;

    uint8_t* bytes() { return reinterpret_cast<uint8_t*>(words.data()); }
};

py::buffer_info bufferOf(Pixels& pixels) {
    std::vector<py::ssize_t> shape = {pixels.height, pixels.width};
    std::vector<py::ssize_t> strides = {pixels.width * pixels.channels, pixels.channels};
    if (pixels.channels > 1) {
        shape.push_back(pixels.channels);
        strides.push_back(1);
    }
    const auto dimensions = static_cast<py::ssize_t>(shape.size());
    return {pixels.bytes(), 1, "B", dimensions, std::move(shape), std::move(strides), true};
}

// The same for programs that ask for an array, not for a buffer, such as Pillow's fromarray.
py::dict arrayInterfaceOf(Pixels& pixels) {
    const py::buffer_info buffer = bufferOf(pixels);
    py::dict array;
    array["version"] = 3;
    array["shape"] = py::tuple(py::cast(buffer.shape));
    array["typestr"] = "|u1";
    array["data"] = std::make_tuple(reinterpret_cast<uintptr_t>(buffer.ptr), true);  // read-only
    return array;
}

// Part of a text and where it lies. Offsets count code points, as Python's strings do.
struct Span {
    size_t start, end;
    std::tuple<float, float, float, float> box;
    int baseline;
};

Span spanOf(const TextRange& range, const Box& box, int baseline) {
    return {range.startCharacter, range.endCharacter, {box.left, box.top, box.right, box.bottom}, baseline};
}

// Its buffer is the straight RGBA, which the rendering's picture has no more. Only measured, it has no rows.
struct PythonPicture : Pixels {
    explicit PythonPicture(Scene drawn, Rendering made)
        : scene(std::move(drawn)), rendering(std::move(made)) {
        words = std::move(rendering.picture.pixels);
        convertPixels(words.data(), words.size(), PixelFormat::Rgba, words.data());
        width = rendering.metrics.width;
        height = words.empty() ? 0 : rendering.metrics.height;
    }

    Picture picture() const {
        Picture argb = {static_cast<int>(width), static_cast<int>(height), words};
        for (uint32_t& word : argb.pixels) {
            uint8_t rgba[4];
            std::memcpy(rgba, &word, 4);
            word = uint32_t{rgba[3]} << 24 | uint32_t{rgba[0]} << 16 | uint32_t{rgba[1]} << 8 | rgba[2];
        }
        return argb;
    }

    Scene scene;
    Rendering rendering;
};

std::vector<Span> linesOf(const PythonPicture& picture) {
    std::vector<Span> spans;
    for (const LineMetrics& line : picture.rendering.metrics.lines)
        spans.push_back(spanOf(line, line.box, line.baseline));
    return spans;
}

std::vector<Span> clustersOf(const PythonPicture& picture) {
    std::vector<Span> spans;
    for (const LineMetrics& line : picture.rendering.metrics.lines) {
        for (const ClusterMetrics& cluster : line.clusters)
            spans.push_back(spanOf(cluster, cluster.box, line.baseline));
    }
    return spans;
}

// The glyphs alone, in black without effects, where they lie in the picture.
Pixels coverageOf(const PythonPicture& picture) {
    Scene scene = picture.scene;
    const Style& style = picture.scene.style;
    scene.style = Style();
    scene.style.size = style.size;
    scene.style.letterSpacing = style.letterSpacing;
    scene.style.wordSpacing = style.wordSpacing;
    scene.style.lineHeight = style.lineHeight;
    scene.style.upperCase = style.upperCase;
    scene.style.features = style.features;
    scene.trim = false;
    const Rendering bare = render(scene);
    const Margins &within = picture.rendering.metrics.margins, &own = bare.metrics.margins;
    const int dx = within.left - own.left, dy = within.top - own.top;
    Pixels mask;
    mask.channels = 1;
    mask.width = picture.rendering.metrics.width;
    mask.height = picture.rendering.metrics.height;
    mask.words.resize(static_cast<size_t>(mask.width * mask.height + 3) / 4);
    for (int y = std::max(0, -dy); y < bare.picture.height && y + dy < mask.height; ++y) {
        for (int x = std::max(0, -dx); x < bare.picture.width && x + dx < mask.width; ++x) {
            const size_t source =
                static_cast<size_t>(y) * static_cast<size_t>(bare.picture.width) + static_cast<size_t>(x);
            mask.bytes()[static_cast<size_t>((y + dy) * mask.width + x + dx)] =
                static_cast<uint8_t>(bare.picture.pixels[source] >> 24);
        }
    }
    return mask;
}

Pixels premultiplied(const PythonPicture& picture) {
    Picture argb = picture.picture();
    convertPixels(argb.pixels.data(), argb.pixels.size(), PixelFormat::RgbaPremultiplied, argb.pixels.data());
    return {std::move(argb.pixels), picture.width, picture.height};
}

std::string encode(const PythonPicture& picture, const std::string& format, double dpi,
                   Compression compression) {
    if (picture.words.empty()) throw UsageError("picture: it was measured, not drawn");
    if (format == "png") return encodePng(picture.picture(), dpi, compression);
    if (std::max(picture.width, picture.height) > kMaxWebpSide) {
        throw UsageError("format: webp takes at most " + std::to_string(kMaxWebpSide) +
                         " pixels a side; take png");
    }
    return encodeWebp(picture.picture(), compression);
}

py::bytes encoded(const PythonPicture& picture, const std::string& format, double dpi,
                  const std::string& how) {
    Compression compression = Compression::Default;
    readValue("compression", compressionField(compression), how);
    std::string bytes;
    {
        const py::gil_scoped_release others;
        bytes = encode(picture, format, dpi, compression);
    }
    return bytes;
}

// A font stays loaded as long as the process, and the scene tells fonts of bytes apart by their address:
// equal bytes must be one font.
Font fontOf(const std::string& bytes) {
    static std::mutex oneAtATime;
    static std::unordered_map<std::string, Font> fonts;
    const std::lock_guard<std::mutex> lock(oneAtATime);
    Font& font = fonts[bytes];
    if (font.bytes == nullptr) font = Font::fromBytes(bytes);
    return font;
}

// Options read once, for many texts.
class Text {
public:
    Text(const std::string& json, const std::map<std::string, std::string>& fontBytes) {
        readOptions(fieldsOf(mOptions), readGiven(json, "options: it"));
        const auto find = [&](Font& font) {
            const auto bytes = fontBytes.find(font.name);
            if (bytes == fontBytes.end()) return;
            const std::string axes = font.axes;
            font = fontOf(bytes->second);
            font.axes = axes;
        };
        find(mOptions.scene.font);
        for (Font& font : mOptions.scene.fallbacks) find(font);
    }

    PythonPicture make(const std::string& text, bool draws) {
        SceneOptions options = mOptions;
        options.scene.text = text;
        Scene scene = sceneOf(std::move(options));
        const std::lock_guard<std::mutex> lock(mOneAtATime);
        Rendering made = draws ? mRenderer.render(scene) : mRenderer.measure(scene);
        return PythonPicture(std::move(scene), std::move(made));
    }

private:
    SceneOptions mOptions;
    std::mutex mOneAtATime;
    Renderer mRenderer;
};

py::dict optionHelp() {
    SceneOptions options;
    py::dict help;
    for (const Field& field : fieldsOf(options)) {
        std::string name = field.name;
        std::replace(name.begin(), name.end(), '-', '_');
        help[py::str(name)] = std::string(field.help) + ". Takes " + wantedBy(field);
    }
    return help;
}

std::vector<std::string> namesOfPresets() {
    std::vector<std::string> names;
    for (const Preset& preset : presets()) names.emplace_back(preset.name);
    return names;
}

void bindPicture(py::module_& module) {
    py::class_<Pixels>(module, "Pixels", py::buffer_protocol())
        .def_buffer(bufferOf)
        .def_property_readonly("__array_interface__", arrayInterfaceOf);
    py::class_<Span>(module, "Span")
        .def_readonly("start", &Span::start)
        .def_readonly("end", &Span::end)
        .def_readonly("box", &Span::box)
        .def_readonly("baseline", &Span::baseline)
        .def("__repr__", [](const Span& span) {
            return py::str("<{}..{} at {}>").format(span.start, span.end, span.box);
        });
    const auto metric = [](auto member) {
        return [member](const PythonPicture& picture) { return picture.rendering.metrics.*member; };
    };
    const py::call_guard<py::gil_scoped_release> others;
    py::class_<PythonPicture, Pixels>(module, "Picture", py::buffer_protocol())
        .def(py::init([](Text& text, const std::string& utf8, bool draws) { return text.make(utf8, draws); }),
             others)
        .def_property_readonly("width", metric(&Metrics::width))
        .def_property_readonly("height", metric(&Metrics::height))
        .def_property_readonly("baseline", metric(&Metrics::baseline))
        .def_property_readonly("origin",
                               [](const PythonPicture& picture) {
                                   const Point& origin = picture.rendering.metrics.origin;
                                   return std::make_tuple(origin.x, origin.y);
                               })
        .def_property_readonly("margins",
                               [](const PythonPicture& picture) {
                                   const Margins& m = picture.rendering.metrics.margins;
                                   return std::make_tuple(m.left, m.top, m.right, m.bottom);
                               })
        .def_property_readonly("lines", linesOf)
        .def_property_readonly("clusters", clustersOf)
        .def_property_readonly("warnings",
                               [](const PythonPicture& picture) { return picture.rendering.warnings; })
        .def("premultiplied", premultiplied, others)
        .def("coverage", coverageOf, others)
        .def("_encode", encoded);
}

}  // namespace

PYBIND11_MODULE(_zvex, module) {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            std::rethrow_exception(std::move(thrown));
        } catch (const Error& error) {
            const py::object type = py::module_::import("zvex").attr("Error");
            std::string option = error.place();
            std::replace(option.begin(), option.end(), '-', '_');
            PyErr_SetObject(type.ptr(), type(option, error.cause()).ptr());
        }
    });
    py::class_<Text>(module, "Text")
        .def(py::init<const std::string&, const std::map<std::string, std::string>&>());
    bindPicture(module);
    module.def("schema", styleSchema);
    module.def("fonts", systemFontNames, py::call_guard<py::gil_scoped_release>());
    module.def("options", optionHelp);
    module.def("presets", namesOfPresets);
    module.attr("__version__") = ZVEX_VERSION;
}
