#pragma once
// The texts that the user sees. All come from the host's registered localizer.

#include <iosfwd>
#include <string_view>

#include "host/vexacore/String.h"
#include "wordlex/catalog/Catalog.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace frontend {

// The localizer's text; `key` is usually "$$$/Path/Name=Default text".
lexon::Wordlex Localized(const char* key);

// A localized menu title or item without its accelerator and shortcut.
lexon::Wordlex MenuTitle(const char* key);

// `text` with ^1, ^2, ... replaced by the values in order, formatted for the UI language.
lexon::Wordlex Filled(const lexon::Wordlex& text, lexon::Arguments values);
// The same for an ICU message pattern.
lexon::Wordlex FilledMessage(const lexon::Wordlex& pattern, lexon::Arguments values);

// Borrowed from the text.
std::u16string_view Units(const lexon::Wordlex& text);
lexon::Wordlex FromUTF16(std::u16string_view text);

std::ostream& operator<<(std::ostream& out, const lexon::Wordlex& text);  // as UTF-8

}  // namespace frontend
