// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LocaleLists.h"

#include <minikin/LocaleList.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>

namespace host {
namespace {

constexpr size_t kScoredLocales = 12;  // 5^12 < 2^28, so a score leaves room for the other preferences

// Lists are kept for ever. These limits keep a process that registers ever new lists at some 20 MB.
constexpr size_t kMostLists = 8192, kMostLocales = 64;

enum : uint32_t {
    kHan = 1 << 0,
    kBopomofo = 1 << 1,
    kHangul = 1 << 2,
    kHiragana = 1 << 3,
    kKatakana = 1 << 4,
    kSimplified = 1 << 5,
    kTraditional = 1 << 6,
};

uint32_t partsOfScript(const std::string& script) {
    static constexpr struct {
        char name[5];
        uint32_t parts;
    } kParts[] = {
        {"Bopo", kBopomofo}, {"Hanb", kHan | kBopomofo},      {"Hang", kHangul},
        {"Hani", kHan},      {"Hans", kHan | kSimplified},    {"Hant", kHan | kTraditional},
        {"Hira", kHiragana}, {"Hrkt", kHiragana | kKatakana}, {"Jpan", kHan | kHiragana | kKatakana},
        {"Kana", kKatakana}, {"Kore", kHan | kHangul},
    };
    for (const auto& entry : kParts) {
        if (script == entry.name) return entry.parts;
    }
    return 0;
}

bool containsAll(uint32_t provided, uint32_t requested) {
    return requested != 0 && (provided & requested) == requested;
}

bool parseLocale(const std::string& tag, Locale* out) {
    char id[ULOC_FULLNAME_CAPACITY];
    char part[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    int32_t parsed = 0;
    uloc_forLanguageTag(tag.c_str(), id, sizeof id, &parsed, &status);
    if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING ||
        parsed != static_cast<int32_t>(tag.size())) {
        return false;
    }

    const int32_t emLength = uloc_getKeywordValue(id, "em", part, sizeof part, &status);
    if (U_SUCCESS(status) && emLength > 0) {
        if (std::strcmp(part, "emoji") == 0) out->presentation = Presentation::kEmoji;
        if (std::strcmp(part, "text") == 0) out->presentation = Presentation::kText;
    }

    // "und" and "und-Arab" do not change: the likely language of a script is a guess that no family is made
    // for.
    status = U_ZERO_ERROR;
    const bool hasLanguage = uloc_getLanguage(id, part, sizeof part, &status) > 0;
    const bool hasRegion = uloc_getCountry(id, part, sizeof part, &status) > 0;
    if (hasLanguage || hasRegion) {
        char likely[ULOC_FULLNAME_CAPACITY];
        UErrorCode likelyStatus = U_ZERO_ERROR;
        uloc_addLikelySubtags(id, likely, sizeof likely, &likelyStatus);
        if (U_SUCCESS(likelyStatus) && likelyStatus != U_STRING_NOT_TERMINATED_WARNING)
            std::memcpy(id, likely, sizeof likely);
    }
    uloc_getLanguage(id, part, sizeof part, &status);
    out->language = *part ? part : "und";
    uloc_getScript(id, part, sizeof part, &status);
    out->script = part;
    uloc_getCountry(id, part, sizeof part, &status);
    out->region = part;
    if (U_FAILURE(status)) return false;

    if (out->presentation == Presentation::kNone) {
        if (out->script == "Zsye") out->presentation = Presentation::kEmoji;
        if (out->script == "Zsym") out->presentation = Presentation::kText;
    }
    out->scripts = partsOfScript(out->script);
    return true;
}

// HarfBuzz keeps every language for ever, so only registered lists look up theirs.
void findLanguage(Locale* locale) {
    std::string full = locale->language;
    if (!locale->script.empty()) full += '-' + locale->script;
    if (!locale->region.empty()) full += '-' + locale->region;
    locale->hbLanguage = hb_language_from_string(full.c_str(), static_cast<int>(full.size()));
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

LocaleList parseList(const std::string& tags) {
    LocaleList list;
    for (size_t begin = 0; begin <= tags.size() && list.size() < kMostLocales;) {
        const size_t comma = std::min(tags.find(',', begin), tags.size());
        const std::string tag = trimmed(tags.substr(begin, comma - begin));
        Locale locale;
        if (!tag.empty() && parseLocale(tag, &locale)) list.push_back(std::move(locale));
        begin = comma + 1;
    }
    return list;
}

// Two lists are the same if their keys are equal.
std::string keyOf(const LocaleList& list) {
    std::string key;
    for (const Locale& locale : list) {
        key += locale.language + '-' + locale.script + '-' + locale.region + '-';
        key += static_cast<char>('0' + static_cast<int>(locale.presentation));
        key += ',';
    }
    return key;
}

struct Registry {
    std::mutex mutex;
    std::map<std::string, uint32_t> ids;
    std::deque<LocaleList> lists{LocaleList()};  // by id; a deque does not move its elements
};

// Never destroyed, because text may be laid out while the process ends.
Registry& registry() {
    static Registry* const instance = new Registry;
    return *instance;
}

}  // namespace

bool Locale::writesIn(hb_script_t hbScript) const {
    char tag[4];
    hb_tag_to_string(hb_script_to_iso15924_tag(hbScript), tag);
    const std::string name(tag, sizeof tag);
    return script == name || containsAll(scripts, partsOfScript(name));
}

const LocaleList& localeListOf(uint32_t id) {
    static const LocaleList* const kNone = new LocaleList;
    if (id == 0) return *kNone;
    Registry& known = registry();
    const std::lock_guard<std::mutex> lock(known.mutex);
    return known.lists[id < known.lists.size() ? id : 0];
}

uint32_t localeScore(const LocaleList& wanted, const LocaleList& offered) {
    if (offered.empty()) return 0;
    uint32_t allParts = 0;
    bool oneLanguage = true;
    for (const Locale& locale : offered) {
        allParts |= locale.scripts;
        oneLanguage = oneLanguage && locale.language == offered[0].language;
    }

    uint32_t total = 0;
    for (size_t i = 0; i < std::min(wanted.size(), kScoredLocales); i++) {
        const Locale& want = wanted[i];
        uint32_t score = 0;
        for (const Locale& offer : offered) {
            const bool language = want.language == offer.language;
            if (want.presentation != Presentation::kNone && want.presentation == offer.presentation) {
                score = std::max(score, language ? 4u : 2u);
            }
            if ((!want.script.empty() && want.script == offer.script) ||
                containsAll(offer.scripts, want.scripts)) {
                score = std::max(score, language ? 3u : 1u);
            }
        }
        // A family may list the parts of a script: "zh-Hant,zh-Bopo".
        if (containsAll(allParts, want.scripts)) {
            score = std::max(score, oneLanguage && want.language == offered[0].language ? 3u : 1u);
        }
        total = total * 5 + score;
    }
    return total;
}

}  // namespace host

namespace minikin {

uint32_t registerLocaleList(const std::string& locales) {
    host::LocaleList list = host::parseList(locales);
    if (list.empty()) return 0;
    host::Registry& known = host::registry();
    const std::lock_guard<std::mutex> lock(known.mutex);
    std::string key = host::keyOf(list);
    const auto entry = known.ids.find(key);
    if (entry != known.ids.end()) return entry->second;
    if (known.lists.size() > host::kMostLists) return 0;
    for (host::Locale& locale : list) host::findLanguage(&locale);
    // Adds the list first: if the id came first and adding failed, the next list would get the same id. An
    // unused list does no harm.
    const auto id = static_cast<uint32_t>(known.lists.size());
    known.lists.push_back(std::move(list));
    known.ids.emplace(std::move(key), id);
    return id;
}

}  // namespace minikin
