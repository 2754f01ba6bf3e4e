// SPDX-License-Identifier: Apache-2.0
#pragma once

// What stands here is spread over these headers on the phone; scripts/phone-compile makes one of each name:
//   <SkScalar.h>
//   <SkColor.h>
//   <SkRefCnt.h>
//   <SkBlendMode.h>
//   <SkClipOp.h>
//   <SkRect.h>
//   <SkStream.h>
//   <SkColorSpace.h>
//   <SkImageInfo.h>
//   <SkBitmap.h>
//   <SkTypeface.h>
//   <SkPaint.h>
//   <SkTextBlob.h>
//   <SkCanvas.h>
//   <minikin/MinikinFont.h>
//   <minikin/FontStyle.h>
//   <minikin/FontFamily.h>
//   <minikin/Layout.h>
//   <minikin/LocaleList.h>
//   <hwui/MinikinSkia.h>
//   <hwui/Paint.h>
//   <hwui/Typeface.h>
//   <hwui/MinikinUtils.h>
//   <android/log.h>
//   <android/asset_manager.h>
//   <android/asset_manager_jni.h>

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#if __has_include(<jni.h>)
#include <jni.h>
#endif

typedef float SkScalar;

typedef uint32_t SkColor;

class SkRefCnt {
public:
    SkRefCnt();
    virtual ~SkRefCnt();
    SkRefCnt(SkRefCnt&&) = delete;
};

template <typename T>
class sk_sp {
public:
    constexpr sk_sp() {}
    constexpr sk_sp(std::nullptr_t) {}
    explicit sk_sp(T* object);

    T* get() const;
    T& operator*() const;
    T* operator->() const;
    explicit operator bool() const;
};

template <typename T>
bool operator==(const sk_sp<T>& a, std::nullptr_t);
template <typename T>
bool operator!=(const sk_sp<T>& a, std::nullptr_t);

enum class SkBlendMode { kSrc = 1, kSrcOver = 3 };

enum class SkClipOp { kIntersect = 1 };

struct SkRect {
    SkScalar fLeft, fTop, fRight, fBottom;

    static constexpr SkRect MakeLTRB(SkScalar l, SkScalar t, SkScalar r, SkScalar b) {
        return SkRect{l, t, r, b};
    }
};

class SkStreamAsset {
public:
    virtual ~SkStreamAsset() = 0;
    SkStreamAsset(SkStreamAsset&&) = delete;

protected:
    SkStreamAsset();
};

class SkMemoryStream : public SkStreamAsset {
public:
    SkMemoryStream(const void* data, size_t length, bool copyData = false);
    ~SkMemoryStream() override;
};

class SkColorSpace : public SkRefCnt {
public:
    static sk_sp<SkColorSpace> MakeSRGB();

private:
    SkColorSpace();
};

enum SkColorType { kAlpha_8_SkColorType = 1, kRGBA_8888_SkColorType = 4 };
enum SkAlphaType { kPremul_SkAlphaType = 2, kUnpremul_SkAlphaType = 3 };

struct SkImageInfo {
    static SkImageInfo Make(int width, int height, SkColorType colorType, SkAlphaType alphaType,
                            sk_sp<SkColorSpace> colorSpace = nullptr);
};

struct SkBitmap {
    bool installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes);
};

class SkTypeface : public SkRefCnt {
public:
    static sk_sp<SkTypeface> MakeFromStream(SkStreamAsset* stream, int index = 0);

private:
    SkTypeface();
};

class SkPaint {
public:
    enum Style { kFill_Style };
    enum Align { kLeft_Align, kCenter_Align, kRight_Align };
    enum TextEncoding { kUTF8_TextEncoding, kGlyphID_TextEncoding = 3 };

    Align getTextAlign() const;
    void setTextAlign(Align align);
    TextEncoding getTextEncoding() const;
    void setTextEncoding(TextEncoding encoding);
    Style getStyle() const;
    void setStyle(Style style);
    SkScalar getTextSize() const;
    void setTextSize(SkScalar size);
    SkScalar getTextScaleX() const;
    void setTextScaleX(SkScalar scale);
    SkScalar getTextSkewX() const;
    void setTextSkewX(SkScalar skew);
    bool isFakeBoldText() const;
    void setFakeBoldText(bool on);
    uint32_t getFlags() const;
    void setFlags(uint32_t flags);
    SkColor getColor() const;
    void setColor(SkColor color);
    bool isAntiAlias() const;
    void setAntiAlias(bool on);
    SkTypeface* getTypeface() const;
    void setTypeface(sk_sp<SkTypeface> typeface);
};

class SkTextBlob : public SkRefCnt {
private:
    SkTextBlob();
};

class SkTextBlobBuilder {
public:
    SkTextBlobBuilder();
    ~SkTextBlobBuilder();
    SkTextBlobBuilder(SkTextBlobBuilder&&) = delete;

    struct RunBuffer {
        uint16_t* glyphs;
        SkScalar* pos;
    };
    const RunBuffer& allocRunPos(const SkPaint& font, int count, const SkRect* bounds = nullptr);
    sk_sp<SkTextBlob> make();
};

class SkCanvas {
public:
    explicit SkCanvas(const SkBitmap& bitmap);
    virtual ~SkCanvas();
    SkCanvas(SkCanvas&&) = delete;

    void drawColor(SkColor color, SkBlendMode mode);
    void clipRect(const SkRect& rect, SkClipOp op, bool doAntiAlias);
    void drawRect(const SkRect& rect, const SkPaint& paint);
    void drawBitmap(const SkBitmap& bitmap, SkScalar left, SkScalar top, const SkPaint* paint = nullptr);
    void drawTextBlob(const sk_sp<SkTextBlob>& blob, SkScalar x, SkScalar y, const SkPaint& paint);
};

namespace minikin {

struct MinikinRect {
    float mLeft = 0, mTop = 0, mRight = 0, mBottom = 0;
};

struct FontVariation {
    FontVariation() = delete;
};

class FontFakery {
public:
    bool isFakeBold();
    bool isFakeItalic();
};

class MinikinFont {
public:
    virtual ~MinikinFont() = 0;
    MinikinFont(MinikinFont&&) = delete;

    int32_t GetUniqueId() const;
    virtual const void* GetFontData() const;
    virtual size_t GetFontSize() const;
    virtual int GetFontIndex() const;

protected:
    explicit MinikinFont(int32_t uniqueId);
};

class FontStyle {
public:
    enum class Slant : bool { ITALIC = true, UPRIGHT = false };

    constexpr FontStyle(uint16_t, Slant) {}
};

class Font {
public:
    class Builder {
    public:
        explicit Builder(const std::shared_ptr<MinikinFont>& typeface);
        Builder(Builder&&) = delete;

        Builder& setStyle(FontStyle style);
        Builder& setWeight(uint16_t weight);
        Builder& setSlant(FontStyle::Slant slant);
        Font build();
    };

    Font(Font&&);
    Font& operator=(Font&&);
};

class FontFamily {
public:
    enum class Variant : uint8_t { DEFAULT = 0, COMPACT = 1, ELEGANT = 2 };

    explicit FontFamily(std::vector<Font>&& fonts);
    FontFamily(Variant variant, std::vector<Font>&& fonts);
    FontFamily(uint32_t localeListId, Variant variant, std::vector<Font>&& fonts);
    FontFamily(FontFamily&&) = delete;
};

class MeasuredText;

enum class Bidi : uint8_t {
    LTR = 0,
    RTL = 1,
    DEFAULT_LTR = 2,
    DEFAULT_RTL = 3,
    FORCE_LTR = 4,
    FORCE_RTL = 5,
};

// Only doLayout makes one.
class Layout {
public:
    Layout(Layout&&) = delete;

    size_t nGlyphs() const;
    const MinikinFont* getFont(int i) const;
    FontFakery getFakery(int i) const;
    unsigned int getGlyphId(int i) const;
    float getX(int i) const;
    float getY(int i) const;
    float getAdvance() const;
    void getBounds(MinikinRect* rect) const;
};

uint32_t registerLocaleList(const std::string& locales);

}  // namespace minikin

namespace android {

class MinikinFontSkia : public minikin::MinikinFont {
public:
    MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize, int ttcIndex,
                    const std::vector<minikin::FontVariation>& axes);
    ~MinikinFontSkia() override;

    sk_sp<SkTypeface> RefSkTypeface() const;
    static void populateSkPaint(SkPaint* paint, const minikin::MinikinFont* font, minikin::FontFakery fakery);
};

class Paint : public SkPaint {
public:
    void setLetterSpacing(float letterSpacing);
    float getLetterSpacing() const;
    void setFontFeatureSettings(const std::string& settings);
    std::string getFontFeatureSettings() const;
    void setMinikinLocaleListId(uint32_t id);
    uint32_t getMinikinLocaleListId() const;
    void setFamilyVariant(minikin::FontFamily::Variant variant);
    minikin::FontFamily::Variant getFamilyVariant() const;
};

struct Typeface {
    static Typeface* createFromFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>&& families,
                                        int weight, int italic);

private:
    Typeface();
    Typeface(Typeface&&) = delete;
};

class MinikinUtils {
public:
    static minikin::Layout doLayout(const Paint* paint, minikin::Bidi bidiFlags, const Typeface* typeface,
                                    const uint16_t* buf, size_t start, size_t count, size_t bufSize,
                                    minikin::MeasuredText* measured);

    template <typename F>
    static void forFontRun(const minikin::Layout& layout, Paint*, F& f) {
        f(size_t{0}, layout.nGlyphs());
    }
};

}  // namespace android

extern "C" {

typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT
} android_LogPriority;

int __android_log_print(int priority, const char* tag, const char* format, ...)
    __attribute__((__format__(printf, 3, 4)));
}

struct AAssetManager;
struct AAsset;

enum { AASSET_MODE_UNKNOWN = 0, AASSET_MODE_RANDOM = 1, AASSET_MODE_STREAMING = 2, AASSET_MODE_BUFFER = 3 };

extern "C" {
AAsset* AAssetManager_open(AAssetManager* manager, const char* name, int mode);
off_t AAsset_getLength(AAsset* asset);
int AAsset_read(AAsset* asset, void* buffer, size_t count);
void AAsset_close(AAsset* asset);
}

#if __has_include(<jni.h>)
extern "C" AAssetManager* AAssetManager_fromJava(JNIEnv* env, jobject assetManager);
#endif
