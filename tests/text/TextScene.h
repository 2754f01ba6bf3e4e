// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_TEXT_TEXTSCENE_H_
#define ZVEX_TESTS_TEXT_TEXTSCENE_H_

#include <minikin/LocaleList.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "platform/host/LogCapture.h"
#include "tests/host/Fonts.h"
#include "text/FontManager.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"

namespace text_test {

constexpr const char* kSans = fonts::path(fonts::Role::kLatin);
constexpr const char* kBold = fonts::path(fonts::Role::kLatinBold);
constexpr const char* kCjk = fonts::path(fonts::Role::kCollection);
constexpr const char* kEmoji = fonts::path(fonts::Role::kEmoji);

using fonts::readFile;

// A new array with the bytes, as callers pass it to the font manager.
inline char* newBuffer(const std::string& bytes) {
    char* buffer = new char[bytes.size()];
    std::copy(bytes.begin(), bytes.end(), buffer);
    return buffer;
}

// The captured lines of error priority as "tag: text".
inline std::vector<std::string> errorLines(const host::LogCapture& capture) {
    std::vector<std::string> lines;
    for (const host::LogLine& line : capture.lines()) {
        if (line.priority == 6) lines.push_back(line.tag + ": " + line.text);
    }
    return lines;
}

// The address as the log prints it.
inline std::string addressOf(const void* object) {
    char text[32];
    std::snprintf(text, sizeof(text), "%p", object);
    return text;
}

// A system family, not loaded, with the fonts at index 0 of the files; "" for no locale.
inline Zvex::ZvFontFamily* makeFamily(const char* locale, const std::vector<const char*>& paths) {
    auto* family = new Zvex::ZvFontFamily;
    if (*locale != '\0') family->localeListId = minikin::registerLocaleList(locale);
    family->fonts = new Zvex::List;
    family->fonts->Construct();
    for (const char* path : paths) {
        auto* entry = new Zvex::ZvFontEntry;
        entry->path = new Zvex::ZvString;
        entry->path->Construct(path);
        family->fonts->Add(entry);
    }
    return family;
}

inline Zvex::List* makeFamilies(const std::vector<Zvex::ZvFontFamily*>& families) {
    auto* list = new Zvex::List;
    list->Construct();
    for (Zvex::ZvFontFamily* family : families) list->Add(family);
    return list;
}

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels;  // straight 0xAARRGGBB

    uint32_t at(int x, int y) const { return pixels.at(static_cast<size_t>(y) * width + x); }
    bool operator==(const Picture& other) const { return width == other.width && pixels == other.pixels; }
    int count(uint32_t color) const {
        return static_cast<int>(std::count(pixels.begin(), pixels.end(), color));
    }
    int countVisible() const { return static_cast<int>(pixels.size()) - count(0); }
};

// A text object, and the calls that make a picture of it.
struct TextScene {
    Zvex::ZvTextObject object;

    // A view of the size with gravity left and top, and no lines yet.
    TextScene(const char* font, const wchar_t* text, float size, int width, int height) {
        object.Construct();
        if (font != nullptr) object.SetFont(font);
        object.SetText(text);
        android::Paint paint;
        paint.setTextSize(size);
        paint.setAntiAlias(true);
        object.SetPaint(paint);
        view().SetSize(width, height);
        view().gravity = 0x33;
    }

    Zvex::ZvView& view() { return *object.GetView(); }
    Zvex::ZvEffect& effect() { return *object.GetEffect(); }
    Zvex::ZvLineInfo& line(int index) {
        return *static_cast<Zvex::ZvLineInfo*>(object.GetLineInfo()->Get(index));
    }

    void changePaint(const std::function<void(android::Paint&)>& change) {
        android::Paint paint = object.GetPaint();
        change(paint);
        object.SetPaint(paint);
    }

    // Replaces the lines.
    void setLines(const std::vector<Zvex::ZvLineInfo>& lines) {
        Zvex::List list;
        list.Construct();
        for (const Zvex::ZvLineInfo& info : lines) list.Add(new Zvex::ZvLineInfo(info));
        object.SetLineInfo(&list);
    }

    static Zvex::ZvLineInfo makeLine(int x, int y, int start, int end, int direction = 1) {
        Zvex::ZvLineInfo info;
        info.x = x;
        info.y = y;
        info.start = start;
        info.end = end;
        info.direction = direction;
        info.rect = Zvex::ZvRect(x, y - 20, x + 100, y + 5);
        return info;
    }

    Picture render() {
        Picture picture{view().width + effect().getLeftOffset() + effect().getRightOffset(),
                        view().height + effect().getTopOffset() + effect().getBottomOffset(),
                        {}};
        view().SetBitmapWidth(picture.width);
        view().SetBitmapHeight(picture.height);
        const uint32_t* pixels = object.RenderTextEffect(picture.width, picture.height);
        if (pixels != nullptr) {
            picture.pixels.assign(pixels, pixels + static_cast<size_t>(picture.width) * picture.height);
        }
        return picture;
    }
};

// A scene with one line of all of the text.
struct OneLine : TextScene {
    OneLine(const wchar_t* text, float size, int width, int height, int x, int y)
        : TextScene(kSans, text, size, width, height) {
        setLines({makeLine(x, y, 0, static_cast<int>(std::wcslen(text)))});
    }
};

}  // namespace text_test

#endif  // ZVEX_TESTS_TEXT_TEXTSCENE_H_
