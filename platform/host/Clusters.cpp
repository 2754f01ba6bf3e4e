// SPDX-License-Identifier: Apache-2.0
//
// The rules of Unicode Standard Annex 29, GB3 to GB13 with GB9c, over ICU's character properties. A break
// iterator would do the same, but it would have to be opened and given the text for every line.
#include "platform/host/Clusters.h"

#include <unicode/uchar.h>
#include <unicode/uscript.h>

namespace host {
namespace {

// Below this, every character except the carriage return is a cluster of its own, unless the next one joins
// it.
constexpr uint16_t kFirstMark = 0x0300;

// A character's role in GB9c, the conjunct rule.
enum class Conjunct { kNone, kConsonant, kLinker, kExtend };

Conjunct conjunctRole(UChar32 c, UGraphemeClusterBreak type) {
    if (c >= 0x0900 && c <= 0x0D7F) {
        UErrorCode status = U_ZERO_ERROR;
        switch (uscript_getScript(c, &status)) {
            case USCRIPT_DEVANAGARI:
            case USCRIPT_BENGALI:
            case USCRIPT_GUJARATI:
            case USCRIPT_ORIYA:
            case USCRIPT_TELUGU:
            case USCRIPT_MALAYALAM: {
                const int32_t category = u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY);
                if (category == U_INSC_CONSONANT) return Conjunct::kConsonant;
                if (category == U_INSC_VIRAMA) return Conjunct::kLinker;
                break;
            }
            default:
                break;
        }
    }
    const bool extend = type == U_GCB_ZWJ || (type == U_GCB_EXTEND && u_getCombiningClass(c) != 0);
    return extend ? Conjunct::kExtend : Conjunct::kNone;
}

struct Character {
    explicit Character(uint32_t codePoint) {
        const auto c = static_cast<UChar32>(codePoint);
        type = static_cast<UGraphemeClusterBreak>(u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK));
        pictograph = u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC) != 0;
        conjunct = conjunctRole(c, type);
    }

    UGraphemeClusterBreak type;
    bool pictograph;
    Conjunct conjunct;
};

bool isControl(UGraphemeClusterBreak type) {
    return type == U_GCB_CONTROL || type == U_GCB_CR || type == U_GCB_LF;
}

}  // namespace

uint32_t nextCodePoint(const uint16_t* text, size_t* at, size_t end) {
    const uint32_t unit = text[(*at)++];
    if (unit < 0xD800 || unit > 0xDFFF) return unit;
    if (unit <= 0xDBFF && *at < end && (text[*at] & 0xFC00) == 0xDC00) {
        return 0x10000 + ((unit - 0xD800) << 10) + (text[(*at)++] - 0xDC00u);
    }
    return 0xFFFD;
}

bool isDefaultIgnorable(uint32_t codePoint) {
    return codePoint >= 0xAD &&
           u_hasBinaryProperty(static_cast<UChar32>(codePoint), UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
}

bool selectsVariation(uint32_t codePoint) {
    return (codePoint >= 0xFE00 && codePoint <= 0xFE0F) || (codePoint >= 0xE0100 && codePoint <= 0xE01EF);
}

size_t clusterEnd(const uint16_t* text, size_t start, size_t end) {
    const size_t second = start + 1;
    if (text[start] < kFirstMark && text[start] != '\r' && (second >= end || text[second] < kFirstMark)) {
        return second;
    }

    size_t at = start;
    Character previous(nextCodePoint(text, &at, end));
    bool pictographBefore = previous.pictograph;  // followed only by marks and one joiner so far
    bool consonantBefore =
        previous.conjunct == Conjunct::kConsonant;  // followed only by linkers and marks so far
    bool linked = false;                            // with at least one linker
    bool flagOpen = previous.type == U_GCB_REGIONAL_INDICATOR;
    while (at < end) {
        size_t next = at;
        const Character current(nextCodePoint(text, &next, end));
        const auto before = previous.type, type = current.type;
        bool joins;
        if (before == U_GCB_CR && type == U_GCB_LF) {
            joins = true;
        } else if (isControl(before) || isControl(type)) {
            joins = false;
        } else if (before == U_GCB_L) {
            joins = type == U_GCB_L || type == U_GCB_V || type == U_GCB_LV || type == U_GCB_LVT;
        } else if (before == U_GCB_LV || before == U_GCB_V) {
            joins = type == U_GCB_V || type == U_GCB_T;
        } else if (before == U_GCB_LVT || before == U_GCB_T) {
            joins = type == U_GCB_T;
        } else if (before == U_GCB_ZWJ) {
            joins = pictographBefore && current.pictograph;
        } else {
            joins = before == U_GCB_PREPEND || (flagOpen && type == U_GCB_REGIONAL_INDICATOR);
        }
        joins = joins || (linked && current.conjunct == Conjunct::kConsonant);
        const bool extends = type == U_GCB_EXTEND || type == U_GCB_ZWJ;
        joins = joins || (!isControl(before) && (extends || type == U_GCB_SPACING_MARK));
        if (!joins) break;

        pictographBefore = current.pictograph || (pictographBefore && extends);
        linked = consonantBefore &&
                 (current.conjunct == Conjunct::kLinker || (linked && current.conjunct == Conjunct::kExtend));
        consonantBefore = current.conjunct == Conjunct::kConsonant ||
                          (consonantBefore && current.conjunct != Conjunct::kNone);
        flagOpen = type == U_GCB_REGIONAL_INDICATOR && !flagOpen;
        previous = current;
        at = next;
    }
    return at;
}

}  // namespace host
