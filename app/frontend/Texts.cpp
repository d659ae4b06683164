#include "app/frontend/Texts.h"

#include <ostream>
#include <string>
#include <vector>

#include "host/Ovis/Language.h"
#include "host/vexacore/Localizer.h"
#include "host/vexacore/Utility.h"

namespace frontend {

namespace {

// Times and the copyright's year have Western digits in every language.
const lexon::Formatter& OfTheLanguage() {
    static const lexon::Formatter formatter(
        vexacore::utility::UTF16toStdString(Ovis::GetLanguageString()) + "@numbers=latn");
    return formatter;
}

}  // namespace

lexon::Wordlex Localized(const char* key) {
    return FromUTF16(vexacore::config::Localizer::Get()->GetLocalizedString(key));
}

lexon::Wordlex MenuTitle(const char* key) {
    auto title = Localized(key);
    title.RemoveAccelerators();
    return title;
}

lexon::Wordlex Filled(const lexon::Wordlex& text, lexon::Arguments values) {
    return FromUTF16(OfTheLanguage().Format(Units(text), values));
}

lexon::Wordlex FilledMessage(const lexon::Wordlex& pattern, lexon::Arguments values) {
    return FromUTF16(OfTheLanguage().FormatMessage(Units(pattern), values));
}

std::u16string_view Units(const lexon::Wordlex& text) {
    const unsigned short* units = nullptr;
    unsigned long count = 0;
    text.GetInternalData(&units, &count);
    return {reinterpret_cast<const char16_t*>(units), count};
}

lexon::Wordlex FromUTF16(std::u16string_view text) {
    const std::vector<unsigned short> units(text.begin(), text.end());
    lexon::Wordlex result;
    result.MakeFromUnicode(units.data(), units.size());
    return result;
}

std::ostream& operator<<(std::ostream& out, const lexon::Wordlex& text) {
    lexon::EncodingInfo utf8{1};
    const auto size = text.GetCStringSize(&utf8);
    std::string bytes(size, '\0');
    text.GetCString(bytes.data(), size, true, &utf8);
    bytes.pop_back();  // the terminator
    return out << bytes;
}

}  // namespace frontend
