#pragma once
// The texts that the user sees, all of them asked of the host's registered localizer.

#include <initializer_list>
#include <iosfwd>

#include "host/vexacore/String.h"
#include "wordlex/staticlib/Wordlexlib.h"

namespace frontend {

// The localizer's answer; `key` is usually "$$$/Path/Name=Default text".
lexon::Wordlex Localized(const char* key);

// A localized menu title or item without its accelerator and shortcut.
lexon::Wordlex MenuTitle(const char* key);

// `text` with ^1, ^2, ... replaced by the values in their order.
lexon::Wordlex Filled(lexon::Wordlex text, std::initializer_list<lexon::Wordlex> values);

lexon::Wordlex FromUTF16(const vexacore::UTF16String& text);

std::ostream& operator<<(std::ostream& out, const lexon::Wordlex& text);  // as UTF-8

}  // namespace frontend
