// SPDX-License-Identifier: Apache-2.0
#include "text/ZvTextObject.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkColorSpace.h>
#include <SkImageInfo.h>
#include <SkPaint.h>
#include <minikin/LocaleList.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "effect/ZvEffect.h"
#include "foundation/Error.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"
#include "text/Constructed.h"
#include "text/FontManager.h"
#include "text/LinePlacement.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextInstanceManager.h"
#include "text/ZvTextObjectImpl.h"
#include "text/ZvView.h"

// The script runs of ICU's common library. It exports them, but no installed header of it declares them.
struct UScriptRun;
extern "C" {
UScriptRun* U_EXPORT2 uscript_openRun(const UChar* text, int32_t length, UErrorCode* status);
UBool U_EXPORT2 uscript_nextRun(UScriptRun* run, int32_t* start, int32_t* limit, UScriptCode* script);
void U_EXPORT2 uscript_closeRun(UScriptRun* run);
}

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvTextObject";

void deleteReleasedObject(ZvTextObject* object) {
    ZV_DEBUG_LOG(kTag, "Delete ZvTextObject by InstanceManager : %p", static_cast<void*>(object));
    delete object;
}

// The locale list for a script whose system families are selected by language. Empty for characters that any
// font has.
std::string localesForScript(UScriptCode script) {
    switch (script) {
        case USCRIPT_HAN:
        case USCRIPT_SIMPLIFIED_HAN:
            return "zh-Hans";
        case USCRIPT_TRADITIONAL_HAN:
        case USCRIPT_HAN_WITH_BOPOMOFO:
            return "zh-Hant";
        case USCRIPT_HANGUL:
        case USCRIPT_KOREAN:
        case USCRIPT_JAMO:
            return "ko";
        case USCRIPT_HIRAGANA:
        case USCRIPT_KATAKANA:
        case USCRIPT_JAPANESE:
            return "ja";
        case USCRIPT_INVALID_CODE:
        case USCRIPT_COMMON:
        case USCRIPT_INHERITED:
        case USCRIPT_LATIN:
        case USCRIPT_UNWRITTEN_LANGUAGES:
        case USCRIPT_UNKNOWN:
            return std::string();
        default: {
            const char* name = uscript_getShortName(script);
            if (name == nullptr) return std::string();
            char locale[16];
            std::snprintf(locale, sizeof(locale), "und-%s", name);
            return locale;
        }
    }
}

SkImageInfo straightColorInfo(const ZvBitmap& bitmap) {
    return SkImageInfo::Make(static_cast<int>(bitmap.width), static_cast<int>(bitmap.height),
                             kRGBA_8888_SkColorType, kUnpremul_SkAlphaType, SkColorSpace::MakeSRGB());
}

// Whether the path survives conversion from UTF-8 and back, since fonts are looked up by its characters.
bool readsBack(const char* path) {
    ZvString text;
    if (text.Construct(path) == 0) return false;
    const int size = text.GetUTF8Size();
    const std::unique_ptr<char[]> bytes(size > 0 ? new (std::nothrow) char[static_cast<size_t>(size) + 1]()
                                                 : nullptr);
    if (bytes == nullptr) return *path == '\0';
    return text.GetUTF8(bytes.get(), size) != 0 && std::strcmp(bytes.get(), path) == 0;
}

void wrapColorBitmap(const ZvBitmap& bitmap, SkBitmap& out) {
    out.installPixels(straightColorInfo(bitmap), bitmap.pixels, size_t{bitmap.width} * bitmap.bytesPerPixel);
}

// The canvas draws nothing of pictures larger than that.
bool canvasTakes(const ZvBitmap& picture) {
    return picture.byteCount() <= INT32_MAX;
}

SkRect clipOf(const ZvView& view) {
    const ZvRect clip = textClip(view);
    return SkRect::MakeLTRB(static_cast<float>(clip.left), static_cast<float>(clip.top),
                            static_cast<float>(clip.right), static_cast<float>(clip.bottom));
}

}  // namespace

ZvTextObjectImpl::ZvTextObjectImpl(ZvTextObject* ownerObject)
    : owner(ownerObject),
      text(nullptr),
      fontDrawing(new (std::nothrow) ZvFontDrawing),
      effect(new (std::nothrow) ZvEffect),
      lineInfo(new (std::nothrow) List),
      view(new (std::nothrow) ZvView) {
    if (lineInfo != nullptr && lineInfo->Construct() == 0) {
        delete lineInfo;
        lineInfo = nullptr;
    }
}

bool ZvTextObjectImpl::isComplete() const {
    return fontDrawing != nullptr && fontDrawing->glyphList != nullptr && effect != nullptr &&
           lineInfo != nullptr && view != nullptr;
}

ZvTextObjectImpl::~ZvTextObjectImpl() {
    delete text;
    clearLineInfo();
    delete lineInfo;
    delete effect;
    delete fontDrawing;
    delete result;
    delete view;
}

void ZvTextObjectImpl::clearLineInfo() {
    if (lineInfo == nullptr) return;
    const int count = lineInfo->GetCount();
    for (int i = 0; i < count; ++i) delete static_cast<ZvLineInfo*>(lineInfo->Get(i));
    lineInfo->RemoveAll();
}

ZvTextObject::ZvTextObject() : mImpl(nullptr) {
    static std::once_flag callbackSet;
    std::call_once(callbackSet, [] { ZvTextInstanceManager::SetCallBack(deleteReleasedObject); });
    ZV_DEBUG_LOG(kTag, "ZvTextObject(%p)", static_cast<void*>(this));
}

ZvTextObject::~ZvTextObject() {
    ZV_DEBUG_LOG(kTag, "~ZvTextObject(%p / %d)", static_cast<void*>(this),
                 mImpl != nullptr ? mImpl->runtimeHandle : -1);
    ZvTextInstanceManager::Forget(this);
    delete mImpl;
}

bool ZvTextObject::Construct() {
    if (mImpl != nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_ALREADY_CONSTRUCTED);
        return false;
    }
    std::unique_ptr<ZvTextObjectImpl> made(new (std::nothrow) ZvTextObjectImpl(this));
    if (made == nullptr || !made->isComplete()) return false;
    made->runtimeHandle = ZvTextInstanceManager::Register(this);
    if (made->runtimeHandle < 0) return false;
    mImpl = made.release();
    ZV_DEBUG_LOG(kTag, "Construct(%p / %d)", static_cast<void*>(this), mImpl->runtimeHandle);
    return true;
}

int ZvTextObject::GetRuntimeHandle() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(-1);
    return mImpl->runtimeHandle;
}

ZvEffect* ZvTextObject::GetEffect() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    return mImpl->effect;
}

bool ZvTextObject::SetText(const ZvString* text) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    ZV_DEBUG_LOG(kTag, "SetText() - %p [%s] strLen=%d", static_cast<void*>(this), ZvLog::ConvertLog(text),
                 text != nullptr ? text->GetLength() : 0);
    return assignText(text);
}

bool ZvTextObject::SetText(const wchar_t* text) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return assignText(text);
}

// Source: ZvString, which may be the held text itself, or wchar_t.
template <typename Source>
bool ZvTextObject::assignText(const Source* source) {
    if (source == nullptr) {
        delete mImpl->text;
        mImpl->text = nullptr;
        return true;
    }
    return createTextIfMissing() && mImpl->text->Set(source) != 0 && loadFamiliesOfText();
}

ZvString* ZvTextObject::GetText() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    return mImpl->text;
}

void ZvTextObject::SetTextLocaleListId() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    if (mImpl->text == nullptr) {
        ZV_DEBUG_LOG(kTag, "SetTextLocaleListId - text is null.");
        return;
    }
    loadFamiliesOfText();
}

// False if memory is short.
bool ZvTextObject::loadFamiliesOfText() {
    if (mImpl->fontDrawing != nullptr && mImpl->fontDrawing->HasTypeface()) return true;
    return unlessOutOfMemory(false, [this] { return tryLoadFamiliesOfText(); });
}

bool ZvTextObject::tryLoadFamiliesOfText() {
    int length = -1;
    const std::unique_ptr<uint16_t[]> utf16(mImpl->text->GetUTF16(length));
    if (utf16 == nullptr) return false;
    if (length < 1) return true;  // an empty text has no scripts

    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UScriptRun, void (*)(UScriptRun*)> runs(
        uscript_openRun(reinterpret_cast<const UChar*>(utf16.get()), length, &status), uscript_closeRun);
    if (U_FAILURE(status) || runs == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetTextLocaleListId - uscript_openRun is failed.");
        return true;
    }
    int32_t start = 0;
    int32_t limit = 0;
    UScriptCode script = USCRIPT_INVALID_CODE;
    while (uscript_nextRun(runs.get(), &start, &limit, &script)) {
        const std::string locales = localesForScript(script);
        if (locales.empty()) continue;
        const uint32_t id = minikin::registerLocaleList(locales);
        if (id != 0 && !FontManager::GetInstance()->EnsureMinikinFontFamily(id)) return false;
    }
    return true;
}

bool ZvTextObject::SetFont(const char* path) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    if (path == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_INVALID_ARGUMENT);
        return false;
    }
    ZV_DEBUG_LOG(kTag, "SetFont(%p) - path[%s]", static_cast<void*>(this), path);
    return addFont(path, nullptr, 0);
}

bool ZvTextObject::SetFont(const char* path, char* buffer, unsigned int size) {
    std::unique_ptr<char[]> handedOver(buffer);
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    if (path == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_INVALID_ARGUMENT);
        return false;
    }
    ZV_DEBUG_LOG(kTag, "SetFont2(%p) - path[%s] - size: %d", static_cast<void*>(this), path,
                 static_cast<int>(size));
    return addFont(path, handedOver.release(), size);
}

// The font manager takes ownership of `buffer`.
bool ZvTextObject::addFont(const char* path, char* buffer, unsigned int size) {
    std::unique_ptr<char[]> handedOver(buffer);
    if (mImpl->fontDrawing == nullptr) mImpl->fontDrawing = new (std::nothrow) ZvFontDrawing;
    if (!readsBack(path)) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetFont() - the path is not UTF-8");
        return false;
    }
    buffer = handedOver.release();
    if (!FontManager::GetInstance()->AddMinikinFont(path, buffer, size, 0, true)) return false;
    return mImpl->fontDrawing != nullptr && mImpl->fontDrawing->SetFontPath(path);
}

bool ZvTextObject::SetTypeface(std::shared_ptr<const android::Typeface> typeface) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    if (mImpl->fontDrawing != nullptr) mImpl->fontDrawing->SetTypeface(std::move(typeface));
    return mImpl->fontDrawing != nullptr;
}

ZvFontDrawing* ZvTextObject::GetFont() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    return mImpl->fontDrawing;
}

bool ZvTextObject::SetLineInfo(const List* list) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    if (list == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetLineInfo - lineInfo is NULL");
        ZV_REPORT_ERROR(kTag, ZV_ERROR_INVALID_ARGUMENT);
        return false;
    }
    if (mImpl->lineInfo == nullptr) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "SetLineInfo - M->lineInfo is NULL");
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    if (list == mImpl->lineInfo) return true;
    mImpl->clearLineInfo();
    if (list->GetCount() == 0) return true;
    return mImpl->lineInfo->Add(list) != 0;
}

List* ZvTextObject::GetLineInfo() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    return mImpl->lineInfo;
}

bool ZvTextObject::SetTextStyle(bool bold, bool italic) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    mImpl->style &= ~uint32_t{ZV_TEXT_STYLE_BOLD | ZV_TEXT_STYLE_ITALIC};
    if (bold) mImpl->style |= ZV_TEXT_STYLE_BOLD;
    if (italic) mImpl->style |= ZV_TEXT_STYLE_ITALIC;
    return true;
}

bool ZvTextObject::isBoldTextStyle() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return (mImpl->style & ZV_TEXT_STYLE_BOLD) != 0;
}

bool ZvTextObject::isItalicTextStyle() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return (mImpl->style & ZV_TEXT_STYLE_ITALIC) != 0;
}

ZvView* ZvTextObject::GetView() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    return mImpl->view;
}

android::Paint ZvTextObject::GetPaint() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(android::Paint());
    return unlessOutOfMemory(android::Paint(), [this] { return mImpl->paint; });
}

void ZvTextObject::SetPaint(android::Paint& paint) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    unlessOutOfMemory(false, [&] {
        android::Paint copy(paint);
        mImpl->paint = std::move(copy);
        return true;
    });
}

void ZvTextObject::SetBackgroundColor(unsigned int color, bool enabled) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    mImpl->backgroundColor = color;
    mImpl->backgroundEnabled = enabled;
}

void ZvTextObject::SetTextColor(unsigned int color) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    mImpl->textColor = color;
}

unsigned int ZvTextObject::GetTextColor() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(0xFF000000u);
    return mImpl->textColor;
}

uint32_t* ZvTextObject::RenderTextEffect(int width, int height) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(nullptr);
    ZV_DEBUG_LOG(kTag, "RenderTextEffect(%p / %d) >>> Start! - (w=%d,h=%d)", static_cast<void*>(this),
                 mImpl->runtimeHandle, width, height);
    if (mImpl->fontDrawing == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return mImpl->result != nullptr ? reinterpret_cast<uint32_t*>(mImpl->result->pixels) : nullptr;
    }
    const unsigned int safeWidth = width > 0 ? static_cast<unsigned int>(width) : 0;
    const unsigned int safeHeight = height > 0 ? static_cast<unsigned int>(height) : 0;
    if (!mImpl->resizeResult(safeWidth, safeHeight)) return nullptr;
    // A picture without pixels is drawn too: its text becomes a layer, its lines are placed.
    const bool drawn = unlessOutOfMemory(false, [this] {
        mImpl->drawsBackground() ? mImpl->renderOverBackground() : mImpl->renderAlone();
        return true;
    });
    // An incomplete drawing leaves the stack pointing at an image that may be freed.
    if (mImpl->effect != nullptr) mImpl->effect->setDstBitmap(nullptr);
    ZV_DEBUG_LOG(kTag, "RenderTextEffect(%p / %d) <<< End.", static_cast<void*>(this), mImpl->runtimeHandle);
    return drawn ? reinterpret_cast<uint32_t*>(mImpl->result->pixels) : nullptr;
}

bool ZvTextObjectImpl::resizeResult(unsigned int width, unsigned int height) {
    // Fresh memory costs more than drawing into it, so a picture of the same size is reused.
    if (result != nullptr && result->pixels != nullptr && result->width == width && result->height == height)
        return true;
    std::unique_ptr<ZvBitmap> fresh(new (std::nothrow) ZvBitmap(width, height, 4, ZvBitmap::Unset::Pixels));
    if (fresh == nullptr) return false;
    delete result;
    result = fresh.release();
    return true;
}

bool ZvTextObjectImpl::drawsBackground() const {
    if (backgroundEnabled && lineInfo != nullptr && lineInfo->GetCount() > 0) return true;
    return !canvasTakes(*result);
}

void ZvTextObjectImpl::renderOverBackground() {
    ZvBitmap effectImage(result->width, result->height, 4, ZvBitmap::Unset::Pixels);
    const bool composed = effectImage.pixels != nullptr && result->pixels != nullptr && canvasTakes(*result);
    if (!composed && result->pixels != nullptr) std::memset(result->pixels, 0, result->byteCount());
    fontDrawing->DrawTextWords(owner, &effectImage);
    if (effect != nullptr) effect->setDstBitmap(nullptr);
    if (effectImage.pixels != nullptr && result->pixels != nullptr) compose(effectImage, *result);
}

// Without a background the effects' picture is the result, within the clip.
void ZvTextObjectImpl::renderAlone() {
    const ZvRect drawn = fontDrawing->DrawTextWords(owner, result);
    if (view == nullptr) return;
    const SkRect clip = clipOf(*view);
    // All edges are whole numbers.
    const auto edge = [](float at, uint32_t size) {
        return static_cast<size_t>(std::clamp(static_cast<double>(at), 0.0, static_cast<double>(size)));
    };
    const size_t left = edge(clip.fLeft, result->width), right = edge(clip.fRight, result->width);
    const size_t top = edge(clip.fTop, result->height), bottom = edge(clip.fBottom, result->height);
    const size_t width = result->width;
    for (int y = drawn.top; y < drawn.bottom; ++y) {
        const size_t row = static_cast<size_t>(y);
        const bool within = row >= top && row < bottom;
        uint8_t* pixels = result->pixels + row * width * 4;
        std::memset(pixels, 0, (within ? left : width) * 4);
        if (within) std::memset(pixels + right * 4, 0, (width - right) * 4);
    }
}

void ZvTextObjectImpl::compose(const ZvBitmap& effectImage, ZvBitmap& picture) const {
    SkBitmap pictureBitmap;
    wrapColorBitmap(picture, pictureBitmap);
    SkCanvas canvas(pictureBitmap);
    canvas.drawColor(0, SkBlendMode::kSrc);
    if (view != nullptr) canvas.clipRect(clipOf(*view), SkClipOp::kIntersect, true);

    if (backgroundEnabled && lineInfo != nullptr) {
        SkPaint background;
        background.setColor(backgroundColor);
        background.setStyle(SkPaint::kFill_Style);
        const int count = lineInfo->GetCount();
        for (int i = 0; i < count; ++i) {
            const auto* line = static_cast<const ZvLineInfo*>(lineInfo->Get(i));
            if (line == nullptr) continue;
            canvas.drawRect(
                SkRect::MakeLTRB(static_cast<float>(line->rect.left), static_cast<float>(line->rect.top),
                                 static_cast<float>(line->rect.right), static_cast<float>(line->rect.bottom)),
                background);
        }
    }

    // From here on both hold words 0xAARRGGBB, blue first in memory. The canvas treats the colour channels
    // alike, so their order does not matter.
    SkBitmap effectBitmap;
    wrapColorBitmap(effectImage, effectBitmap);
    ZvBlender::convertBGRAToARGB(&picture);
    canvas.drawBitmap(effectBitmap, 0, 0);
}

ZvTextObject* ZvTextObject::FindZvTextObject(int handle) {
    return ZvTextInstanceManager::FindZvTextObject(handle);
}

bool ZvTextObject::createTextIfMissing() {
    if (mImpl->text != nullptr) return true;
    std::unique_ptr<ZvString> made(new (std::nothrow) ZvString);
    if (made == nullptr || made->Construct() == 0) return false;
    mImpl->text = made.release();
    return true;
}

}  // namespace Zvex
