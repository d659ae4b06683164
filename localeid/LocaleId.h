#pragma once
// One locale, parsed from a name such as "en_US", "zh_Hans" or "pt-BR".
//
// Invariant: after parsing, either all three fields are empty or `language` is not, and each field
//            has the length and case given in its comment.
// Equality:  by name, see isEqual and hasSameParent. A script that getName leaves out does not
//            count.
// Failure:   an invalid name leaves all fields empty. All such identifiers are equal.
// Threads:   a plain value.

#include <string>

class LocaleId {
public:
    LocaleId() = default;
    // Parses `name` unless it is null. Empty when that fails.
    explicit LocaleId(const char* name);

    // Replaces the fields by those of `name`: language, script and region, separated by exactly one
    // character that is neither letter nor digit. Parsing stops, without failing, at the first
    // separator that no letter or digit follows; so a name that begins with one is valid and empty.
    // Adds or corrects the script where language and region imply it. False for null and for parts
    // of other lengths or in another order.
    bool fromString(const char* name);
    void clear() noexcept;

    // Whether names of this language always include the script, or include it without a region.
    bool needScriptAlways() const noexcept;
    bool needScriptIfNoRegion() const noexcept;

    // The full name: "en-US", "sr-Latn-RS", "zh-TW". The hyphen before a needed script is there
    // even when the script is unknown: "az-", "az--AZ".
    std::string getName() const;
    // The name of the group of locales that can replace each other: "en", "sr-Latn", "zh-Hant".
    // Never includes the region; the hyphen is as in getName.
    std::string getParentName() const;

    bool isEqual(LocaleId other) const;        // full names are the same bytes
    bool hasSameParent(LocaleId other) const;  // parent names are the same bytes

    std::string language;  // 2 or 3 characters, lower case
    std::string script;    // empty or 4 characters: "Hans"
    std::string region;    // empty or 2 or 3 characters, upper case: "US", "419"
};
