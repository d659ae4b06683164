#include "app/frontend/Texts.h"

#include <ostream>
#include <string>
#include <vector>

#include "host/vexacore/Localizer.h"
#include "host/vexacore/Utility.h"

namespace frontend {

lexon::Wordlex Localized(const char* key) {
    return FromUTF16(vexacore::config::Localizer::Get()->GetLocalizedString(key));
}

lexon::Wordlex MenuTitle(const char* key) {
    auto title = Localized(key);
    title.RemoveAccelerators();
    return title;
}

lexon::Wordlex Filled(lexon::Wordlex text, std::initializer_list<lexon::Wordlex> values) {
    unsigned char marker = 0;
    for (const auto& value : values)
        text.Replace(++marker, value);
    return text;
}

lexon::Wordlex FromUTF16(const vexacore::UTF16String& text) {
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
