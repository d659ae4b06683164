#pragma once
// One locale, taken apart from a name such as "en_US", "zh_Hans" or "pt-BR".
//
// Invariant: as parsed, either all three fields are empty or `language` is not, and each field has
//            the length and case that its comment gives.
// Equality:  by name, see isEqual and hasSameParent; a script that getName leaves out has no part.
// Failure:   a name that cannot be parsed leaves all fields empty. All such identifiers are equal.
// Threads:   a plain value.

#include <string>

class LocaleId {
public:
    LocaleId() = default;
    // Parses `name` unless it is null; empty when that fails.
    explicit LocaleId(const char* name);

    // Replaces the fields by those of `name`: language, script and region, each pair of them set
    // apart by exactly one character that is no letter or digit. Reading stops, without failing, at
    // the first separator that no letter or digit follows; so a name that begins with one is
    // valid and empty. Fills in or corrects the script where language and region make it plain.
    // False for null and for parts of other lengths or in another order.
    bool fromString(const char* name);
    void clear() noexcept;

    // Whether names of this language always carry the script, or do so when they lack a region.
    bool needScriptAlways() const noexcept;
    bool needScriptIfNoRegion() const noexcept;

    // The full name: "en-US", "sr-Latn-RS", "zh-TW". The hyphen before a needed script stands even
    // when the script is not known: "az-", "az--AZ".
    std::string getName() const;
    // The name of the group of locales that can stand in for each other: "en", "sr-Latn",
    // "zh-Hant". Never has the region; the hyphen stands as in getName.
    std::string getParentName() const;

    bool isEqual(LocaleId other) const;        // full names are the same bytes
    bool hasSameParent(LocaleId other) const;  // parent names are the same bytes

    std::string language;  // 2 or 3 characters, lower case
    std::string script;    // empty or 4 characters: "Hans"
    std::string region;    // empty or 2 or 3 characters, upper case: "US", "419"
};
